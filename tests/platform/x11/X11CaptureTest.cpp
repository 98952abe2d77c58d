// SPDX-License-Identifier: MIT
// Display pictures of a real desktop, through shared memory and through GetImage.
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <QColor>
#include <QFile>
#include <QSet>
#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/x11/X11Capture.h"
#include "platform/x11/X11Connection.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11CaptureTest : public X11DesktopFixture {
protected:
    // The display whose bounds are the monitor's, in the global space.
    std::optional<MonitorId> displayFor(const QRect& monitor) {
        for (const Monitor& candidate : Platform::services().monitors->monitors()) {
            if (candidate.bounds == QRectF(monitor)) {
                return candidate.id;
            }
        }
        return std::nullopt;
    }
    // The client area of a window in root coordinates.
    QRect clientRect(quint32 window) {
        xcb_translate_coordinates_reply_t* position = xcb_translate_coordinates_reply(
            xcb(), xcb_translate_coordinates(xcb(), window, platform->connection().root(), 0, 0), nullptr);
        xcb_get_geometry_reply_t* geometry = xcb_get_geometry_reply(xcb(), xcb_get_geometry(xcb(), window), nullptr);
        QRect rect;
        if (position != nullptr && geometry != nullptr) {
            rect = QRect(position->dst_x, position->dst_y, geometry->width, geometry->height);
        }
        std::free(position);
        std::free(geometry);
        return rect;
    }
};

TEST_F(X11CaptureTest, KnownColourIsFoundAtTheWindowsPixelsOnTheRightMonitor) {
    const QColor colour(0xff, 0x20, 0x40);
    const quint32 window =
        client.open(QStringLiteral("red"), placement(1, 300, 200, 400, 300) + QStringLiteral(" color=#ff2040"));
    ASSERT_NE(window, 0u);
    const QRect monitor = monitors().value(1);
    const auto display = displayFor(monitor);
    ASSERT_TRUE(display.has_value());
    const QRect clientArea = clientRect(window).translated(-globalOrigin - monitor.topLeft());
    ASSERT_FALSE(clientArea.isEmpty());
    QImage image;
    // The server paints the background when the window is exposed; look until it has.
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        image = Platform::services().monitors->capture(*display);
        return !image.isNull() && QColor(image.pixel(clientArea.center())) == colour;
    }));
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), monitor.size());
    for (const QPoint corner :
         {clientArea.topLeft(), clientArea.bottomRight(), clientArea.topRight(), clientArea.bottomLeft()}) {
        EXPECT_EQ(QColor(image.pixel(corner)), colour);
    }
    EXPECT_NE(QColor(image.pixel(clientArea.topLeft() - QPoint(1, 1))), colour);
    // The same spot on the first monitor shows something else.
    const auto first = displayFor(monitors().value(0));
    ASSERT_TRUE(first.has_value());
    const QImage other = Platform::services().monitors->capture(*first);
    ASSERT_FALSE(other.isNull());
    EXPECT_NE(QColor(other.pixel(clientArea.center())), colour);
}

TEST_F(X11CaptureTest, SharedMemoryAndGetImageGiveTheSamePicture) {
    ASSERT_NE(client.open(QStringLiteral("a"), placement(1, 100, 100, 500, 400) + QStringLiteral(" color=#12ab34")),
              0u);
    ASSERT_NE(client.open(QStringLiteral("b"), placement(1, 400, 300, 600, 300) + QStringLiteral(" color=#3412ab")),
              0u);
    X11Capture capture(platform->connection().displayName());
    ASSERT_TRUE(capture.hasSharedMemory());
    const QRect rect = VirtualDesktop::layout().value(1);
    // Compare once the screen stands still, so both methods see the same picture.
    QImage shared;
    QImage plain;
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        const QImage before = capture.capture(rect, X11Capture::Method::GetImage);
        shared = capture.capture(rect, X11Capture::Method::SharedMemory);
        plain = capture.capture(rect, X11Capture::Method::GetImage);
        return !plain.isNull() && before == plain;
    }));
    ASSERT_FALSE(shared.isNull());
    ASSERT_FALSE(plain.isNull());
    EXPECT_EQ(shared.size(), rect.size());
    EXPECT_EQ(shared.format(), plain.format());
    EXPECT_TRUE(shared == plain);
}

