// SPDX-License-Identifier: MIT
#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "KeyboardShortcuts/ShortcutStore.h"
#include "KeyboardShortcuts/widgets/Beep.h"
#include "KeyboardShortcuts/widgets/ShortcutRecorder.h"
#include "tests/KeyboardShortcuts/ShortcutTestFixture.h"
#include "tests/support/VirtualDesktop.h"

using namespace KeyboardShortcuts;

namespace {

// Answers the next shortcut alert with one of its buttons, remembering what it said.
class AlertAnswerer : public QObject {
public:
    explicit AlertAnswerer(QString buttonText) : m_buttonText(std::move(buttonText)) {
        connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
        m_timer.start(5);
    }
    int shown = 0;
    QString text;
    QString informativeText;
    QStringList buttons;

private:
    void poll() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box == nullptr || !box->isVisible() || box->objectName() != QStringLiteral("KeyboardShortcutsAlert")) {
                continue;
            }
            ++shown;
            text = box->text();
            informativeText = box->informativeText();
            buttons.clear();
            QAbstractButton* chosen = nullptr;
            for (QAbstractButton* button : box->buttons()) {
                buttons.append(button->text());
                if (button->text() == m_buttonText) {
                    chosen = button;
                }
            }
            if (chosen != nullptr) {
                chosen->click();
            } else {
                box->reject();
            }
        }
    }
    QString m_buttonText;
    QTimer m_timer;
};

class RecorderTest : public ShortcutTest {
protected:
    RecorderTest() : name(QStringLiteral("moveFocusedWindowToDisplay.v1-m2-s3")) {
        auto* layout = new QVBoxLayout(&window);
        other = new QPushButton(QStringLiteral("Other"));
        other->setFocusPolicy(Qt::StrongFocus);
        layout->addWidget(other);
        recorder = new ShortcutRecorder(shortcuts, name,
                                        [this](std::optional<Shortcut> shortcut) { changes.append(shortcut); });
        layout->addWidget(recorder);
        layout->setContentsMargins(20, 20, 20, 20);
        window.resize(300, 160);
    }

    void showWindow() {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->canBecomeKey(); }));
    }
    void startRecording() {
        showWindow();
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, recorderCenter());
        ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->isRecording(); }));
    }
    QPoint recorderCenter() const { return recorder->mapTo(&window, recorder->rect().center()); }
    void typeKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }
    std::optional<SettingValue> stored() const { return platform.settings.value(ShortcutStore::key(name)); }

    Name name;
    QWidget window;
    QPushButton* other = nullptr;
    ShortcutRecorder* recorder = nullptr;
    QList<std::optional<Shortcut>> changes;
};

TEST_F(RecorderTest, ShowsStoredShortcutOrPlaceholder) {
    EXPECT_EQ(recorder->text(), QString());
    EXPECT_EQ(recorder->placeholderText(), QStringLiteral("Record Shortcut"));
    EXPECT_FALSE(recorder->cancelButton()->isVisible());
    shortcuts.setShortcut(Shortcut(Key::k, ModifierFlag::control | ModifierFlag::option), name);
    EXPECT_EQ(recorder->text(), QStringLiteral("Ctrl+Alt+K"));
    EXPECT_TRUE(recorder->cancelButton()->isVisible());
    EXPECT_EQ(recorder->sizeHint().width(), 130);
}

TEST_F(RecorderTest, ChangingTheNameShowsThatNamesShortcut) {
    const Name another(QStringLiteral("another"));
    shortcuts.setShortcut(Shortcut(Key::f5), another);
    recorder->setShortcutName(another);
    EXPECT_EQ(recorder->text(), QStringLiteral("F5"));
    shortcuts.setShortcut(Shortcut(Key::f6), name);
    EXPECT_EQ(recorder->text(), QStringLiteral("F5")) << "changes of the old name no longer show";
}

TEST_F(RecorderTest, DoesNotStartRecordingWhenItsWindowOpens) {
    other->setFocusPolicy(Qt::NoFocus);  // the recorder is the window's only focusable widget
    showWindow();
    QCoreApplication::processEvents();
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(shortcuts.isPaused());
}

TEST_F(RecorderTest, ClickStartsRecordingAndPausesHotKeys) {
    startRecording();
    EXPECT_EQ(recorder->placeholderText(), QStringLiteral("Press Shortcut"));
    EXPECT_TRUE(shortcuts.isPaused());
    EXPECT_TRUE(recorder->isReadOnly()) << "no caret while recording";
}

TEST_F(RecorderTest, TabFocusStartsRecording) {
    showWindow();
    other->setFocus(Qt::TabFocusReason);
    typeKey(Qt::Key_Tab);
    EXPECT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->isRecording(); }));
}

