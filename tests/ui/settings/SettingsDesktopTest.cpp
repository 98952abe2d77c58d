// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "KeyboardShortcuts/widgets/ShortcutRecorder.h"
#include "app/controller/AppController.h"
#include "app/ui/WindowPresenter.h"
#include "app/ui/settings/SettingsBehaviorSection.h"
#include "app/ui/settings/SettingsShortcutsSection.h"
#include "app/ui/settings/SettingsToggle.h"
#include "app/ui/settings/SettingsView.h"
#include "app/ui/settings/ShortcutRecorderRow.h"
#include "platform/TaskbarPresence.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// The settings window on a real X server with a window manager: the monitors come from RandR, the Dock
// icon is the taskbar state of our windows, launch at login is an XDG autostart entry, and preferences
// live in the defaults file. Everything the test writes goes to a private configuration folder.
class SettingsDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_config.isValid());
        qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8());
        qputenv("LATTICA_APPCAST_URL", QByteArrayLiteral("http://127.0.0.1:9/appcast.xml"));
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
    }

    void TearDown() override {
        m_view.reset();
        m_controller.reset();
        Platform::install({});
        m_platform.reset();
        qunsetenv("LATTICA_APPCAST_URL");
        qunsetenv("XDG_CONFIG_HOME");
    }

    SettingsView& showSettings() {
        m_controller = std::make_unique<AppController>();
        m_view = std::make_unique<SettingsView>(*m_controller);
        m_view->resize(760, 540);
        m_view->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_view.get()));
        return *m_view;
    }

    // The window manager state atoms on the settings window, as another client reads them.
    QString windowState() const {
        return VirtualDesktop::output(QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(m_view->winId()),
                                                                QStringLiteral("_NET_WM_STATE")});
    }

    QString autostartEntry() const {
        return m_config.path() + QStringLiteral("/autostart/app.lattica.Lattica.desktop");
    }
    // The entry as earlier versions named it.
    QString legacyAutostartEntry() const { return m_config.path() + QStringLiteral("/autostart/lattica.desktop"); }

    QTemporaryDir m_config;
    std::unique_ptr<X11Platform> m_platform;
    std::unique_ptr<AppController> m_controller;
    std::unique_ptr<SettingsView> m_view;
};

TEST_F(SettingsDesktopTest, ShortcutRowsListEveryMonitorInOrder) {
    SettingsView& settings = showSettings();
    settings.setSelectedSection(SettingsSection::Shortcuts);
    auto* shortcuts = settings.findChild<SettingsShortcutsSection*>();
    ASSERT_NE(shortcuts, nullptr);
    const QList<ShortcutRecorderRow*> rows = shortcuts->connectedRows();
    ASSERT_EQ(rows.size(), VirtualDesktop::layout().size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        EXPECT_TRUE(rows[i]->labelShown().startsWith(QStringLiteral("%1. ").arg(i + 1)))
            << rows[i]->labelShown().toStdString();
        EXPECT_TRUE(rows[i]->recorder()->isVisible());
    }
    EXPECT_TRUE(shortcuts->disconnectedRows().isEmpty());
}

TEST_F(SettingsDesktopTest, ShowDockIconPutsTheWindowInTheTaskbarAtOnceAndIsKept) {
    SettingsView& settings = showSettings();
    // As at launch with the default preference: no Dock icon, so our windows stay out of the taskbar.
    m_platform->services().taskbarPresence->setShownInTaskbar(false);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return windowState().contains(u"_NET_WM_STATE_SKIP_TASKBAR"); }))
        << windowState().toStdString();

    settings.setSelectedSection(SettingsSection::Behavior);
    auto* behavior = settings.findChild<SettingsBehaviorSection*>();
    ASSERT_NE(behavior, nullptr);
    ASSERT_FALSE(behavior->dockIconToggle()->isChecked());
    QTest::mouseClick(behavior->dockIconToggle(), Qt::LeftButton);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !windowState().contains(u"_NET_WM_STATE_SKIP_TASKBAR"); }))
        << windowState().toStdString();
    EXPECT_TRUE(m_platform->services().taskbarPresence->isShownInTaskbar());

    // A later run reads the preference back from the defaults file.
    m_view.reset();
    m_controller.reset();
    Platform::install({});
    m_platform.reset();
    m_platform = X11Platform::connect();
    ASSERT_NE(m_platform, nullptr);
    m_platform->install();
    AppController nextRun;
    EXPECT_TRUE(nextRun.dockIconVisible());
}

