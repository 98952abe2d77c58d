// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/GnomeSessionFixture.h"

#include <QDBusConnection>
#include <QStandardPaths>

#include "platform/Platform.h"
#include "tests/support/VirtualDesktop.h"

void GnomeSessionFixture::SetUp() {
    if (qEnvironmentVariableIsEmpty("LATTICA_GNOME_LAYOUT")) {
        if (QStandardPaths::findExecutable(QStringLiteral("gnome-shell")).isEmpty()) {
            GTEST_SKIP() << "gnome-shell is not installed (scripts/install-deps.sh installs it)";
        }
        FAIL() << "run this test inside scripts/virtual-gnome.sh run -- (ctest does)";
    }
    // The extension answers only the owner of Lattica's bus name, as the program is once it runs.
    ASSERT_TRUE(QDBusConnection::sessionBus().registerService(QStringLiteral("app.lattica.Lattica")));
    QString problem;
    platform = GnomePlatform::connect(&problem);
    ASSERT_TRUE(platform) << problem.toStdString();
    platform->install();
    ASSERT_TRUE(wayland.start());
}

void GnomeSessionFixture::TearDown() {
    platform.reset();
    QDBusConnection::sessionBus().unregisterService(QStringLiteral("app.lattica.Lattica"));
}

QList<QRect> GnomeSessionFixture::layout() {
    QList<QRect> monitors;
    int x = 0;
    for (const QString& part :
         qEnvironmentVariable("LATTICA_GNOME_LAYOUT").split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const int width = part.section(QLatin1Char('x'), 0, 0).toInt();
        const int height = part.section(QLatin1Char('x'), 1, 1).toInt();
        monitors.append(QRect(x, 0, width, height));
        x += width;
    }
    return monitors;
}

std::optional<WindowEntry> GnomeSessionFixture::waitForWindow(const QString& title, int timeoutMs) {
    std::optional<WindowEntry> found;
    VirtualDesktop::waitUntil(
        [&] {
            const auto entries = Platform::services().windowList->windows(DesktopWindows::Exclude);
            for (const WindowEntry& entry : entries.value_or(QList<WindowEntry>{})) {
                if (entry.title == title) {
                    found = entry;
                    return true;
                }
            }
            return false;
        },
        timeoutMs);
    return found;
}
