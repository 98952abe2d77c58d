// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <optional>

#include "platform/xdg/FileSettingsStore.h"
#include "platform/xdg/XdgAutostart.h"
#include "platform/xdg/XdgBaseDirectories.h"

namespace {

// Sets or unsets environment variables for one test and restores them afterwards.
class XdgBaseDirectoriesTest : public ::testing::Test {
protected:
    void TearDown() override {
        for (auto it = m_saved.cbegin(); it != m_saved.cend(); ++it) {
            if (it.value()) {
                qputenv(it.key().constData(), *it.value());
            } else {
                qunsetenv(it.key().constData());
            }
        }
    }

    void set(const QByteArray& name, const std::optional<QByteArray>& value) {
        if (!m_saved.contains(name)) {
            m_saved.insert(name, qEnvironmentVariableIsSet(name.constData())
                                     ? std::optional<QByteArray>(qgetenv(name.constData()))
                                     : std::nullopt);
        }
        if (value) {
            qputenv(name.constData(), *value);
        } else {
            qunsetenv(name.constData());
        }
    }

    static QString accountHome() {
        const passwd* account = ::getpwuid(::getuid());
        return account != nullptr ? QDir::cleanPath(QString::fromLocal8Bit(account->pw_dir)) : QString();
    }

private:
    QMap<QByteArray, std::optional<QByteArray>> m_saved;
};

TEST_F(XdgBaseDirectoriesTest, AbsoluteConfigHomeIsUsed) {
    set("HOME", QByteArray("/home/someone"));
    set("XDG_CONFIG_HOME", QByteArray("/srv/config"));
    EXPECT_EQ(XdgBaseDirectories::configHome(), QStringLiteral("/srv/config"));
    EXPECT_EQ(FileSettingsStore::standardPath(), QStringLiteral("/srv/config/lattica/defaults.json"));
    EXPECT_EQ(XdgAutostart::standardPath(), QStringLiteral("/srv/config/autostart/app.lattica.Lattica.desktop"));
    EXPECT_EQ(XdgAutostart::legacyStandardPath(), QStringLiteral("/srv/config/autostart/lattica.desktop"));
}

TEST_F(XdgBaseDirectoriesTest, RelativeConfigHomeIsIgnored) {
    set("HOME", QByteArray("/home/someone"));
    set("XDG_CONFIG_HOME", QByteArray("relative/config"));
    EXPECT_EQ(XdgBaseDirectories::configHome(), QStringLiteral("/home/someone/.config"));
    EXPECT_EQ(FileSettingsStore::standardPath(), QStringLiteral("/home/someone/.config/lattica/defaults.json"));
    EXPECT_EQ(XdgAutostart::standardPath(),
              QStringLiteral("/home/someone/.config/autostart/app.lattica.Lattica.desktop"));
    EXPECT_EQ(XdgAutostart::legacyStandardPath(), QStringLiteral("/home/someone/.config/autostart/lattica.desktop"));
}

TEST_F(XdgBaseDirectoriesTest, EmptyConfigHomeMeansTheDefault) {
    set("HOME", QByteArray("/home/someone"));
    set("XDG_CONFIG_HOME", QByteArray());
    EXPECT_EQ(FileSettingsStore::standardPath(), QStringLiteral("/home/someone/.config/lattica/defaults.json"));
}

TEST_F(XdgBaseDirectoriesTest, WithoutHomeTheAccountsHomeIsUsedAndNeverTheRoot) {
    set("HOME", std::nullopt);
    set("XDG_CONFIG_HOME", std::nullopt);
    const QString path = FileSettingsStore::standardPath();
    EXPECT_FALSE(path.startsWith(QLatin1String("/.config"))) << qPrintable(path);
    const QString account = accountHome();
    if (!account.isEmpty() && account != QLatin1String("/")) {
        EXPECT_EQ(path, account + QStringLiteral("/.config/lattica/defaults.json"));
    } else {
        EXPECT_TRUE(path.isEmpty()) << qPrintable(path);
    }
}

TEST_F(XdgBaseDirectoriesTest, RelativeHomeIsNotAHome) {
    set("HOME", QByteArray("not/absolute"));
    set("XDG_CONFIG_HOME", std::nullopt);
    const QString path = FileSettingsStore::standardPath();
    EXPECT_FALSE(path.startsWith(QLatin1String("not/"))) << qPrintable(path);
    EXPECT_TRUE(path.isEmpty() || QDir::isAbsolutePath(path)) << qPrintable(path);
}

TEST_F(XdgBaseDirectoriesTest, RootAsHomeGivesNoConfigFolderUnderTheRoot) {
    set("HOME", QByteArray("/"));
    set("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_NE(XdgBaseDirectories::configHome(), QStringLiteral("/.config"));
    EXPECT_FALSE(FileSettingsStore::standardPath().startsWith(QLatin1String("/.config")));
}

}  // namespace