TEST_F(SettingsDesktopTest, LaunchAtLoginWritesAndRemovesTheAutostartEntry) {
    SettingsView& settings = showSettings();
    settings.setSelectedSection(SettingsSection::Behavior);
    auto* behavior = settings.findChild<SettingsBehaviorSection*>();
    ASSERT_NE(behavior, nullptr);
    ASSERT_FALSE(QFile::exists(autostartEntry()));
    QTest::mouseClick(behavior->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_TRUE(QFile::exists(autostartEntry()));
    EXPECT_TRUE(behavior->launchAtLoginToggle()->isChecked());
    EXPECT_TRUE(m_controller->launchAtLoginEnabled());
    QTest::mouseClick(behavior->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_FALSE(QFile::exists(autostartEntry()));
    EXPECT_FALSE(behavior->launchAtLoginToggle()->isChecked());
}

TEST_F(SettingsDesktopTest, LaunchAtLoginSetByAnEarlierVersionStaysOnAndIsReplacedNotDuplicated) {
    ASSERT_TRUE(QDir().mkpath(m_config.path() + QStringLiteral("/autostart")));
    QFile legacy(legacyAutostartEntry());
    ASSERT_TRUE(legacy.open(QIODevice::WriteOnly));
    legacy.write("[Desktop Entry]\nType=Application\nName=Lattica\nExec=lattica\nIcon=lattica\n");
    legacy.close();

    SettingsView& settings = showSettings();
    settings.setSelectedSection(SettingsSection::Behavior);
    auto* behavior = settings.findChild<SettingsBehaviorSection*>();
    ASSERT_NE(behavior, nullptr);
    EXPECT_TRUE(m_controller->launchAtLoginEnabled());
    EXPECT_TRUE(behavior->launchAtLoginToggle()->isChecked());

    // Off removes the earlier entry; on again writes only the new one.
    QTest::mouseClick(behavior->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_FALSE(QFile::exists(legacyAutostartEntry()));
    EXPECT_FALSE(behavior->launchAtLoginToggle()->isChecked());
    QTest::mouseClick(behavior->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_TRUE(QFile::exists(autostartEntry()));
    EXPECT_FALSE(QFile::exists(legacyAutostartEntry()));
}

TEST_F(SettingsDesktopTest, SettingsWindowHostsTheViewAtItsSizeAndIsReused) {
    AppController controller;
    WindowPresenter windows(controller);
    windows.showSettingsWindow();
    QWidget* window = windows.settingsWindow();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    auto* settings = window->findChild<SettingsView*>();
    ASSERT_NE(settings, nullptr);
    EXPECT_EQ(window->size(), QSize(760, 540));
    EXPECT_EQ(settings->selectedSection(), SettingsSection::Permissions);

    settings->setSelectedSection(SettingsSection::Shortcuts);
    window->hide();
    windows.showSettingsWindow();
    EXPECT_EQ(windows.settingsWindow(), window);
    EXPECT_EQ(window->findChild<SettingsView*>(), settings);
    EXPECT_EQ(settings->selectedSection(), SettingsSection::Shortcuts);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));

    // What the X server shows in the window once it has been painted: the sidebar's colour at its foot.
    QImage shown;
    const QRgb sidebarColour = settings->palette().color(QPalette::Base).rgb();
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            shown = window->screen()->grabWindow(window->winId()).toImage();
            return !shown.isNull() && shown.pixel(4, shown.height() - 4) == sidebarColour;
        },
        10000))
        << "last pixel " << std::hex << (shown.isNull() ? 0u : shown.pixel(4, shown.height() - 4));
    const QString directory = qEnvironmentVariable("LATTICA_SCREENSHOT_DIR");
    if (!directory.isEmpty()) {
        EXPECT_TRUE(shown.save(directory + QStringLiteral("/settings-x11-shortcuts.png")));
    }
    delete window;
}

}  // namespace
