// SPDX-License-Identifier: MIT
// Running applications of a real desktop: the processes that own windows.
#include <QFile>
#include <QTemporaryDir>
#include <memory>
#include <vector>

#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/x11/X11RunningApplications.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11RunningApplicationsTest : public X11DesktopFixture {
protected:
    RunningApplications& running() { return *Platform::services().runningApplications; }
    std::optional<RunningApplication> application(qint64 pid) {
        for (const RunningApplication& app : running().runningApplications()) {
            if (app.pid == pid) {
                return app;
            }
        }
        return std::nullopt;
    }
    qsizetype indexOf(qint64 pid) {
        const QList<RunningApplication> apps = running().runningApplications();
        for (qsizetype i = 0; i < apps.size(); ++i) {
            if (apps[i].pid == pid) {
                return i;
            }
        }
        return -1;
    }
};

TEST_F(X11RunningApplicationsTest, ApplicationsAreWindowOwnersInProcessStartOrder) {
    TestClient later;
    ASSERT_TRUE(later.start());
    ASSERT_NE(later.open(QStringLiteral("b"), placement(0, 100, 100, 300, 200)), 0u);
    ASSERT_NE(client.open(QStringLiteral("a"), placement(0, 200, 200, 300, 200)), 0u);
    // The client of the fixture started first, although its window came second.
    const qsizetype first = indexOf(client.pid());
    const qsizetype second = indexOf(later.pid());
    ASSERT_GE(first, 0);
    ASSERT_GE(second, 0);
    EXPECT_LT(first, second);
    const auto app = application(client.pid());
    ASSERT_TRUE(app.has_value());
    EXPECT_EQ(app->policy, ApplicationPolicy::Regular);
    EXPECT_FALSE(app->terminated);
    EXPECT_TRUE(app->name.has_value());
}

TEST_F(X11RunningApplicationsTest, PolicyFollowsTheKindsOfWindowsOwned) {
    std::vector<std::unique_ptr<TestClient>> owners;
    struct Case {
        QString options;
        ApplicationPolicy expected;
    };
    for (const Case& c : {Case{QStringLiteral("type=normal"), ApplicationPolicy::Regular},
                          Case{QStringLiteral("type=dialog"), ApplicationPolicy::Regular},
                          Case{QStringLiteral("type=normal states=skip-taskbar"), ApplicationPolicy::Accessory},
                          Case{QStringLiteral("type=utility"), ApplicationPolicy::Accessory},
                          Case{QStringLiteral("type=dock"), ApplicationPolicy::Prohibited},
                          Case{QStringLiteral("type=desktop"), ApplicationPolicy::Prohibited}}) {
        // Every owner stays until the end: a client started right after another ended gets its window ids,
        // and openbox, still forgetting the old window, can drop the new one's initial state.
        TestClient& owner = *owners.emplace_back(std::make_unique<TestClient>());
        ASSERT_TRUE(owner.start());
        ASSERT_NE(owner.open(QStringLiteral("w"), placement(1, 100, 100, 300, 200) + QLatin1Char(' ') + c.options), 0u);
        const auto app = application(owner.pid());
        ASSERT_TRUE(app.has_value()) << c.options.toStdString();
        EXPECT_EQ(app->policy, c.expected) << c.options.toStdString();
    }
}

TEST_F(X11RunningApplicationsTest, ClientThatQuitIsNoLongerRunning) {
    TestClient leaver;
    ASSERT_TRUE(leaver.start());
    ASSERT_NE(leaver.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200)), 0u);
    const qint64 pid = leaver.pid();
    ASSERT_TRUE(application(pid).has_value());
    leaver.kill();
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !application(pid).has_value(); }));
}

TEST_F(X11RunningApplicationsTest, FrontmostApplicationOwnsTheActiveWindow) {
    TestClient other;
    ASSERT_TRUE(other.start());
    const quint32 mine = client.open(QStringLiteral("mine"), placement(0, 100, 100, 300, 200));
    const quint32 theirs = other.open(QStringLiteral("theirs"), placement(1, 100, 100, 300, 200));
    ASSERT_NE(mine, 0u);
    ASSERT_NE(theirs, 0u);
    for (const auto& [window, pid] : {std::pair{theirs, other.pid()}, std::pair{mine, client.pid()}}) {
        ASSERT_TRUE(activate(window));
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
            const auto front = running().frontmostApplication();
            return front && front->pid == pid;
        }));
    }
}

TEST_F(X11RunningApplicationsTest, NameAndIconComeFromTheDesktopEntry) {
    QTemporaryDir data;
    ASSERT_TRUE(data.isValid());
    QImage picture(48, 48, QImage::Format_ARGB32);
    picture.fill(QColor(10, 200, 30));
    const QString iconPath = data.path() + QStringLiteral("/probe.png");
    ASSERT_TRUE(picture.save(iconPath));
    QFile file(data.path() + QStringLiteral("/probe.desktop"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("[Desktop Entry]\nType=Application\nName=Probe Tool\nName[xx]=Ignored\nIcon=%1\n")
                   .arg(iconPath)
                   .toUtf8());
    file.close();
    X11WindowDesktopEntries entries({data.path()});
    X11RunningApplications applications(platform->connection(), entries);
    // Matched by the entry's file name against the window's class.
    ASSERT_NE(client.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200) + QStringLiteral(" class=probe.Probe")),
              0u);
    std::optional<RunningApplication> app;
    for (const RunningApplication& candidate : applications.runningApplications()) {
        if (candidate.pid == client.pid()) {
            app = candidate;
        }
    }
    ASSERT_TRUE(app.has_value());
    EXPECT_EQ(app->name, QStringLiteral("Probe Tool"));
    EXPECT_EQ(app->desktopId, QStringLiteral("probe"));
    const QImage icon = applications.iconForApplication(static_cast<pid_t>(client.pid()));
    ASSERT_FALSE(icon.isNull());
    EXPECT_EQ(icon.size(), QSize(48, 48));
    EXPECT_EQ(QColor(icon.pixel(24, 24)), QColor(10, 200, 30));
}

TEST_F(X11RunningApplicationsTest, IconFallsBackToTheWindowsOwnPicture) {
    ASSERT_NE(client.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200) +
                                                   QStringLiteral(" class=nothing.NoSuchApplication icon=#3366cc")),
              0u);
    const QImage icon = running().iconForApplication(static_cast<pid_t>(client.pid()));
    ASSERT_FALSE(icon.isNull());
    EXPECT_EQ(icon.size(), QSize(32, 32));  // the larger of the two pictures
    EXPECT_EQ(QColor(icon.pixel(5, 5)), QColor(0x33, 0x66, 0xcc));
}

TEST_F(X11RunningApplicationsTest, ProcessWithoutWindowsHasNoIcon) {
    EXPECT_TRUE(running().iconForApplication(static_cast<pid_t>(client.pid())).isNull());
    EXPECT_TRUE(running().iconForApplication(-1).isNull());
}

}  // namespace
