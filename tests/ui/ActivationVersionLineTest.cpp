#include <gtest/gtest.h>

#include "platform/x11/X11Activation.h"

namespace {

TEST(OperatingSystemVersionLine, NamesTheDistributionAndTheKernel) {
    const QByteArray osRelease =
        "NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n"
        "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nID=debian\n";
    EXPECT_EQ(X11Activation::versionLine(osRelease, QStringLiteral("Linux"), QStringLiteral("6.1.0-18-amd64")),
              QStringLiteral("Debian GNU/Linux 12 (bookworm), kernel Linux 6.1.0-18-amd64"));
}

TEST(OperatingSystemVersionLine, AcceptsUnquotedAndSingleQuotedValues) {
    EXPECT_EQ(X11Activation::versionLine("PRETTY_NAME=Arch\n", QStringLiteral("Linux"), QStringLiteral("6.9")),
              QStringLiteral("Arch, kernel Linux 6.9"));
    EXPECT_EQ(X11Activation::versionLine("PRETTY_NAME='Fedora 40'\n", QStringLiteral("Linux"), QStringLiteral("6.9")),
              QStringLiteral("Fedora 40, kernel Linux 6.9"));
}

TEST(OperatingSystemVersionLine, FallsBackToTheNameWithoutAPrettyName) {
    EXPECT_EQ(X11Activation::versionLine("NAME=\"Alpine Linux\"\n", QStringLiteral("Linux"), QStringLiteral("6.6")),
              QStringLiteral("Alpine Linux, kernel Linux 6.6"));
}

TEST(OperatingSystemVersionLine, WithoutAnOsReleaseFileNamesOnlyTheKernel) {
    EXPECT_EQ(X11Activation::versionLine({}, QStringLiteral("Linux"), QStringLiteral("6.1.0")),
              QStringLiteral("Linux 6.1.0"));
}

TEST(OperatingSystemVersionLine, WithNothingKnownSaysUnknown) {
    EXPECT_EQ(X11Activation::versionLine({}, {}, {}), QStringLiteral("Unknown"));
}

}  // namespace