TEST_F(X11CaptureTest, PicturesOutliveTheCaptureAndItsSegments) {
    ASSERT_NE(client.open(QStringLiteral("a"), placement(0, 100, 100, 300, 200) + QStringLiteral(" color=#00ff00")),
              0u);
    const QRect rect = VirtualDesktop::layout().value(0);
    // Each picture and a deep copy of it taken while its segment was certainly alive. Once the capture and
    // its segments are gone, every picture must still hold what it held then.
    QList<QImage> images;
    QList<QImage> copies;
    {
        X11Capture capture(platform->connection().displayName());
        for (int i = 0; i < 6; ++i) {
            const QImage image = capture.capture(rect, X11Capture::Method::SharedMemory);
            images.append(image);
            copies.append(image.copy());
        }
    }
    for (qsizetype i = 0; i < images.size(); ++i) {
        ASSERT_FALSE(images[i].isNull());
        EXPECT_TRUE(images[i] == copies[i]) << "picture " << i;
        EXPECT_EQ(images[i].pixel(150, 150), copies[i].pixel(150, 150));
    }
}

// System V shared-memory segments mapped into this process.
int mappedSegments() {
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly)) {
        return -1;
    }
    return int(maps.readAll().count("SYSV"));
}

// Long enough that spares stay for the whole of a test that does not wait for their release.
constexpr std::chrono::hours kKeptThroughTheTest{1};

TEST_F(X11CaptureTest, SegmentsOfPicturesGoneServeTheNextPicturesOfTheirSize) {
    const QRect rect = VirtualDesktop::layout().value(0);
    X11Capture capture(platform->connection().displayName(), kKeptThroughTheTest);
    ASSERT_TRUE(capture.hasSharedMemory());
    const int before = mappedSegments();
    ASSERT_GE(before, 0);
    const auto takeThree = [&] {
        QList<QImage> pictures;
        for (int i = 0; i < 3; ++i) {
            pictures.append(capture.capture(rect, X11Capture::Method::SharedMemory));
        }
        return pictures;
    };
    {
        const QList<QImage> pictures = takeThree();
        for (const QImage& picture : pictures) {
            ASSERT_FALSE(picture.isNull());
        }
        EXPECT_EQ(capture.segmentsMade(), 3);
        EXPECT_EQ(capture.spareSegments(), 0);
        EXPECT_EQ(mappedSegments(), before + 3);
    }
    // Gone pictures leave their segments as spares, still attached.
    EXPECT_EQ(capture.spareSegments(), 3);
    EXPECT_EQ(mappedSegments(), before + 3);
    EXPECT_EQ(X11Capture::attachedSegments(), 3);
    {
        const QList<QImage> again = takeThree();
        // The same three segments, none made.
        EXPECT_EQ(capture.segmentsMade(), 3);
        EXPECT_EQ(capture.spareSegments(), 0);
        EXPECT_EQ(mappedSegments(), before + 3);
        // A reused segment holds the new picture, not the old one: the same as GetImage takes now.
        EXPECT_TRUE(again.value(0) == capture.capture(rect, X11Capture::Method::GetImage));
        // A picture of another size gets a segment of its own.
        const QImage smaller = capture.capture(rect.adjusted(0, 0, -10, -10), X11Capture::Method::SharedMemory);
        ASSERT_FALSE(smaller.isNull());
        EXPECT_EQ(capture.segmentsMade(), 4);
        EXPECT_EQ(mappedSegments(), before + 4);
    }
    EXPECT_EQ(capture.spareSegments(), 4);
    capture.releaseSpareSegments();
    EXPECT_EQ(capture.spareSegments(), 0);
    EXPECT_EQ(mappedSegments(), before);
    EXPECT_EQ(X11Capture::attachedSegments(), 0);
    // And it still takes pictures afterwards, in a segment made anew.
    EXPECT_FALSE(capture.capture(rect, X11Capture::Method::SharedMemory).isNull());
    EXPECT_EQ(capture.segmentsMade(), 5);
}

TEST_F(X11CaptureTest, APictureStillAliveKeepsItsSegmentFromTheNextPicture) {
    const QRect rect = VirtualDesktop::layout().value(0);
    X11Capture capture(platform->connection().displayName(), kKeptThroughTheTest);
    const QImage first = capture.capture(rect, X11Capture::Method::SharedMemory);
    const QImage second = capture.capture(rect, X11Capture::Method::SharedMemory);
    ASSERT_FALSE(first.isNull());
    ASSERT_FALSE(second.isNull());
    EXPECT_EQ(capture.segmentsMade(), 2);
    EXPECT_NE(first.constBits(), second.constBits());
}

