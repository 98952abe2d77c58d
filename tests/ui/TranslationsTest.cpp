// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QTranslator>

#include "app/ui/common/Translations.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/TrayPanelView.h"
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

TEST_F(TranslatedUi, LanguageWithoutTranslationKeepsEnglish) {
    EXPECT_FALSE(Translations::install(QLocale(QLocale::Icelandic)));
    makeController();
    TrayPanelView view(controller());
    view.show();
    EXPECT_NE(buttonWithText(view, QStringLiteral("Settings")), nullptr);
}

}  // namespace
