// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QTranslator>

#include "app/commands/CommandLine.h"
#include "app/commands/MonitorTargets.h"
#include "app/mover/WindowMoveStatus.h"
#include "app/ui/common/Translations.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/TrayPanelView.h"
#include "app/ui/settings/SettingsView.h"
#include "tests/ui/UiFixture.h"

namespace {

class TranslatedUi : public UiTest {
protected:
    void TearDown() override {
        for (QTranslator* translator : QCoreApplication::instance()->findChildren<QTranslator*>()) {
            QCoreApplication::removeTranslator(translator);
            delete translator;
        }
        UiTest::TearDown();
    }
};

TEST_F(TranslatedUi, GermanLocaleShowsThePanelInGerman) {
    ASSERT_TRUE(Translations::install(QLocale(QLocale::German, QLocale::Germany)));
    makeController();
    refreshAndWait();
    TrayPanelView view(controller());
    view.resize(640, 420);
    view.show();
    EXPECT_NE(labelWithText(view, QStringLiteral("Bildschirme in der Vorschau sehen und Fenster von einem Bildschirm "
                                                 "auf einen anderen verschieben.")),
              nullptr);
    EXPECT_NE(buttonWithText(view, QStringLiteral("Einstellungen")), nullptr);
    EXPECT_NE(buttonWithText(view, QStringLiteral("Beenden")), nullptr);
    ASSERT_EQ(view.cards().size(), 2);
    EXPECT_NE(labelWithText(*view.cards().first(), QStringLiteral("Sichtbare Fenster verschieben nach:")), nullptr);
    EXPECT_NE(labelWithText(*view.cards().first(), QStringLiteral("0 sichtbare Fenster")), nullptr);
    EXPECT_EQ(labelWithText(view, QStringLiteral("Move visible windows to:")), nullptr) << "no English left";
}

TEST_F(TranslatedUi, GermanLocaleShowsTheGuideInGerman) {
    ASSERT_TRUE(Translations::install(QLocale(QLocale::German, QLocale::Austria)));
    platform.sessionCheck.screenCaptureAvailable = false;
    makeController();
    PermissionGuideView guide(controller());
    guide.show();
    EXPECT_NE(labelWithText(guide, QStringLiteral("Erforderliche Berechtigungen aktivieren")), nullptr);
    EXPECT_NE(buttonWithText(guide, QStringLiteral("Berechtigungen erneut prüfen")), nullptr);
}

TEST_F(TranslatedUi, GermanLocaleShowsTheSettingsInGerman) {
    ASSERT_TRUE(Translations::install(QLocale(QLocale::German, QLocale::Germany)));
    makeController();
    SettingsView view(controller());
    view.resize(760, 540);
    view.show();
    for (const QString& section : {QStringLiteral("Berechtigungen"), QStringLiteral("Verhalten"),
                                   QStringLiteral("Tastenkürzel"), QStringLiteral("Über")}) {
        EXPECT_NE(buttonWithText(view, section), nullptr) << qPrintable(section);
    }
    view.setSelectedSection(SettingsSection::Behavior);
    EXPECT_NE(labelWithText(view, QStringLiteral("In der Taskleiste zeigen")), nullptr);
    EXPECT_NE(labelWithText(view, QStringLiteral("Fenstergröße an den Zielbildschirm anpassen")), nullptr);
    EXPECT_NE(buttonWithText(view, QStringLiteral("Zugriff anfordern")), nullptr);
    EXPECT_EQ(labelWithText(view, QStringLiteral("Show in taskbar")), nullptr) << "no English left";
    EXPECT_EQ(buttonWithText(view, QStringLiteral("Request Access")), nullptr) << "no English left";
}

TEST_F(TranslatedUi, GermanMoveStatusesUseTheRightPluralForm) {
    ASSERT_TRUE(Translations::install(QLocale(QLocale::German, QLocale::Switzerland)));
    EXPECT_EQ(WindowMoveStatus::allWindows({.movedCount = 2, .attemptedCount = 3}),
              QStringLiteral("2 von 3 Fenstern verschoben."));
    EXPECT_EQ(WindowMoveStatus::allWindows({.movedCount = 1, .attemptedCount = 1}),
              QStringLiteral("1 von 1 Fenster verschoben."));
    EXPECT_EQ(WindowMoveStatus::applicationWindows({.movedCount = 0, .attemptedCount = 2}, QStringLiteral("Kate")),
              QStringLiteral("0 von 2 Fenstern von Kate verschoben."));
    EXPECT_EQ(WindowMoveStatus::focusedWindow({.movedCount = 1, .attemptedCount = 1}, QStringLiteral("HDMI-1")),
              QStringLiteral("Fokussiertes Fenster auf HDMI-1 verschoben."));
}

TEST_F(TranslatedUi, GermanCommandLineMessagesAndHelp) {
    ASSERT_TRUE(Translations::install(QLocale(QLocale::German, QLocale::Germany)));
    const CommandLine::Request bad = CommandLine::parse({QStringLiteral("lattica"), QStringLiteral("frobnicate")});
    EXPECT_TRUE(bad.output.contains(QStringLiteral("„frobnicate“ ist kein Befehl.")));
    EXPECT_TRUE(bad.output.contains(QStringLiteral("„lattica --help“ zeigt die Hilfe.")));
    const QString help = CommandLine::helpText();
    EXPECT_TRUE(help.contains(QStringLiteral("Befehle:")));
    EXPECT_TRUE(help.contains(QStringLiteral("Die Bildschirme auflisten.")));
    EXPECT_TRUE(help.contains(QStringLiteral("Das fokussierte Fenster verschieben.")));
    EXPECT_FALSE(help.contains(QStringLiteral("List the monitors."))) << "no English left";
    // The numbers of monitors are counted in the German plural.
    const DisplayDescriptor first{.persistentID = QStringLiteral("a"), .index = 1, .name = QStringLiteral("DP-1")};
    const DisplayDescriptor second{.persistentID = QStringLiteral("b"), .index = 2, .name = QStringLiteral("DP-2")};
    const auto missing = MonitorTargets::resolve(QStringLiteral("4"), {first, second}, std::nullopt);
    ASSERT_TRUE(std::holds_alternative<MonitorTargets::NoSuchMonitor>(missing));
    EXPECT_EQ(std::get<MonitorTargets::NoSuchMonitor>(missing).message,
              QStringLiteral("Es gibt keinen Bildschirm 4; es gibt 2 Bildschirme, nummeriert wie im Panel."));
}

TEST_F(TranslatedUi, LanguageWithoutTranslationKeepsEnglish) {
    EXPECT_FALSE(Translations::install(QLocale(QLocale::Icelandic)));
    makeController();
    TrayPanelView view(controller());
    view.show();
    EXPECT_NE(buttonWithText(view, QStringLiteral("Settings")), nullptr);
}

}  // namespace