// The System V shared-memory segments mapped into this process, by identifier.
QSet<qint64> mappedSegmentIds() {
    QSet<qint64> ids;
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (maps.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : maps.readAll().split('\n')) {
            // address perms offset device inode path: a segment's inode is its identifier.
            if (line.contains("SYSV")) {
                ids.insert(line.simplified().split(' ').value(4).toLongLong());
            }
        }
    }
    return ids;
}

// Bytes of memory a segment holds, as the kernel counts them; -1 when it has no such segment.
qint64 residentBytesOfSegment(qint64 id) {
    QFile table(QStringLiteral("/proc/sysvipc/shm"));
    if (table.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : table.readAll().split('\n').mid(1)) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            if (fields.size() >= 15 && fields[1].toLongLong() == id) {
                return fields[14].toLongLong();
            }
        }
    }
    return -1;
}

TEST_F(X11CaptureTest, SpareSegmentsAreReleasedOnceNoPictureHasComeBackForAWhile) {
    const QRect rect = VirtualDesktop::layout().value(0);
    X11Capture capture(platform->connection().displayName(), std::chrono::milliseconds(50));
    ASSERT_TRUE(capture.hasSharedMemory());
    const QSet<qint64> before = mappedSegmentIds();
    {
        const QImage a = capture.capture(rect, X11Capture::Method::SharedMemory);
        const QImage b = capture.capture(rect, X11Capture::Method::SharedMemory);
        ASSERT_FALSE(a.isNull());
        ASSERT_FALSE(b.isNull());
    }
    const QSet<qint64> used = mappedSegmentIds() - before;
    ASSERT_EQ(used.size(), 2);
    for (const qint64 id : used) {
        EXPECT_GT(residentBytesOfSegment(id), 0) << "a segment holds the picture written into it";
    }
    // The release comes from the event loop, which has not run since.
    EXPECT_EQ(capture.spareSegments(), 2);
    EXPECT_TRUE(
        VirtualDesktop::waitUntil([&] { return capture.spareSegments() == 0 && mappedSegmentIds() == before; }));
    EXPECT_EQ(X11Capture::attachedSegments(), 0);
    // Gone from the system once the X server has detached them too.
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        return std::all_of(used.cbegin(), used.cend(), [](qint64 id) { return residentBytesOfSegment(id) == -1; });
    }));
    EXPECT_FALSE(capture.capture(rect, X11Capture::Method::SharedMemory).isNull());
    EXPECT_EQ(capture.segmentsMade(), 3);
}

TEST_F(X11CaptureTest, APreparedSegmentHoldsNoMemoryUntilThePictureOfItsSizeUsesIt) {
    const QRect rect = VirtualDesktop::layout().value(0);
    X11Capture capture(platform->connection().displayName(), kKeptThroughTheTest);
    const QSet<qint64> before = mappedSegmentIds();
    capture.prepare({rect.size()});
    EXPECT_EQ(capture.segmentsMade(), 1);
    EXPECT_EQ(capture.spareSegments(), 1);
    const QSet<qint64> prepared = mappedSegmentIds() - before;
    ASSERT_EQ(prepared.size(), 1);
    EXPECT_EQ(residentBytesOfSegment(*prepared.cbegin()), 0);
    const QImage picture = capture.capture(rect, X11Capture::Method::SharedMemory);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(capture.segmentsMade(), 1);
    EXPECT_EQ(capture.spareSegments(), 0);
    EXPECT_GT(residentBytesOfSegment(*prepared.cbegin()), 0);
    EXPECT_TRUE(picture == capture.capture(rect, X11Capture::Method::GetImage));
}

TEST_F(X11CaptureTest, PreparingMakesOneSegmentPerPictureLessTheSparesWaiting) {
    const QSize size = VirtualDesktop::layout().value(0).size();
    X11Capture capture(platform->connection().displayName(), kKeptThroughTheTest);
    capture.prepare({size, size});
    EXPECT_EQ(capture.segmentsMade(), 2);
    capture.prepare({size, size, QSize(10, 10)});
    EXPECT_EQ(capture.segmentsMade(), 3);
    EXPECT_EQ(capture.spareSegments(), 3);
    // Empty sizes ask for nothing.
    capture.prepare({QSize()});
    EXPECT_EQ(capture.segmentsMade(), 3);
}

TEST_F(X11CaptureTest, SpareSegmentsGoWithTheCapture) {
    const QRect rect = VirtualDesktop::layout().value(0);
    const int before = mappedSegments();
    ASSERT_GE(before, 0);
    {
        X11Capture capture(platform->connection().displayName(), kKeptThroughTheTest);
        EXPECT_FALSE(capture.capture(rect, X11Capture::Method::SharedMemory).isNull());
        EXPECT_EQ(capture.spareSegments(), 1);
        EXPECT_EQ(mappedSegments(), before + 1);
    }
    EXPECT_EQ(mappedSegments(), before);
    EXPECT_EQ(X11Capture::attachedSegments(), 0);
}

