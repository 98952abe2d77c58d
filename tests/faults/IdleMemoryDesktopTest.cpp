// SPDX-License-Identifier: MIT
// What the real program holds once its panel has closed: no preview pictures, so little resident memory.
#include <gtest/gtest.h>

#include <QDBusMessage>

#include <algorithm>
#include <cstdio>

#include "tests/faults/LatticaProgram.h"
#include "tests/support/VirtualDesktop.h"

namespace {

bool panelIsVisible() {
    return !VirtualDesktop::output(QStringLiteral("xdotool"),
                                   {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                                    QStringLiteral("^Lattica$")})
                .trimmed()
                .isEmpty();
}

// Segments as large as a picture of the smallest monitor: only preview pictures are that large (the
// toolkit's own shared buffers are the size of a window).
int previewSegments(const LatticaProgram& lattica) {
    qint64 smallest = 0;
    for (const QRect& monitor : VirtualDesktop::layout()) {
        const qint64 bytes = qint64(monitor.width()) * monitor.height() * 4;
        smallest = smallest == 0 ? bytes : std::min(smallest, bytes);
    }
    const QList<qint64> sizes = lattica.sharedSegmentSizes();
    return int(std::count_if(sizes.cbegin(), sizes.cend(), [&](qint64 size) { return size >= smallest; }));
}

TEST(IdleMemoryDesktopTest, ClosedPanelHoldsNoPreviewPicturesAndLittleMemory) {
    LatticaProgram lattica;
    ASSERT_TRUE(lattica.start());
    const qint64 beforeKiB = lattica.residentKiB();
    ASSERT_EQ(previewSegments(lattica), 0);

    qint64 afterKiB = 0;
    for (int opening = 1; opening <= 3; ++opening) {
        const QDBusMessage opened = lattica.call(QStringLiteral("OpenPanel"));
        ASSERT_EQ(opened.type(), QDBusMessage::ReplyMessage) << qPrintable(opened.errorMessage());
        ASSERT_TRUE(VirtualDesktop::waitUntil([] { return panelIsVisible(); }, 10000));
        // The pictures have arrived once the program holds their memory.
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewSegments(lattica) > 0; }, 10000))
            << "no preview pictures while the panel is open";
        const qint64 openKiB = lattica.residentKiB();

        ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("Escape")}), 0);
        ASSERT_TRUE(VirtualDesktop::waitUntil([] { return !panelIsVisible(); }, 10000));
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return previewSegments(lattica) == 0; }, 5000))
            << previewSegments(lattica) << " preview segments still held after the panel closed";
        afterKiB = lattica.residentKiB();
        std::printf("opening %d: resident %lld KiB before the first opening, %lld KiB open, %lld KiB closed\n", opening,
                    static_cast<long long>(beforeKiB), static_cast<long long>(openKiB),
                    static_cast<long long>(afterKiB));
    }
    ::testing::Test::RecordProperty("residentKiBIdleAfterPanel", QString::number(afterKiB).toStdString());
    if (LATTICA_IDLE_RESIDENT_LIMIT_KIB > 0) {
        EXPECT_LT(afterKiB, LATTICA_IDLE_RESIDENT_LIMIT_KIB) << "an idle program stays under 40 MB resident";
    }
    EXPECT_TRUE(lattica.stop());
}

}  // namespace
