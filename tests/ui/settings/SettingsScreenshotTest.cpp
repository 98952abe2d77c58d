// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QStyle>
#include <QStyleFactory>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "KeyboardShortcuts/ShortcutStore.h"
#include "tests/ui/settings/SettingsFixture.h"

namespace {

QPalette darkPalette() {
    QPalette palette;
    const QColor window(0x26, 0x27, 0x2b);
    const QColor base(0x1e, 0x1f, 0x22);
    const QColor text(0xe8, 0xe8, 0xea);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3b, 0x40));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::Light, QColor(0x4a, 0x4b, 0x50));
    palette.setColor(QPalette::Midlight, QColor(0x38, 0x39, 0x3e));
    palette.setColor(QPalette::Mid, QColor(0x55, 0x56, 0x5c));
    palette.setColor(QPalette::Dark, QColor(0x15, 0x15, 0x18));
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x8b, 0xfd));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xa8, 0xff));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9b, 0xa0));
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x77, 0x78, 0x7c));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x77, 0x78, 0x7c));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x77, 0x78, 0x7c));
    return palette;
}

// Renders every section in a light and a dark palette, with displays, a remembered display, a missing
// permission and a status message, as a user would see them. Set LATTICA_SCREENSHOT_DIR to keep the images.
class SettingsScreenshotTest : public SettingsFixture, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        SettingsFixture::SetUp();
        m_savedPalette = QApplication::palette();
        m_savedStyle = QApplication::style()->name();
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(dark() ? darkPalette() : QApplication::style()->standardPalette());
        platform.sessionCheck.screenCaptureAvailable = false;
        platform.keyboardLayout.useUSLayout();
        platform.settings.setData(
            QStringLiteral("shortcutDisplayRecords.v1"),
            QByteArrayLiteral(R"([{"id":"v30-m60-s90","lastKnownName":"LG UltraFine","lastKnownIndex":3}])"));
        KeyboardShortcuts::ShortcutStore::write(
            platform.settings, KeyboardShortcuts::Name(QStringLiteral("moveFocusedWindowToDisplay.") + studioID()),
            KeyboardShortcuts::Shortcut(18 /* the 1 key */, 0x0100 | 0x0800 /* command, option */));
    }

    void TearDown() override {
        SettingsFixture::TearDown();
        QApplication::setStyle(QStyleFactory::create(m_savedStyle));
        QApplication::setPalette(m_savedPalette);
    }

    bool dark() const { return GetParam(); }

    QPalette m_savedPalette;
    QString m_savedStyle;
};

TEST_P(SettingsScreenshotTest, EverySectionRendersWithThePalettesColours) {
    SettingsView& settings = makeView();
    controller->setStatusMessage(QStringLiteral("Checked screen capture again."));
    const QString directory = qEnvironmentVariable("LATTICA_SCREENSHOT_DIR");
    const QPalette palette = QApplication::palette();
    QList<SettingsSection> sections = SettingsSections::sidebarSections();
    sections.append(SettingsSection::Debug);
    for (const SettingsSection section : sections) {
        settings.setSelectedSection(section);
        QApplication::processEvents();
        const QImage image = settings.grab().toImage();
        ASSERT_EQ(image.size(), QSize(760, 540) * settings.devicePixelRatioF());

        // Sidebar in the control background, detail pane in the window colour, a divider between them.
        EXPECT_EQ(image.pixel(4, image.height() - 4), palette.color(QPalette::Base).rgb());
        EXPECT_EQ(image.pixel(image.width() - 4, 4), palette.color(QPalette::Window).rgb());
        EXPECT_EQ(image.pixel(210, image.height() / 2), palette.color(QPalette::Mid).rgb());

        // Something is drawn in the header row: the title text differs from the background.
        bool titleDrawn = false;
        for (int x = 260; x < 460 && !titleDrawn; ++x) {
            for (int y = 20; y < 56 && !titleDrawn; ++y) {
                titleDrawn = image.pixel(x, y) != palette.color(QPalette::Window).rgb();
            }
        }
        EXPECT_TRUE(titleDrawn) << SettingsSections::rawValue(section).toStdString();

        if (!directory.isEmpty()) {
            QDir().mkpath(directory);
            const QString file =
                QStringLiteral("%1/settings-%2%3.png")
                    .arg(directory, SettingsSections::rawValue(section), dark() ? QStringLiteral("-dark") : QString());
            EXPECT_TRUE(image.save(file)) << file.toStdString();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Palettes, SettingsScreenshotTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& palette) {
                             return palette.param ? "Dark" : "Light";
                         });

}  // namespace
