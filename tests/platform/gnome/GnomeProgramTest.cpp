// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QColor>
#include <QDir>
#include <QImage>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "tests/platform/gnome/GnomeSessionProgram.h"
#include "tests/platform/gnome/ShellScreenshot.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// A frame of `lattica windows`: WxH+X+Y.
QRect frameOf(const QStringList& line) {
    static const QRegularExpression pattern(QStringLiteral(R"(^(\d+)x(\d+)\+(-?\d+)\+(-?\d+)$)"));
    const QRegularExpressionMatch match = pattern.match(line.value(2));
    if (!match.hasMatch()) {
        return {};
    }
    return {match.captured(3).toInt(), match.captured(4).toInt(), match.captured(1).toInt(), match.captured(2).toInt()};
}

// Where the image has the colour (each channel within a small tolerance): how many pixels, and the
// rectangle around them.
struct ColourArea {
    int pixels = 0;
    QRect bounds;
};

ColourArea findColour(const QImage& image, QColor colour) {
    constexpr int kTolerance = 12;
    ColourArea area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (std::abs(pixel.red() - colour.red()) <= kTolerance &&
                std::abs(pixel.green() - colour.green()) <= kTolerance &&
                std::abs(pixel.blue() - colour.blue()) <= kTolerance) {
                ++area.pixels;
                area.bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return area;
}

class GnomeProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("LATTICA_GNOME_LAYOUT")) {
            if (QStandardPaths::findExecutable(QStringLiteral("gnome-shell")).isEmpty()) {
                GTEST_SKIP() << "gnome-shell is not installed (scripts/install-deps.sh installs it)";
            }
            FAIL() << "run this test inside scripts/virtual-gnome.sh run -- (ctest does)";
        }
    }

    QTemporaryDir m_config;
    GnomeSessionProgram m_lattica{m_config.path()};
};

TEST_F(GnomeProgramTest, OnGnomeWaylandACommandReachesTheShellThroughTheExtension) {
    const GnomeSessionProgram::Finished finished = m_lattica.run({QStringLiteral("displays")});
    EXPECT_EQ(finished.status, 0) << finished.errors.toStdString();
    EXPECT_TRUE(finished.output.contains(QLatin1String("Meta-"))) << finished.output.toStdString();
    EXPECT_TRUE(finished.output.contains(QLatin1String("1280x720+1920+0"))) << finished.output.toStdString();
}

TEST_F(GnomeProgramTest, TheTrayProgramRunsAsAWaylandClientAndMovesWindows) {
    // The session has no X server: the program can only be a Wayland client here.
    ASSERT_TRUE(qEnvironmentVariableIsEmpty("DISPLAY"));
    ASSERT_TRUE(m_lattica.start());
    ASSERT_TRUE(m_lattica.waitForOutput(QStringLiteral("the panel opens"))) << m_lattica.output().toStdString();
    ASSERT_TRUE(m_lattica.isRunning()) << m_lattica.output().toStdString();
    // GNOME Shell hosts no tray icons without an extension for them: the panel is an ordinary window,
    // which the running program lists among the desktop's windows with its own process id.
    EXPECT_TRUE(m_lattica.output().contains(QLatin1String("no system tray is available")))
        << m_lattica.output().toStdString();
    QStringList panel;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        panel = m_lattica.windowLine(QStringLiteral("Lattica"));
        return !panel.isEmpty();
    }));
    EXPECT_EQ(panel.at(3).toLongLong(), m_lattica.processId());

    // A move asked of the running program goes through its own connection to the extension.
    WaylandClient client;
    ASSERT_TRUE(client.start());
    ASSERT_TRUE(client.open(QStringLiteral("moved"), QStringLiteral("title=moved-window w=400 h=300")));
    QStringList before;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        before = m_lattica.windowLine(QStringLiteral("moved-window"));
        return !before.isEmpty();
    }));
    // The second monitor starts at x 1920, and the Shell opens windows on the first.
    ASSERT_LT(frameOf(before).x(), 1920) << before.join(QLatin1Char(' ')).toStdString();
    const GnomeSessionProgram::Finished moved = m_lattica.run(
        {QStringLiteral("move-app"), QString::number(client.pid()), QStringLiteral("--to"), QStringLiteral("2")});
    EXPECT_EQ(moved.status, 0) << moved.output.toStdString() << moved.errors.toStdString();
    const QStringList after = m_lattica.windowLine(QStringLiteral("moved-window"));
    ASSERT_FALSE(after.isEmpty());
    ASSERT_FALSE(frameOf(after).isNull()) << after.join(QLatin1Char(' ')).toStdString();
    EXPECT_GE(frameOf(after).x(), 1920) << after.join(QLatin1Char(' ')).toStdString();
}

