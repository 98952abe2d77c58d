// SPDX-License-Identifier: MIT
// Walks every text the program shows a user and fails on words that name a macOS facility or on the
// Mac's modifier glyphs: a Linux user has no Dock, no menu bar, no System Settings.
#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QUrlQuery>
#include <algorithm>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/panel/TrayPanelView.h"
#include "app/ui/settings/SettingsSection.h"
#include "app/ui/settings/SettingsView.h"
#include "app/ui/update/UpdateWindow.h"
#include "tests/ui/UiFixture.h"

namespace {

struct ForbiddenWord {
    const char* text;
    Qt::CaseSensitivity sensitivity;
};

// "Dock" only as the word, so that "docked" or "Docker" stay allowed.
constexpr ForbiddenWord kForbiddenWords[] = {
    {"macOS", Qt::CaseInsensitive},    {"Dock", Qt::CaseSensitive},   {"System Settings", Qt::CaseInsensitive},
    {"menu bar", Qt::CaseInsensitive}, {"\u2318", Qt::CaseSensitive}, {"\u2325", Qt::CaseSensitive},
    {"\u2303", Qt::CaseSensitive},
};

// The forbidden words a text contains.
QStringList forbiddenWordsIn(const QString& text) {
    QStringList found;
    for (const ForbiddenWord& word : kForbiddenWords) {
        const QString needle = QString::fromUtf8(word.text);
        if (needle == QLatin1String("Dock")) {
            static const QRegularExpression dock(QStringLiteral("\\bDock\\b"));
            if (dock.match(text).hasMatch()) {
                found.append(needle);
            }
        } else if (text.contains(needle, word.sensitivity)) {
            found.append(needle);
        }
    }
    return found;
}

// Where each text was read, for the failure message.
struct ShownText {
    QString where;
    QString text;
};

class TextCollector {
public:
    void add(const QString& where, const QString& text) {
        if (!text.isEmpty()) {
            m_texts.append({where, text});
        }
    }

    void addAction(const QString& where, QAction* action) {
        add(where + QStringLiteral(" action text"), action->text());
        add(where + QStringLiteral(" action tooltip"), action->toolTip());
        add(where + QStringLiteral(" action status tip"), action->statusTip());
        add(where + QStringLiteral(" action icon text"), action->iconText());
        if (QMenu* menu = action->menu()) {
            addWidgetTree(menu);
        }
    }

    // Every text of every widget in the tree, the root included: titles, tooltips, accessible names
    // and descriptions, label, button and field texts, group titles, combo box items, actions and menus.
    void addWidgetTree(QWidget* root) {
        QList<QWidget*> widgets = root->findChildren<QWidget*>();
        widgets.prepend(root);
        for (QWidget* widget : widgets) {
            const QString where =
                QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName();
            add(where + QStringLiteral(" window title"), widget->windowTitle());
            add(where + QStringLiteral(" tooltip"), widget->toolTip());
            add(where + QStringLiteral(" status tip"), widget->statusTip());
            add(where + QStringLiteral(" what's this"), widget->whatsThis());
            add(where + QStringLiteral(" accessible name"), widget->accessibleName());
            add(where + QStringLiteral(" accessible description"), widget->accessibleDescription());
            if (auto* label = qobject_cast<QLabel*>(widget)) {
                add(where, label->text());
            }
            if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
                add(where, button->text());
            }
            if (auto* field = qobject_cast<QLineEdit*>(widget)) {
                add(where, field->text());
                add(where + QStringLiteral(" placeholder"), field->placeholderText());
            }
            if (auto* browser = qobject_cast<QTextBrowser*>(widget)) {
                add(where, browser->toPlainText());
            }
            if (auto* group = qobject_cast<QGroupBox*>(widget)) {
                add(where, group->title());
            }
            if (auto* combo = qobject_cast<QComboBox*>(widget)) {
                for (int i = 0; i < combo->count(); ++i) {
                    add(where + QStringLiteral(" item"), combo->itemText(i));
                }
            }
            for (QAction* action : widget->actions()) {
                addAction(where, action);
            }
        }
    }

    const QList<ShownText>& texts() const { return m_texts; }
    bool contains(const QString& text) const {
        return std::any_of(m_texts.cbegin(), m_texts.cend(),
                           [&](const ShownText& shown) { return shown.text == text; });
    }

