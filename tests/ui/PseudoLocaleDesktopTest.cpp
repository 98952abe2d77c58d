// SPDX-License-Identifier: MIT
// The panel, the permission guide and every settings page in a pseudo language whose texts are 40 % longer
// than the English ones, on the virtual desktop: every label and button shows its whole text. The
// pictures are saved for a person to look at.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollArea>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTranslator>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/WindowPresenter.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/TrayPanelView.h"
#include "app/ui/settings/SettingsView.h"
#include "platform/SettingsStore.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/ui/ScreenshotSupport.h"

namespace {

// Whether a text came through the pseudo translation: those texts are in brackets.
bool isPseudoText(const QString& text) {
    return text.contains(QLatin1Char('[')) || text.contains(QLatin1Char(']'));
}

QString describe(const QWidget& widget, const QString& text) {
    return QStringLiteral("%1 \"%2\" (%3x%4, needs %5x%6)")
        .arg(QString::fromLatin1(widget.metaObject()->className()), text)
        .arg(widget.width())
        .arg(widget.height())
        .arg(widget.sizeHint().width())
        .arg(widget.sizeHint().height());
}

// The labels and buttons of a window that show less than their whole text.
QStringList cutOffTexts(const QWidget& window) {
    QStringList problems;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        const QString text = label->text();
        if (!label->isVisibleTo(&window) || text.isEmpty()) {
            continue;
        }
        if (isPseudoText(text) && !(text.contains(QLatin1Char('[')) && text.contains(QLatin1Char(']')))) {
            problems << QStringLiteral("elided: ") + describe(*label, text);
            continue;
        }
        const bool fits = label->wordWrap() ? label->heightForWidth(label->width()) <= label->height()
                                            : label->sizeHint().width() <= label->width() &&
                                                  label->sizeHint().height() <= label->height();
        if (!fits) {
            problems << QStringLiteral("does not fit: ") + describe(*label, text);
        }
    }
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        const QString text = button->text();
        if (!button->isVisibleTo(&window) || text.isEmpty()) {
            continue;
        }
        if (button->sizeHint().width() > button->width() || button->sizeHint().height() > button->height()) {
            problems << QStringLiteral("does not fit: ") + describe(*button, text);
        }
    }
    // A prompt in an empty field: the field's frame and its inner margins take their part of the width.
    for (const QLineEdit* field : window.findChildren<QLineEdit*>()) {
        const QString prompt = field->placeholderText();
        if (!field->isVisibleTo(&window) || prompt.isEmpty() || !field->text().isEmpty()) {
            continue;
        }
        const int frame = 2 * field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, field);
        constexpr int kLineEditMargins = 4;
        const int room =
            field->width() - frame - kLineEditMargins - field->textMargins().left() - field->textMargins().right();
        if (field->fontMetrics().horizontalAdvance(prompt) > room) {
            problems << QStringLiteral("prompt does not fit: ") + describe(*field, prompt);
        }
    }
    // Pages that scroll only up and down must not be wider than their view: the right edge would be cut.
    for (const QScrollArea* scroll : window.findChildren<QScrollArea*>()) {
        if (!scroll->isVisibleTo(&window) || scroll->widget() == nullptr ||
            scroll->horizontalScrollBarPolicy() != Qt::ScrollBarAlwaysOff) {
            continue;
        }
        if (scroll->widget()->minimumSizeHint().width() > scroll->viewport()->width()) {
            problems << QStringLiteral("page wider than its view: %1 needs %2, has %3")
                            .arg(scroll->objectName())
                            .arg(scroll->widget()->minimumSizeHint().width())
                            .arg(scroll->viewport()->width());
        }
    }
    return problems;
}

// Texts of a window that came through no translation: English left in the pseudo language. Texts that
// contain one of the allowed parts (names from the desktop) and texts without words are not counted.
QStringList untranslatedTexts(const QWidget& window, const QStringList& allowed) {
    QStringList found;
    auto check = [&](const QWidget& widget, const QString& text) {
        const bool fromData =
            std::any_of(allowed.cbegin(), allowed.cend(), [&](const QString& part) { return text.contains(part); });
        const bool words = text.contains(QRegularExpression(QStringLiteral("[A-Za-z]{2}")));
        if (widget.isVisibleTo(&window) && words && !isPseudoText(text) && !fromData) {
            found << QString::fromLatin1(widget.metaObject()->className()) + QStringLiteral(" \"") + text +
                         QLatin1Char('"');
        }
    };
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        check(*label, label->text());
    }
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        check(*button, button->text());
    }
    return found;
}

