// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/GnomeSessionFixture.h"

#include <QDBusConnection>
#include <QStandardPaths>

#include "platform/Platform.h"
#include "tests/platform/ListedWindows.h"
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
    return VirtualDesktop::sideBySide(qEnvironmentVariable("LATTICA_GNOME_LAYOUT"));
}

std::optional<WindowEntry> GnomeSessionFixture::waitForWindow(const QString& title, int timeoutMs) {
    return ListedWindows::waitFor(title, timeoutMs);
}