    // "where: text [words]" for every text with a forbidden word.
    QStringList offences() const {
        QStringList lines;
        for (const ShownText& shown : m_texts) {
            const QStringList words = forbiddenWordsIn(shown.text);
            if (!words.isEmpty()) {
                lines.append(shown.where + QStringLiteral(": \"") + shown.text + QStringLiteral("\" [") +
                             words.join(QStringLiteral(", ")) + QLatin1Char(']'));
            }
        }
        return lines;
    }

private:
    QList<ShownText> m_texts;
};

class UserVisibleText : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        platform.keyboardLayout.useUSLayout();
    }

    // A shortcut for the first display, so that the recorder shows one.
    void recordShortcutForFirstDisplay() {
        const QString id = controller().connectedShortcutDisplays().first().id;
        controller().shortcuts().setShortcut(
            KeyboardShortcuts::Shortcut(19 /* the 2 key */, 0x1000 | 0x0800 /* control, option */),
            KeyboardShortcuts::Name(AppController::shortcutNameRawValue(id)));
    }

    // The settings window with every section shown once, the debug section included.
    void collectSettings(TextCollector& collector) {
        windows().showSettingsWindow();
        QWidget* window = windows().settingsWindow();
        auto* settings = window->findChild<SettingsView*>();
        QList<SettingsSection> sections = SettingsSections::allCases();
        for (SettingsSection section : sections) {
            settings->setSelectedSection(section);
            QCoreApplication::processEvents();
            collector.addWidgetTree(window);
        }
    }

    // The panel in the state the controller is in, its cards' application menus included.
    void collectPanel(TextCollector& collector, LatticaApp& app) {
        app.openPanel();
        QCoreApplication::processEvents();
        collector.addWidgetTree(app.panel());
    }

    void expectNoForbiddenWords(const TextCollector& collector) {
        const QStringList offences = collector.offences();
        EXPECT_TRUE(offences.isEmpty()) << offences.join(QLatin1Char('\n')).toStdString();
    }
};

TEST_F(UserVisibleText, WalkerFindsAForbiddenWordWhereverItIs) {
    // The walker itself: a word in any kind of text is found, and plain Linux words are not.
    QWidget root;
    root.setWindowTitle(QStringLiteral("Lattica"));
    auto* label = new QLabel(QStringLiteral("Show in taskbar"), &root);
    auto* menu = new QMenu(&root);
    menu->addAction(QStringLiteral("Docked windows"));
    TextCollector clean;
    clean.addWidgetTree(&root);
    EXPECT_TRUE(clean.offences().isEmpty()) << clean.offences().join(QLatin1Char('\n')).toStdString();

    label->setToolTip(QStringLiteral("Click the menu bar icon"));
    menu->addAction(QStringLiteral("Show Dock icon"));
    auto* field = new QLineEdit(&root);
    field->setText(QStringLiteral("\u2303\u2325\u2318K"));
    root.setAccessibleName(QStringLiteral("Open System Settings"));
    TextCollector dirty;
    dirty.addWidgetTree(&root);
    const QString offences = dirty.offences().join(QLatin1Char('\n'));
    for (const char* planted :
         {"Open System Settings", "Click the menu bar icon", "Show Dock icon", "\u2303\u2325\u2318K"}) {
        EXPECT_TRUE(offences.contains(QString::fromUtf8(planted))) << planted << "\n" << offences.toStdString();
    }
    EXPECT_TRUE(offences.contains(QStringLiteral("[\u2318, \u2325, \u2303]"))) << offences.toStdString();
    EXPECT_FALSE(offences.contains(QStringLiteral("Docked windows"))) << offences.toStdString();
    EXPECT_EQ(forbiddenWordsIn(QStringLiteral("macOS may require")), QStringList{QStringLiteral("macOS")});
}