class PseudoLocale : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_translator.load(QStringLiteral(LATTICA_PSEUDO_QM))) << LATTICA_PSEUDO_QM;
        QCoreApplication::installTranslator(&m_translator);
        ASSERT_TRUE(m_config.isValid());
        qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8());
        QApplication::setQuitOnLastWindowClosed(false);
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
        m_platform->services().settings->setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
        m_controller = std::make_unique<AppController>();
        m_windows = std::make_unique<WindowPresenter>(*m_controller);
    }

    void TearDown() override {
        m_app.reset();
        QThreadPool::globalInstance()->waitForDone();
        m_windows.reset();
        m_controller.reset();
        Platform::install({});
        m_platform.reset();
        QCoreApplication::removeTranslator(&m_translator);
        qunsetenv("XDG_CONFIG_HOME");
    }

    // Saves a picture of the window and checks its texts.
    void check(QWidget& window, const QString& name, const QStringList& allowedEnglish = {}) {
        QCoreApplication::processEvents();
        const QString path = screenshotDirectory() + QStringLiteral("/pseudo-") + name + QStringLiteral(".png");
        EXPECT_TRUE(window.grab().save(path)) << qPrintable(path);
        const QStringList cutOff = cutOffTexts(window);
        EXPECT_TRUE(cutOff.isEmpty()) << qPrintable(name) << ":\n" << qPrintable(cutOff.join(QLatin1Char('\n')));
        const QStringList english = untranslatedTexts(window, allowedEnglish);
        EXPECT_TRUE(english.isEmpty()) << qPrintable(name) << ":\n" << qPrintable(english.join(QLatin1Char('\n')));
    }

    QTranslator m_translator;
    QTemporaryDir m_config;
    std::unique_ptr<X11Platform> m_platform;
    std::unique_ptr<AppController> m_controller;
    std::unique_ptr<WindowPresenter> m_windows;
    std::unique_ptr<LatticaApp> m_app;
};

TEST_F(PseudoLocale, PanelShowsEveryTextWhole) {
    m_app = std::make_unique<LatticaApp>(*m_controller, *m_windows);
    m_app->openPanel();
    const qsizetype monitors = VirtualDesktop::layout().size();
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            const QList<DisplayCardView*> cards = m_app->panelContent()->cards();
            return !m_controller->isLoadingPreviews() && cards.size() == monitors &&
                   std::all_of(cards.cbegin(), cards.cend(),
                               [](const DisplayCardView* card) { return !card->scaledPreview().isNull(); });
        },
        10000));
    QStringList monitorNames;
    for (const DisplaySnapshot& display : m_controller->displays()) {
        monitorNames << display.name;
    }
    // Monitor names and the version come from the desktop and the build, not from translations.
    check(*m_app->panel(), QStringLiteral("panel"), monitorNames);
    m_app->closePanel();
}

TEST_F(PseudoLocale, PermissionGuideShowsEveryTextWhole) {
    m_windows->showPermissionGuideWindow();
    QWidget* guide = m_windows->permissionWindow();
    ASSERT_NE(guide, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(guide));
    check(*guide, QStringLiteral("guide"));
    guide->close();
}

TEST_F(PseudoLocale, EverySettingsPageShowsEveryTextWhole) {
    m_windows->showSettingsWindow();
    QWidget* window = m_windows->settingsWindow();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    auto* settings = window->findChild<SettingsView*>();
    ASSERT_NE(settings, nullptr);
    QStringList monitorNames;
    for (const DisplayDescriptor& display : ScreenSnapshotService::currentDisplayDescriptors()) {
        monitorNames << display.name;
    }
    for (const SettingsSection section : SettingsSections::sidebarSections()) {
        settings->setSelectedSection(section);
        QStringList allowed = monitorNames;
        allowed << QStringLiteral("Lattica") << QStringLiteral("GitHub");
        check(*window, QStringLiteral("settings-%1").arg(SettingsSections::rawValue(section)), allowed);
    }
    window->close();
}

}  // namespace