TEST_F(X11CaptureTest, PreparingTheCaptureConnectsAndMakesTheSegmentOfTheAreasPictureAhead) {
    // The clients the X server serves now.
    const auto clients = [this] {
        xcb_res_query_clients_reply_t* reply =
            xcb_res_query_clients_reply(xcb(), xcb_res_query_clients(xcb()), nullptr);
        const int count = reply != nullptr ? int(reply->num_clients) : -1;
        std::free(reply);
        return count;
    };
    const int before = clients();
    ASSERT_GT(before, 0);
    Monitors& service = *Platform::services().monitors;
    const QRectF area(10, 20, 300, 200);
    service.prepareCapture(area);
    EXPECT_EQ(clients(), before + 1);
    // A segment for the area's picture.
    EXPECT_EQ(X11Capture::attachedSegments(), 1);
    service.prepareCapture(area);
    EXPECT_EQ(clients(), before + 1);
    EXPECT_EQ(X11Capture::attachedSegments(), 1);
    const QImage areaPicture = service.captureArea(area);
    EXPECT_FALSE(areaPicture.isNull());
    // The picture came through the connection and the segment made ahead.
    EXPECT_EQ(clients(), before + 1);
    EXPECT_EQ(X11Capture::attachedSegments(), 1);
    const auto display = displayFor(monitors().value(0));
    ASSERT_TRUE(display.has_value());
    EXPECT_FALSE(service.capture(*display).isNull());
    EXPECT_EQ(clients(), before + 1);
}

TEST_F(X11CaptureTest, AnAreaOfTheGlobalSpaceIsTakenWholeAtItsPlace) {
    const QColor colour(0x30, 0x60, 0xd0);
    const quint32 window =
        client.open(QStringLiteral("blue"), placement(2, 200, 150, 300, 200) + QStringLiteral(" color=#3060d0"));
    ASSERT_NE(window, 0u);
    Monitors* monitors = Platform::services().monitors;
    ASSERT_TRUE(monitors->canCaptureAreas());
    monitors->monitors();
    // The window's client area in the global space, and a frame of 10 pixels around it.
    const QRect clientArea = clientRect(window).translated(-globalOrigin);
    ASSERT_FALSE(clientArea.isEmpty());
    const QRectF area = QRectF(clientArea.adjusted(-10, -10, 10, 10));
    QImage picture;
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        picture = monitors->captureArea(area);
        return !picture.isNull() && picture.pixelColor(picture.rect().center()) == colour;
    }));
    ASSERT_EQ(picture.size(), QSize(clientArea.width() + 20, clientArea.height() + 20));
    // The window fills the picture but for the frame around it.
    EXPECT_EQ(picture.pixelColor(10, 10), colour);
    EXPECT_EQ(picture.pixelColor(picture.width() - 11, picture.height() - 11), colour);
    EXPECT_NE(picture.pixelColor(9, 10), colour);
    EXPECT_NE(picture.pixelColor(picture.width() - 10, picture.height() - 11), colour);
    // An area that reaches past the screen would be cut: no picture instead.
    EXPECT_TRUE(monitors->captureArea(QRectF(QPointF(-100, -100) - QPointF(globalOrigin), QSizeF(200, 200))).isNull());
    EXPECT_TRUE(monitors->captureArea(QRectF()).isNull());
}

TEST_F(X11CaptureTest, NothingToCaptureGivesANullPicture) {
    X11Capture capture(platform->connection().displayName());
    EXPECT_TRUE(capture.capture(QRect()).isNull());
    EXPECT_TRUE(capture.capture(QRect(-5000, -5000, 100, 100)).isNull());
    EXPECT_TRUE(Platform::services().monitors->capture(0xdeadbeef).isNull());
    // A rectangle partly off the screen is cut to what exists.
    const QImage cut = capture.capture(QRect(-50, -50, 100, 100));
    EXPECT_EQ(cut.size(), QSize(50, 50));
}

TEST_F(X11CaptureTest, NoServerGivesANullPicture) {
    X11Capture capture(QByteArrayLiteral(":4321"));
    EXPECT_FALSE(capture.hasSharedMemory());
    EXPECT_TRUE(capture.capture(QRect(0, 0, 100, 100)).isNull());
}

}  // namespace
