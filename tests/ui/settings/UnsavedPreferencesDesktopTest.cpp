// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "app/controller/AppController.h"
#include "app/ui/settings/SettingsBehaviorSection.h"
#include "app/ui/settings/SettingsToggle.h"
#include "app/ui/settings/SettingsView.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/ReadOnlyFolder.h"
#include "tests/support/VirtualDesktop.h"

namespace {

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The settings window on a real X server, its preferences in a configuration folder that becomes
// read-only after the first start has written the defaults.
class UnsavedPreferencesDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_config.isValid());
        qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8());
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
    }

    void TearDown() override {
        m_view.reset();
        m_controller.reset();
        Platform::install({});
        m_platform.reset();
        qunsetenv("XDG_CONFIG_HOME");
    }

    QString folder() const { return m_config.filePath(QStringLiteral("lattica")); }
    QString defaultsPath() const { return m_config.filePath(QStringLiteral("lattica/defaults.json")); }

    SettingsBehaviorSection* showBehavior() {
        m_controller = std::make_unique<AppController>();
        m_view = std::make_unique<SettingsView>(*m_controller);
        m_view->resize(760, 540);
        m_view->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_view.get()));
        m_view->setSelectedSection(SettingsSection::Behavior);
        return m_view->findChild<SettingsBehaviorSection*>();
    }

    QTemporaryDir m_config;
    std::unique_ptr<X11Platform> m_platform;
    std::unique_ptr<AppController> m_controller;
    std::unique_ptr<SettingsView> m_view;
};

TEST_F(UnsavedPreferencesDesktopTest, ReadOnlyFolderKeepsTheChangeTellsTheWindowOnceAndSavesLater) {
    AppController{};  // the first start writes the defaults
    const QByteArray before = contentsOf(defaultsPath());
    ASSERT_FALSE(before.isEmpty());

    ReadOnlyFolder readOnly(folder());
    ASSERT_TRUE(readOnly.refusesWrites());
    SettingsBehaviorSection* behavior = showBehavior();
    ASSERT_NE(behavior, nullptr);
    EXPECT_TRUE(m_view->unsavedPreferencesText().isEmpty()) << "nothing changed yet";
    QSignalSpy notice(m_controller.get(), &AppController::unsavedPreferencesNoticeChanged);

    QTest::mouseClick(behavior->adjustWindowSizeToggle(), Qt::LeftButton);
    EXPECT_TRUE(behavior->adjustWindowSizeToggle()->isChecked());
    EXPECT_TRUE(m_controller->adjustWindowSizeToTargetScreen()) << "the change is in effect";
    const QString shown = m_view->unsavedPreferencesText();
    EXPECT_TRUE(shown.contains(QStringLiteral("could not be saved"))) << qPrintable(shown);
    EXPECT_TRUE(shown.contains(defaultsPath())) << qPrintable(shown);
    auto* label = m_view->findChild<QWidget*>(QStringLiteral("unsavedPreferencesNotice"));
    ASSERT_NE(label, nullptr);
    EXPECT_TRUE(label->isVisible());

    QTest::mouseClick(behavior->dockIconToggle(), Qt::LeftButton);
    EXPECT_TRUE(m_controller->dockIconVisible());
    EXPECT_EQ(notice.count(), 1) << "the user is told once";
    EXPECT_EQ(contentsOf(defaultsPath()), before) << "the file is not damaged";
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("defaults.json")});

    // The folder becomes writable again: the next change saves it and every change before it.
    readOnly.restore();
    QTest::mouseClick(behavior->adjustWindowSizeToggle(), Qt::LeftButton);
    QTest::mouseClick(behavior->adjustWindowSizeToggle(), Qt::LeftButton);
    EXPECT_TRUE(m_view->unsavedPreferencesText().isEmpty());
    EXPECT_FALSE(label->isVisible());
    m_view.reset();
    m_controller.reset();
    AppController nextRun;
    EXPECT_TRUE(nextRun.adjustWindowSizeToTargetScreen());
    EXPECT_TRUE(nextRun.dockIconVisible());
}

}  // namespace