TEST_F(RecorderTest, LetterAloneBeepsAndKeepsRecording) {
    startRecording();
    const int beeps = beepCount();
    typeKey(Qt::Key_A);
    EXPECT_EQ(beepCount(), beeps + 1);
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_FALSE(stored().has_value());
    EXPECT_EQ(recorder->text(), QString()) << "the letter was not typed into the field";
}

TEST_F(RecorderTest, FunctionKeyAloneIsAccepted) {
    startRecording();
    typeKey(Qt::Key_F5);
    EXPECT_EQ(shortcuts.shortcut(name), Shortcut(Key::f5));
    EXPECT_EQ(recorder->text(), QStringLiteral("F5"));
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(shortcuts.isPaused());
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first(), Shortcut(Key::f5));
}

TEST_F(RecorderTest, RecordedShortcutIsStoredAsJsonAndRegistered) {
    startRecording();
    typeKey(Qt::Key_K, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_EQ(stored(), SettingValue(QStringLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":4352}")));
    EXPECT_EQ(recorder->text(), QStringLiteral("Super+Ctrl+K"));
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    EXPECT_EQ(platform.hotKeys.registrations().first().keyCode, 40u);
}

TEST_F(RecorderTest, ShiftLetterIsRefused) {
    startRecording();
    const int beeps = beepCount();
    typeKey(Qt::Key_A, Qt::ShiftModifier);
    EXPECT_EQ(beepCount(), beeps + 1);
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_FALSE(stored().has_value());
}

TEST_F(RecorderTest, OptionLetterIsAccepted) {
    startRecording();
    typeKey(Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(shortcuts.shortcut(name), Shortcut(Key::a, ModifierFlag::option));
}

TEST_F(RecorderTest, OptionLetterIsDisallowedWhereSystemRestrictsIt) {
    platform.hotKeys.optionOnlyRestricted = true;
    startRecording();
    AlertAnswerer answer(QStringLiteral("OK"));
    typeKey(Qt::Key_A, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(answer.shown, 1);
    EXPECT_TRUE(answer.text.contains(QStringLiteral("only uses the Alt key")));
    EXPECT_FALSE(stored().has_value());
    EXPECT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->isRecording(); })) << "recording resumes";
    typeKey(Qt::Key_A, Qt::AltModifier | Qt::ControlModifier);
    EXPECT_EQ(shortcuts.shortcut(name), Shortcut(Key::a, ModifierFlag::option | ModifierFlag::control));
}

TEST_F(RecorderTest, ClickTwoPointsOutsideKeepsRecordingFourPointsOutsideEnds) {
    startRecording();
    const QPoint topLeft = recorder->mapTo(&window, QPoint(0, 0));
    const int middleY = topLeft.y() + recorder->height() / 2;
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, QPoint(topLeft.x() - 2, middleY));
    EXPECT_TRUE(recorder->isRecording());
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, QPoint(topLeft.x() - 4, middleY));
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(recorder->hasFocus());
    EXPECT_FALSE(shortcuts.isPaused());
}

TEST_F(RecorderTest, TabWithoutModifiersLeavesAndRecordsNothing) {
    startRecording();
    typeKey(Qt::Key_Tab);
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(stored().has_value());
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_TRUE(VirtualDesktop::waitUntil([this] { return other->hasFocus(); })) << "focus moved on";
}

TEST_F(RecorderTest, ShiftTabIsRefusedByModifierRule) {
    startRecording();
    const int beeps = beepCount();
    typeKey(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(beepCount(), beeps + 1);
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_FALSE(stored().has_value());
}

TEST_F(RecorderTest, EscapeEndsRecordingWithoutStoring) {
    shortcuts.setShortcut(Shortcut(Key::f5), name);
    startRecording();
    typeKey(Qt::Key_Escape);
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(recorder->hasFocus());
    EXPECT_EQ(shortcuts.shortcut(name), Shortcut(Key::f5));
}

TEST_F(RecorderTest, DeleteClearsShortcutAndKeepsRecording) {
    shortcuts.setShortcut(Shortcut(Key::f5), name);
    startRecording();
    typeKey(Qt::Key_Backspace);
    EXPECT_FALSE(stored().has_value());
    EXPECT_EQ(recorder->text(), QString());
    EXPECT_FALSE(recorder->cancelButton()->isVisible());
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first(), std::nullopt);
    EXPECT_TRUE(recorder->isRecording());
}

TEST_F(RecorderTest, ClearButtonClearsAndStartsRecording) {
    const Name withDefault(QStringLiteral("withDefault"), Shortcut(Key::f7));
    recorder->setShortcutName(withDefault);
    showWindow();
    recorder->cancelButton()->trigger();
    EXPECT_EQ(platform.settings.value(ShortcutStore::key(withDefault)), SettingValue(false));
    EXPECT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->isRecording(); }));
}

