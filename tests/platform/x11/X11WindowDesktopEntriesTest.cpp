// SPDX-License-Identifier: MIT
// Desktop entries that name and draw applications, matched against WM_CLASS. No X server needed.
#include <gtest/gtest.h>

#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowOwners.h"

namespace {

class X11WindowDesktopEntriesTest : public ::testing::Test {
protected:
    void write(const QString& directory, const QString& relative, const QByteArray& text) {
        const QString path = directory + QLatin1Char('/') + relative;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QTemporaryDir first;
    QTemporaryDir second;
};

TEST_F(X11WindowDesktopEntriesTest, StartupWmClassWinsOverTheFileName) {
    write(first.path(), QStringLiteral("editor.desktop"), "[Desktop Entry]\nType=Application\nName=By File\n");
    write(first.path(), QStringLiteral("other.desktop"),
          "[Desktop Entry]\nType=Application\nName=By Class\nStartupWMClass=Editor\nIcon=accessories-text-editor\n");
    X11WindowDesktopEntries entries({first.path()});
    const auto entry = entries.find("editor", "Editor");
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->name, QStringLiteral("By Class"));
    EXPECT_EQ(entry->icon, QStringLiteral("accessories-text-editor"));
}

TEST_F(X11WindowDesktopEntriesTest, FileNameMatchesClassOrInstanceWithoutCase) {
    write(first.path(), QStringLiteral("Gimp.desktop"), "[Desktop Entry]\nType=Application\nName=GNU Image\n");
    write(first.path(), QStringLiteral("org.example.Viewer.desktop"),
          "[Desktop Entry]\nType=Application\nName=Viewer\n");
    X11WindowDesktopEntries entries({first.path()});
    EXPECT_EQ(entries.find("gimp-2.10", "GIMP").value_or(X11WindowDesktopEntries::Entry{}).name,
              QStringLiteral("GNU Image"));
    EXPECT_EQ(entries.find("gimp", "Gimp-2.10").value_or(X11WindowDesktopEntries::Entry{}).name,
              QStringLiteral("GNU Image"));
    // A reverse-domain file name also matches by its last part.
    EXPECT_EQ(entries.find("viewer", "Viewer").value_or(X11WindowDesktopEntries::Entry{}).name,
              QStringLiteral("Viewer"));
    EXPECT_FALSE(entries.find("nothing", "Nothing").has_value());
    EXPECT_FALSE(entries.find("", "").has_value());
}

TEST_F(X11WindowDesktopEntriesTest, OnlyApplicationsWithANameInTheMainGroupCount) {
    write(first.path(), QStringLiteral("link.desktop"), "[Desktop Entry]\nType=Link\nName=A Link\n");
    write(first.path(), QStringLiteral("nameless.desktop"), "[Desktop Entry]\nType=Application\n");
    write(first.path(), QStringLiteral("action.desktop"),
          "[Desktop Entry]\nType=Application\nName=Main\n[Desktop Action New]\nName=Action\n");
    write(first.path(), QStringLiteral("broken.desktop"), "this is = not\n an entry");
    X11WindowDesktopEntries entries({first.path()});
    EXPECT_FALSE(entries.find("link", "Link").has_value());
    EXPECT_FALSE(entries.find("nameless", "Nameless").has_value());
    EXPECT_FALSE(entries.find("broken", "Broken").has_value());
    EXPECT_EQ(entries.find("action", "Action").value_or(X11WindowDesktopEntries::Entry{}).name, QStringLiteral("Main"));
}

TEST_F(X11WindowDesktopEntriesTest, EarlierDirectoriesWinAndSubdirectoriesAreSearched) {
    write(first.path(), QStringLiteral("tool.desktop"), "[Desktop Entry]\nType=Application\nName=Mine\n");
    write(second.path(), QStringLiteral("tool.desktop"), "[Desktop Entry]\nType=Application\nName=System\n");
    write(second.path(), QStringLiteral("kde/deep.desktop"), "[Desktop Entry]\nType=Application\nName=Deep\n");
    X11WindowDesktopEntries entries({first.path(), second.path()});
    EXPECT_EQ(entries.find("tool", "Tool").value_or(X11WindowDesktopEntries::Entry{}).name, QStringLiteral("Mine"));
    EXPECT_EQ(entries.find("deep", "Deep").value_or(X11WindowDesktopEntries::Entry{}).name, QStringLiteral("Deep"));
}

TEST_F(X11WindowDesktopEntriesTest, IdIsThePathBelowTheDirectoryWithoutTheSuffix) {
    write(first.path(), QStringLiteral("org.example.Viewer.desktop"), "[Desktop Entry]\nType=Application\nName=V\n");
    write(first.path(), QStringLiteral("kde/deep.desktop"), "[Desktop Entry]\nType=Application\nName=Deep\n");
    X11WindowDesktopEntries entries({first.path()});
    EXPECT_EQ(entries.find("viewer", "Viewer").value_or(X11WindowDesktopEntries::Entry{}).id,
              QStringLiteral("org.example.Viewer"));
    EXPECT_EQ(entries.find("deep", "Deep").value_or(X11WindowDesktopEntries::Entry{}).id, QStringLiteral("kde-deep"));
}

TEST_F(X11WindowDesktopEntriesTest, MissingDirectoriesGiveNoEntries) {
    X11WindowDesktopEntries entries({first.path() + QStringLiteral("/absent")});
    EXPECT_FALSE(entries.find("tool", "Tool").has_value());
}

TEST_F(X11WindowDesktopEntriesTest, DefaultsAreTheApplicationsFoldersOfTheDataDirectories) {
    write(first.path(), QStringLiteral("applications/home.desktop"), "[Desktop Entry]\nType=Application\nName=Home\n");
    write(second.path(), QStringLiteral("applications/system.desktop"),
          "[Desktop Entry]\nType=Application\nName=System\n");
    write(second.path(), QStringLiteral("applications/home.desktop"),
          "[Desktop Entry]\nType=Application\nName=Shadowed\n");
    qputenv("XDG_DATA_HOME", first.path().toUtf8());
    qputenv("XDG_DATA_DIRS", second.path().toUtf8());
    X11WindowDesktopEntries entries;
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("XDG_DATA_DIRS");
    const auto home = entries.find("home", "Home");
    const auto system = entries.find("system", "System");
    ASSERT_TRUE(home.has_value());
    ASSERT_TRUE(system.has_value());
    EXPECT_EQ(home->name, QStringLiteral("Home"));
    EXPECT_EQ(system->name, QStringLiteral("System"));
}

TEST(X11WindowOwnersTest, ProcessFactsComeFromProc) {
    EXPECT_TRUE(X11WindowOwners::processStartTime(getpid()).has_value());
    EXPECT_TRUE(X11WindowOwners::processName(getpid()).has_value());
    // A pid no process can have.
    EXPECT_FALSE(X11WindowOwners::processStartTime(0x7ffffff0).has_value());
    EXPECT_FALSE(X11WindowOwners::processName(0x7ffffff0).has_value());
    // A process started later has a later (or equal) start time.
    EXPECT_LE(X11WindowOwners::processStartTime(1).value_or(0), *X11WindowOwners::processStartTime(getpid()));
}

TEST(X11WindowOwnersTest, TheServersPidOfTheConnectionWinsOverWhatTheWindowSays) {
    X11WindowOwners::PidSources sources;
    sources.netWmPid = 1;
    sources.clientPid = getpid();
    sources.serverNamesClients = true;
    EXPECT_EQ(X11WindowOwners::ownerOf(0x400001, sources, 0x1FFFFF), getpid());
}

TEST(X11WindowOwnersTest, WithoutTheServersAnswerOnlyAProcessConnectedToTheServerIsTakenAtItsWord) {
    X11WindowOwners::PidSources sources;
    sources.netWmPid = getpid();
    sources.netWmPidIsAClient = true;
    EXPECT_EQ(X11WindowOwners::ownerOf(0x400001, sources, 0x1FFFFF), getpid());
    // A live local process that holds no connection to the server, as a pid from a PID namespace can name.
    sources.netWmPidIsAClient = false;
    const std::optional<pid_t> owner = X11WindowOwners::ownerOf(0x400001, sources, 0x1FFFFF);
    ASSERT_TRUE(owner.has_value());
    EXPECT_TRUE(X11WindowOwners::isConnection(*owner));
}

TEST(X11WindowOwnersTest, AClientTheServerCannotNameIsOwnedByItsConnection) {
    // The server was asked and knows no local process: a pid from another machine means nothing here.
    X11WindowOwners::PidSources sources;
    sources.netWmPid = getpid();
    sources.serverNamesClients = true;
    const std::optional<pid_t> first = X11WindowOwners::ownerOf(0x400001, sources, 0x1FFFFF);
    const std::optional<pid_t> sameClient = X11WindowOwners::ownerOf(0x400123, sources, 0x1FFFFF);
    const std::optional<pid_t> otherClient = X11WindowOwners::ownerOf(0x600001, sources, 0x1FFFFF);
    ASSERT_TRUE(first.has_value());
    EXPECT_TRUE(X11WindowOwners::isConnection(*first));
    EXPECT_GT(*first, 0);
    EXPECT_EQ(first, sameClient);
    EXPECT_NE(first, otherClient);
    EXPECT_FALSE(X11WindowOwners::processStartTime(*first).has_value());
}

TEST(X11DesktopFileTest, ParsesTheMainGroupFromBytesInTheGivenLocale) {
    const QByteArray contents =
        "[Other]\nName=Wrong\n"
        "[Desktop Entry]\r\n# Name=Comment\r\nName = Viewer \r\nName[de]=Betrachter\r\n"
        "Icon=/usr/share/icons/viewer.png\r\nStartupWMClass=org.example.Viewer\r\nType=Application\r\n"
        "[Desktop Action new]\nName=New Window\nIcon=other\n";
    const X11WindowDesktopEntries::ParsedFile german =
        X11WindowDesktopEntries::parseFile(contents, QStringLiteral("de_AT"));
    EXPECT_EQ(german.name, QStringLiteral("Betrachter"));
    EXPECT_EQ(german.icon, QStringLiteral("/usr/share/icons/viewer.png"));
    EXPECT_EQ(german.wmClass, QStringLiteral("org.example.Viewer"));
    EXPECT_TRUE(german.application);
    EXPECT_EQ(X11WindowDesktopEntries::parseFile(contents, QStringLiteral("fr_FR")).name, QStringLiteral("Viewer"));
    EXPECT_FALSE(
        X11WindowDesktopEntries::parseFile("[Desktop Entry]\nType=Link\nName=Home\n", QStringLiteral("C")).application);
}

}  // namespace
