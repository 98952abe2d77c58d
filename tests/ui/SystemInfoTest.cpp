// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/xdg/LinuxSystemInfo.h"

namespace {

TEST(LinuxSystemInfo, NamesTheDistributionByItsPrettyName) {
    const QByteArray osRelease =
        "NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n"
        "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nID=debian\n";
    EXPECT_EQ(LinuxSystemInfo::distributionName(osRelease), QStringLiteral("Debian GNU/Linux 12 (bookworm)"));
}

TEST(LinuxSystemInfo, AcceptsUnquotedAndSingleQuotedValues) {
    EXPECT_EQ(LinuxSystemInfo::distributionName("PRETTY_NAME=Arch\n"), QStringLiteral("Arch"));
    EXPECT_EQ(LinuxSystemInfo::distributionName("PRETTY_NAME='Fedora 40'\n"), QStringLiteral("Fedora 40"));
}

TEST(LinuxSystemInfo, FallsBackToTheNameWithoutAPrettyName) {
    EXPECT_EQ(LinuxSystemInfo::distributionName("NAME=\"Alpine Linux\"\n"), QStringLiteral("Alpine Linux"));
}

TEST(LinuxSystemInfo, WithoutAnOsReleaseFileSaysUnknown) {
    EXPECT_EQ(LinuxSystemInfo::distributionName({}), QStringLiteral("Unknown"));
}

TEST(LinuxSystemInfo, KernelLineNamesKernelAndRelease) {
    EXPECT_EQ(LinuxSystemInfo::kernelLine(QStringLiteral("Linux"), QStringLiteral("6.1.0-18-amd64")),
              QStringLiteral("Linux 6.1.0-18-amd64"));
    EXPECT_EQ(LinuxSystemInfo::kernelLine({}, {}), QStringLiteral("Unknown"));
}

TEST(LinuxSystemInfo, DescribesDesktopSessionAndBackendFromTheEnvironment) {
    qputenv("XDG_CURRENT_DESKTOP", QByteArrayLiteral("XFCE"));
    qputenv("XDG_SESSION_TYPE", QByteArrayLiteral("x11"));
    LinuxSystemInfo info(QStringLiteral("X11"));
    const SystemDescription description = info.describe();
    EXPECT_EQ(description.desktop, QStringLiteral("XFCE"));
    EXPECT_EQ(description.sessionType, QStringLiteral("x11"));
    EXPECT_EQ(description.backend, QStringLiteral("X11"));
    EXPECT_FALSE(description.distribution.isEmpty());
    EXPECT_FALSE(description.kernel.isEmpty());
    qunsetenv("XDG_CURRENT_DESKTOP");
    qunsetenv("XDG_SESSION_TYPE");
    EXPECT_EQ(info.describe().desktop, QStringLiteral("Unknown"));
    EXPECT_EQ(info.describe().sessionType, QStringLiteral("Unknown"));
}

}  // namespace