TEST_F(GnomeProgramTest, ThePanelPreviewsEachMonitorWithTheColoursOfItsWindows) {
    // One window of its own colour on each monitor before the program starts: red on the first,
    // blue moved to the second.
    const QColor red(0xff, 0x00, 0x00);
    const QColor blue(0x00, 0x00, 0xff);
    WaylandClient first;
    WaylandClient second;
    ASSERT_TRUE(first.start());
    ASSERT_TRUE(second.start());
    ASSERT_TRUE(first.open(QStringLiteral("red"), QStringLiteral("title=red-window w=500 h=400 color=#ff0000")));
    ASSERT_TRUE(second.open(QStringLiteral("blue"), QStringLiteral("title=blue-window w=500 h=400 color=#0000ff")));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return !m_lattica.windowLine(QStringLiteral("red-window")).isEmpty() &&
               !m_lattica.windowLine(QStringLiteral("blue-window")).isEmpty();
    }));
    ASSERT_EQ(m_lattica
                  .run({QStringLiteral("move-app"), QString::number(second.pid()), QStringLiteral("--to"),
                        QStringLiteral("2")})
                  .status,
              0);
    ASSERT_GE(frameOf(m_lattica.windowLine(QStringLiteral("blue-window"))).x(), 1920);
    ASSERT_LT(frameOf(m_lattica.windowLine(QStringLiteral("red-window"))).x(), 1920);

    // Without a tray the panel opens by itself as an ordinary window, and says when its previews are
    // painted.
    ASSERT_TRUE(m_lattica.start());
    ASSERT_TRUE(m_lattica.waitForOutput(QStringLiteral("previews painted"))) << m_lattica.output().toStdString();
    QRect panel;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        panel = frameOf(m_lattica.windowLine(QStringLiteral("Lattica")));
        return !panel.isEmpty();
    })) << m_lattica.run({QStringLiteral("windows")}).output.toStdString();

    // The panel is the newest window, on top: the Shell's picture of its frame is the panel alone.
    ShellScreenshot screenshot;
    const QImage image = screenshot.area(panel);
    ASSERT_FALSE(image.isNull()) << screenshot.error().toStdString();
    const QString saved = QDir::current().filePath(QStringLiteral("gnome-panel-previews.png"));
    image.save(saved);
    std::printf("[ picture ] the panel with its previews: %s\n", qPrintable(saved));

    // Each card's preview holds its monitor's window, scaled down: a patch of its colour, one patch in each
    // card. The panel's own drawing has neither colour.
    const ColourArea redPreview = findColour(image, red);
    const ColourArea bluePreview = findColour(image, blue);
    constexpr int kSmallestPreview = 400;
    EXPECT_GE(redPreview.pixels, kSmallestPreview) << qPrintable(saved);
    EXPECT_GE(bluePreview.pixels, kSmallestPreview) << qPrintable(saved);
    EXPECT_FALSE(redPreview.bounds.intersects(bluePreview.bounds)) << qPrintable(saved);
}

}  // namespace