TEST_F(RecorderTest, ClickingTheClearButtonClearsTheShortcut) {
    shortcuts.setShortcut(Shortcut(Key::f5), name);
    showWindow();
    QToolButton* clearButton = nullptr;
    for (QToolButton* button : recorder->findChildren<QToolButton*>()) {
        if (button->defaultAction() == recorder->cancelButton()) {
            clearButton = button;
        }
    }
    ASSERT_NE(clearButton, nullptr);
    ASSERT_TRUE(clearButton->isVisible());
    QTest::mouseClick(clearButton, Qt::LeftButton);
    EXPECT_FALSE(shortcuts.shortcut(name));
    EXPECT_EQ(recorder->text(), QString());
    EXPECT_FALSE(recorder->cancelButton()->isVisible());
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first(), std::nullopt);
}

TEST_F(RecorderTest, F12AloneIsNeverASystemConflict) {
    platform.hotKeys.markTaken(static_cast<quint32>(Key::f12.rawValue()), 0);
    startRecording();
    AlertAnswerer answer(QStringLiteral("OK"));
    typeKey(Qt::Key_F12);
    EXPECT_EQ(answer.shown, 0);
    EXPECT_EQ(shortcuts.shortcut(name), Shortcut(Key::f12));
}

TEST_F(RecorderTest, SystemConflictAlertRefusesUnlessForced) {
    const Shortcut taken(Key::k, ModifierFlag::control | ModifierFlag::option);
    platform.hotKeys.markTaken(40, static_cast<quint32>(taken.carbonModifiers()));
    startRecording();
    {
        AlertAnswerer answer(QStringLiteral("OK"));
        typeKey(Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
        EXPECT_EQ(answer.shown, 1);
        EXPECT_TRUE(answer.text.contains(QStringLiteral("system-wide")));
        EXPECT_FALSE(answer.informativeText.isEmpty());
        EXPECT_EQ(answer.buttons, QStringList({QStringLiteral("OK"), QStringLiteral("Use Anyway")}));
    }
    EXPECT_FALSE(stored().has_value());
    ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->isRecording(); })) << "recording resumes";
}

TEST_F(RecorderTest, ForceUseStoresShortcutTheSystemAlsoUses) {
    const Shortcut taken(Key::k, ModifierFlag::control | ModifierFlag::option);
    platform.hotKeys.markTaken(40, static_cast<quint32>(taken.carbonModifiers()));
    startRecording();
    AlertAnswerer answer(QStringLiteral("Use Anyway"));
    testing::internal::CaptureStdout();
    typeKey(Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(answer.shown, 1);
    EXPECT_EQ(shortcuts.shortcut(name), taken);
    EXPECT_EQ(output, "Error registering hotkey Ctrl+Alt+K: -9878\n") << "its registration then fails";
    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(RecorderTest, MenuItemConflictNamesTheItem) {
    auto* menuBar = new QMenuBar(&window);
    QMenu* file = menuBar->addMenu(QStringLiteral("&File"));
    QMenu* recent = file->addMenu(QStringLiteral("Recent"));
    QAction* save = recent->addAction(QStringLiteral("&Save All"));
    save->setShortcut(QKeySequence(QKeyCombination(Qt::ControlModifier | Qt::AltModifier, Qt::Key_S)));
    bool triggered = false;
    QObject::connect(save, &QAction::triggered, [&] { triggered = true; });
    startRecording();
    AlertAnswerer answer(QStringLiteral("OK"));
    typeKey(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(answer.shown, 1);
    EXPECT_TRUE(answer.text.contains(QStringLiteral("\u201CSave All\u201D"))) << answer.text.toStdString();
    EXPECT_FALSE(triggered) << "the action did not run either";
    EXPECT_FALSE(stored().has_value());
    EXPECT_TRUE(VirtualDesktop::waitUntil([this] { return recorder->isRecording(); })) << "recording resumes";
}

TEST_F(RecorderTest, AssignedGlobalShortcutDoesNotFireWhileRecording) {
    const Name assigned(QStringLiteral("assigned"));
    shortcuts.setShortcut(Shortcut(Key::j, ModifierFlag::control | ModifierFlag::option), assigned);
    int runs = 0;
    shortcuts.onKeyDown(assigned, [&] { ++runs; });
    startRecording();
    platform.hotKeys.press(38, 0x1800);
    EXPECT_EQ(runs, 0);
    typeKey(Qt::Key_Escape);
    platform.hotKeys.press(38, 0x1800);
    EXPECT_EQ(runs, 1);
}

TEST_F(RecorderTest, WindowLosingFocusEndsRecording) {
    startRecording();
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(shortcuts.isPaused());
}

}  // namespace