TEST_F(UserVisibleText, PanelGuideSettingsTrayAndUpdateWindowNameNoMacFacility) {
    setDisplayCount(2);
    addApplication(100, QStringLiteral("Editor"), 0, {1, 2});
    makeController();
    recordShortcutForFirstDisplay();
    TextCollector collector;

    // Everything available: cards with previews and application menus.
    LatticaApp app(controller(), windows());
    app.start();
    refreshAndWait();
    collectPanel(collector, app);
    collector.addWidgetTree(app.trayMenu());
    collectSettings(collector);

    // Both capabilities missing, then window control limited: the blocked panel, the guide, the rows.
    platform.sessionCheck.screenCaptureAvailable = false;
    platform.sessionCheck.windowControlAvailable = false;
    controller().refreshPermissions();
    collectPanel(collector, app);
    windows().showPermissionGuideWindow();
    collector.addWidgetTree(windows().permissionWindow());
    collectSettings(collector);
    platform.sessionCheck.windowControlAvailable = true;
    platform.sessionCheck.windowControlLimit = QStringLiteral("Only X11 applications are seen and moved.");
    controller().refreshPermissions();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    collector.addWidgetTree(windows().permissionWindow());

    // The update window in each of its states.
    UpdateWindow updates;
    updates.showChecking();
    collector.addWidgetTree(&updates);
    updates.showUpToDate(QStringLiteral("1.0"));
    collector.addWidgetTree(&updates);
    AppcastItem item;
    item.version = QStringLiteral("200");
    item.shortVersionString = QStringLiteral("2.0");
    item.downloadURL = QUrl(QStringLiteral("https://lattica.example.test/2.0.tar.gz"));
    item.itemDescription = QStringLiteral("<p>Faster moves.</p>");
    updates.showUpdateFound(item, QStringLiteral("1.0"));
    collector.addWidgetTree(&updates);
    updates.showError(QStringLiteral("The update feed could not be read."));
    collector.addWidgetTree(&updates);

    // The walk really reached every part: a text from each.
    for (const char* text : {"Preview displays and move windows from one display to another.", "Settings", "Quit",
                             "Enable Required Permissions", "Show in taskbar", "Launch at login", "Connected screens",
                             "Check for updates automatically on launch", "Contact Support", "Refresh Permissions",
                             "Only X11 applications are seen and moved.", "Permissions Required"}) {
        EXPECT_TRUE(collector.contains(QString::fromUtf8(text))) << text;
    }
    expectNoForbiddenWords(collector);
}

TEST_F(UserVisibleText, StatusMessagesAndTheSupportMailNameNoMacFacility) {
    setDisplayCount(2);
    makeController();
    TextCollector collector;
    auto record = [&](const char* command) {
        collector.add(QString::fromLatin1(command), controller().statusMessage());
    };

    platform.sessionCheck.windowControlAvailable = false;
    platform.sessionCheck.screenCaptureAvailable = false;
    controller().refreshPermissions();
    const QList<DisplaySnapshot> displays = {
        DisplaySnapshot::placeholder({1, QStringLiteral("a"), 1, QStringLiteral("Left"), QRectF()}),
        DisplaySnapshot::placeholder({2, QStringLiteral("b"), 2, QStringLiteral("Right"), QRectF()})};
    controller().moveWindows(displays[0], displays[1]);
    record("move without window control");
    controller().requestAccessibilityPermission();
    record("window control request, still missing");
    controller().requestScreenRecordingPermission();
    record("screen capture request");
    platform.sessionCheck.windowControlAvailable = true;
    controller().requestAccessibilityPermission();
    record("window control request, available");
    controller().refreshPermissions();
    controller().moveFocusedWindow(QStringLiteral("absent"));
    record("focused move to an absent display");
    controller().moveWindows(displays[0], displays[1]);
    record("move");
    platform.autostart.refusal = QStringLiteral("The autostart folder is read-only.");
    controller().setLaunchAtLogin(true);
    record("launch at login refused");

    controller().contactSupport();
    ASSERT_EQ(platform.desktopLauncher.openedURLs.size(), 1);
    const QUrlQuery mail(platform.desktopLauncher.openedURLs.first());
    collector.add(QStringLiteral("support mail subject"),
                  mail.queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded));
    const QString body = mail.queryItemValue(QStringLiteral("body"), QUrl::FullyDecoded);
    collector.add(QStringLiteral("support mail body"), body);
    EXPECT_TRUE(body.contains(QStringLiteral("Distribution: ")));
    EXPECT_TRUE(body.contains(QStringLiteral("Desktop: ")));
    EXPECT_TRUE(body.contains(QStringLiteral("Backend: ")));

    EXPECT_GE(collector.texts().size(), 9);
    expectNoForbiddenWords(collector);
}

}  // namespace
