// SPDX-License-Identifier: MIT
#include <QAccessible>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "app/displays/ScreenSnapshotService.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/TrayPanelView.h"
#include "tests/ui/UiFixture.h"

namespace {

class TrayPanel : public UiTest {
protected:
    // The panel content at a width that leaves gridWidth for the cards.
    void showPanel(int gridWidth = 616, int height = 420) {
        view = std::make_unique<TrayPanelView>(controller());
        view->resize(gridWidth + 24, height);
        view->show();
        ASSERT_TRUE(waitUntil([&] { return view->isVisible(); }));
    }
    QList<DisplaySnapshot> placeholders() const {
        QList<DisplaySnapshot> displays;
        for (const DisplayDescriptor& descriptor : ScreenSnapshotService::currentDisplayDescriptors()) {
            displays.append(DisplaySnapshot::placeholder(descriptor));
        }
        return displays;
    }
    int visibleCards() const {
        int count = 0;
        for (DisplayCardView* card : view->findChildren<DisplayCardView*>()) {
            count += card->isVisibleTo(view.get()) ? 1 : 0;
        }
        return count;
    }
    QWidget* page(const char* name) const { return view->findChild<QWidget*>(QLatin1String(name)); }

    std::unique_ptr<TrayPanelView> view;
};

TEST_F(TrayPanel, HeaderShowsTheTitleAndTheCaption) {
    makeController();
    showPanel();
    EXPECT_NE(labelWithText(*view, QStringLiteral("Lattica")), nullptr);
    EXPECT_NE(labelWithText(*view, QStringLiteral("Preview displays and move windows from one display to another.")),
              nullptr);
}

TEST_F(TrayPanel, AccessibilityWithoutScreenRecordingShowsTheRequestNotTheCards) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeController();
    controller().refreshForMenuOpen();
    showPanel();
    EXPECT_EQ(view->state(), TrayPanelView::State::PermissionsRequired);
    EXPECT_TRUE(page("permissionsRequiredPage")->isVisible());
    EXPECT_FALSE(page("displaysPage")->isVisible());
    EXPECT_TRUE(view->cards().isEmpty());
    EXPECT_NE(labelWithText(*view, QStringLiteral("Permissions Required")), nullptr);
    EXPECT_NE(labelWithText(*view, QStringLiteral("Lattica needs screen capture and window control to view screen "
                                                  "previews and move windows.")),
              nullptr);
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("screenRecordingBadge"))->text(),
              QStringLiteral("Screen Capture: Missing"));
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("accessibilityBadge"))->text(),
              QStringLiteral("Window Control: Granted"));
}

TEST_F(TrayPanel, EvenCardsPublishedEarlierAreHiddenOnceAPermissionIsMissing) {
    makeController();
    refreshAndWait();
    showPanel();
    ASSERT_EQ(view->cards().size(), 2);
    platform.sessionCheck.windowControlAvailable = false;
    controller().refreshPermissions();  // leaves the displays as they were
    EXPECT_FALSE(controller().displays().isEmpty());
    EXPECT_EQ(view->state(), TrayPanelView::State::PermissionsRequired);
    EXPECT_TRUE(view->cards().isEmpty());
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("accessibilityBadge"))->text(),
              QStringLiteral("Window Control: Missing"));
}

TEST_F(TrayPanel, RequestScreenRecordingAsksAndReports) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeController();
    showPanel();
    const int checks = platform.sessionCheck.screenCaptureChecks;
    view->findChild<QPushButton*>(QStringLiteral("requestScreenRecordingButton"))->click();
    EXPECT_GT(platform.sessionCheck.screenCaptureChecks, checks);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Checked screen capture again."));
}

TEST_F(TrayPanel, RequestAccessibilityChecksAgainAndRereadsTheState) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    showPanel();
    QPushButton* button = view->findChild<QPushButton*>(QStringLiteral("requestAccessibilityButton"));
    EXPECT_EQ(button->text(), QStringLiteral("Check Window Control"));
    // A window manager was started since the panel opened: the request's check sees it.
    platform.sessionCheck.windowControlAvailable = true;
    button->click();
    EXPECT_TRUE(controller().permissionState().accessibilityGranted);
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("accessibilityBadge"))->text(),
              QStringLiteral("Window Control: Granted"));
}

TEST_F(TrayPanel, NoDisplaysWhileNotLoadingSaysNoDisplaysDetected) {
    setDisplayCount(0);
    makeController();
    controller().refreshForMenuOpen();
    showPanel();
    EXPECT_EQ(view->state(), TrayPanelView::State::NoDisplays);
    EXPECT_TRUE(page("noDisplaysPage")->isVisible());
    EXPECT_NE(labelWithText(*page("noDisplaysPage"), QStringLiteral("No displays detected")), nullptr);
    EXPECT_NE(labelWithText(*page("noDisplaysPage"), QStringLiteral("Connect a display and try again.")), nullptr);
}

TEST_F(TrayPanel, LoadingWithoutDisplaysShowsTheLoadingState) {
    EXPECT_EQ(TrayPanelView::stateFor({true, true}, true, true), TrayPanelView::State::Loading);
    EXPECT_EQ(TrayPanelView::stateFor({true, true}, true, false), TrayPanelView::State::NoDisplays);
    EXPECT_EQ(TrayPanelView::stateFor({true, true}, false, true), TrayPanelView::State::Displays);
    EXPECT_EQ(TrayPanelView::stateFor({true, false}, true, true), TrayPanelView::State::PermissionsRequired);
    makeController();
    showPanel();
    QWidget* loading = page("loadingPage");
    EXPECT_NE(labelWithText(*loading, QStringLiteral("Loading screen previews...")), nullptr);
    EXPECT_NE(labelWithText(*loading, QStringLiteral("Preview generation runs in the background.")), nullptr);
}

TEST_F(TrayPanel, OneCardPerDisplayInOrderFromPlaceholdersToPreviews) {
    setDisplayCount(3);
    makeController();
    showPanel();
    controller().refreshForMenuOpen();
    ASSERT_EQ(view->cards().size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(view->cards()[i]->display().name, QStringLiteral("Display %1").arg(i + 1));
        EXPECT_TRUE(view->cards()[i]->isLoadingPreview());
    }
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    ASSERT_EQ(view->cards().size(), 3);
    for (DisplayCardView* card : view->cards()) {
        EXPECT_FALSE(card->isLoadingPreview());
        EXPECT_FALSE(card->scaledPreview().isNull());
        EXPECT_EQ(card->display().visibleWindowCount, 0);
    }
}

TEST_F(TrayPanel, FourDisplaysIn600PointsGiveCardsOf144WithPreviews80Point64High) {
    setDisplayCount(4);
    makeController();
    refreshAndWait();
    showPanel(600);
    EXPECT_EQ(view->gridWidth(), 600);
    ASSERT_EQ(view->cards().size(), 4);
    for (DisplayCardView* card : view->cards()) {
        EXPECT_EQ(card->width(), 144);
        EXPECT_NEAR(card->previewHeight(), 80.64, 1e-9);
        EXPECT_EQ(card->previewRect().height(), 81);
    }
}

TEST_F(TrayPanel, TwoDisplaysIn600PointsAreClampedTo240) {
    makeController();
    refreshAndWait();
    showPanel(600);
    ASSERT_EQ(view->cards().size(), 2);
    for (DisplayCardView* card : view->cards()) {
        EXPECT_EQ(card->width(), 240);
        EXPECT_NEAR(card->previewHeight(), 134.4, 1e-9);
    }
}

TEST_F(TrayPanel, SingleDisplayShowsTheHintAndTheCardsWarning) {
    setDisplayCount(1);
    makeController();
    refreshAndWait();
    showPanel(436);
    ASSERT_EQ(view->cards().size(), 1);
    QWidget* hint = view->findChild<QWidget*>(QStringLiteral("singleDisplayHint"));
    EXPECT_TRUE(hint->isVisible());
    EXPECT_NE(labelWithText(*hint, QStringLiteral("Only one display is connected. Connect another display to enable "
                                                  "window moves.")),
              nullptr);
    EXPECT_TRUE(view->cards()[0]->findChild<QWidget*>(QStringLiteral("noTargetsWarning"))->isVisible());
}

TEST_F(TrayPanel, SeveralDisplaysShowNoHint) {
    makeController();
    refreshAndWait();
    showPanel();
    EXPECT_FALSE(view->findChild<QWidget*>(QStringLiteral("singleDisplayHint"))->isVisible());
}

TEST_F(TrayPanel, KeyboardReachesEveryControlInReadingOrderStartingAtTheFirstCard) {
    setDisplayCount(3);
    makeController();
    refreshAndWait();
    showPanel();
    ASSERT_EQ(view->cards().size(), 3);

    QList<QWidget*> expected;
    for (DisplayCardView* card : view->cards()) {
        const QList<QPushButton*> moves = card->findChildren<QPushButton*>(QStringLiteral("moveTargetButton"));
        ASSERT_EQ(moves.size(), 2) << "one move button per other display";
        const QList<QWidget*> controls = card->keyboardControls();
        ASSERT_EQ(controls.size(), 3);
        EXPECT_EQ(controls.last(), card->findChild<QToolButton*>(QStringLiteral("appMenuButton")));
        expected.append(controls);
    }
    expected.append(view->findChild<QPushButton*>(QStringLiteral("settingsButton")));
    expected.append(view->findChild<QPushButton*>(QStringLiteral("quitButton")));
    EXPECT_EQ(view->keyboardOrder(), expected);
    EXPECT_EQ(view->focusWidget(), expected.first()) << "the panel opens with the first card's first button";
}

TEST_F(TrayPanel, ScreenReadersHearWhatEachControlOfACardDoes) {
    addApplication(100, QStringLiteral("Editor"), 0, {1, 2});
    makeController();
    refreshAndWait();
    showPanel();
    ASSERT_EQ(view->cards().size(), 2);
    DisplayCardView* card = view->cards().first();
    const auto spoken = [](QWidget* widget, QAccessible::Text text = QAccessible::Name) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        return accessible != nullptr ? accessible->text(text) : QStringLiteral("<no accessible interface>");
    };
    EXPECT_EQ(spoken(card), QStringLiteral("Display 1, Display 1"));
    EXPECT_EQ(spoken(card, QAccessible::Description), QStringLiteral("2 visible windows"));
    QPushButton* move = card->findChild<QPushButton*>(QStringLiteral("moveTargetButton"));
    ASSERT_NE(move, nullptr);
    EXPECT_EQ(move->text(), QStringLiteral("Display 2")) << "the visible text stays the display's name";
    EXPECT_EQ(spoken(move), QStringLiteral("Move 2 windows from screen 1 to Display 2"));
    EXPECT_EQ(spoken(card->findChild<QToolButton*>(QStringLiteral("appMenuButton"))),
              QStringLiteral("Move app windows from Display 1"));
    QWidget* preview = card->findChild<QWidget*>(QStringLiteral("previewArea"));
    EXPECT_EQ(spoken(preview), QStringLiteral("Preview of Display 1"));
    EXPECT_EQ(spoken(preview, QAccessible::Description), QStringLiteral("Display 1, 2 visible windows"));
}

TEST_F(TrayPanel, EveryControlOfThePanelHasAnAccessibleName) {
    setDisplayCount(3);
    makeController();
    refreshAndWait();
    showPanel();
    const QList<QWidget*> controls = view->keyboardOrder();
    ASSERT_EQ(controls.size(), 3 * 3 + 2);
    for (QWidget* control : controls) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(accessible, nullptr) << qPrintable(control->objectName());
        EXPECT_FALSE(accessible->text(QAccessible::Name).trimmed().isEmpty()) << qPrintable(control->objectName());
    }
}

TEST_F(TrayPanel, ArrowKeysMoveBetweenCardsAndWithinACard) {
    setDisplayCount(3);
    makeController();
    refreshAndWait();
    showPanel();
    const auto controlsOf = [&](int card) { return view->cards()[card]->keyboardControls(); };
    ASSERT_EQ(view->focusWidget(), controlsOf(0)[0]);
    const auto press = [&](Qt::Key key) { QTest::keyClick(view->focusWidget(), key); };
    press(Qt::Key_Right);
    EXPECT_EQ(view->focusWidget(), controlsOf(1)[0]);
    press(Qt::Key_Down);
    EXPECT_EQ(view->focusWidget(), controlsOf(1)[1]);
    press(Qt::Key_Down);
    EXPECT_EQ(view->focusWidget(), controlsOf(1)[2]) << "the application menu comes after the move buttons";
    press(Qt::Key_Down);
    EXPECT_EQ(view->focusWidget(), controlsOf(1)[2]) << "arrows stay inside the cards";
    press(Qt::Key_Right);
    EXPECT_EQ(view->focusWidget(), controlsOf(2)[2]);
    press(Qt::Key_Right);
    EXPECT_EQ(view->focusWidget(), controlsOf(2)[2]);
    press(Qt::Key_Up);
    press(Qt::Key_Left);
    EXPECT_EQ(view->focusWidget(), controlsOf(1)[1]);
}

TEST_F(TrayPanel, DigitOnAFocusedCardMovesItsWindowsToThatDisplay) {
    setDisplayCount(3);
    addApplication(100, QStringLiteral("Editor"), 0, {1, 2});
    makeController();
    refreshAndWait();
    showPanel();
    ASSERT_EQ(view->focusWidget(), view->cards()[0]->keyboardControls()[0]);
    QTest::keyClick(view->focusWidget(), Qt::Key_1);
    EXPECT_TRUE(controller().statusMessage().isEmpty()) << "a card's own display is no target";
    EXPECT_LT(platform.windowControl.currentFrame(1).x(), 1920);
    QTest::keyClick(view->focusWidget(), Qt::Key_3);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 2 of 2 windows."));
    EXPECT_GE(platform.windowControl.currentFrame(1).x(), 3840);
    EXPECT_GE(platform.windowControl.currentFrame(2).x(), 3840);
}

TEST_F(TrayPanel, SettingsClosesThePanelThenAsksForTheSettingsWindow) {
    makeController();
    showPanel();
    QStringList order;
    QObject::connect(view.get(), &TrayPanelView::dismissRequested, [&] { order.append(QStringLiteral("dismiss")); });
    QObject::connect(view.get(), &TrayPanelView::settingsRequested, [&] { order.append(QStringLiteral("settings")); });
    view->findChild<QPushButton*>(QStringLiteral("settingsButton"))->click();
    EXPECT_EQ(order, (QStringList{QStringLiteral("dismiss"), QStringLiteral("settings")}));
}

TEST_F(TrayPanel, QuitEndsTheProgramAndAnswersControlQ) {
    makeController();
    showPanel();
    QPushButton* quit = view->findChild<QPushButton*>(QStringLiteral("quitButton"));
    EXPECT_EQ(quit->text(), QStringLiteral("Quit"));
    EXPECT_EQ(quit->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
    // The event loop ends with status 0 only through Quit; the guard ends it with 1.
    QTimer::singleShot(0, quit, &QPushButton::click);
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    guard.start(5000);
    EXPECT_EQ(QCoreApplication::exec(), 0);
}

TEST_F(TrayPanel, TellsOncePerShowingWhenEveryCardAndThenEveryPreviewIsPainted) {
    setDisplayCount(2);
    makeController();
    showPanel();
    QSignalSpy cardsPainted(view.get(), &TrayPanelView::cardsPainted);
    QSignalSpy previewsPainted(view.get(), &TrayPanelView::previewsPainted);
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return cardsPainted.count() == 1; }));
    ASSERT_TRUE(waitUntil([&] { return previewsPainted.count() == 1; }));
    for (DisplayCardView* card : view->cards()) {
        EXPECT_FALSE(card->scaledPreview().isNull());
    }
    // Painting again within the same showing tells nothing new.
    view->repaint();
    EXPECT_EQ(cardsPainted.count(), 1);
    EXPECT_EQ(previewsPainted.count(), 1);
    // Shown again, it tells again once it has painted.
    view->hide();
    view->show();
    ASSERT_TRUE(waitUntil([&] { return cardsPainted.count() == 2 && previewsPainted.count() == 2; }));
}

TEST_F(TrayPanel, CardsPreparedBeforeTheOpeningAreTheOnesItShows) {
    setDisplayCount(3);
    makeController();
    view = std::make_unique<TrayPanelView>(controller());
    view->resize(640, 420);
    const TrayPanelView::State before = view->state();
    view->prepare(placeholders());
    // Preparing changes nothing that is shown.
    EXPECT_EQ(view->state(), before);
    EXPECT_TRUE(view->cards().isEmpty());
    const QList<DisplayCardView*> prepared = view->findChildren<DisplayCardView*>();
    ASSERT_EQ(prepared.size(), 3);

    view->show();
    controller().refreshForMenuOpen();
    ASSERT_EQ(view->cards().size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(prepared.contains(view->cards()[i]));
        EXPECT_EQ(view->cards()[i]->display().name, QStringLiteral("Display %1").arg(i + 1));
    }
    EXPECT_EQ(view->findChildren<DisplayCardView*>().size(), 3);
}

TEST_F(TrayPanel, PreparedForThreeDisplaysItShowsWhateverIsConnectedAtTheOpening) {
    setDisplayCount(3);
    makeController();
    view = std::make_unique<TrayPanelView>(controller());
    view->resize(640, 420);
    view->prepare(placeholders());
    setDisplayCount(2);
    view->show();
    controller().refreshForMenuOpen();
    ASSERT_EQ(view->cards().size(), 2);
    EXPECT_EQ(visibleCards(), 2);
    EXPECT_EQ(view->cards()[0]->display().name, QStringLiteral("Display 1"));
    EXPECT_EQ(view->cards()[1]->display().name, QStringLiteral("Display 2"));
    EXPECT_TRUE(view->findChild<QWidget*>(QStringLiteral("singleDisplayHint"))->isHidden());

    setDisplayCount(4);
    controller().refreshForMenuOpen();
    ASSERT_EQ(view->cards().size(), 4);
    // A card added to the shown panel, and its new buttons, show once the event loop runs.
    const auto targetsOf = [&](DisplayCardView* card) {
        int targets = 0;
        for (QPushButton* button : card->findChildren<QPushButton*>(QStringLiteral("moveTargetButton"))) {
            targets += button->isVisibleTo(view.get()) ? 1 : 0;
        }
        return targets;
    };
    EXPECT_TRUE(waitUntil([&] { return visibleCards() == 4 && targetsOf(view->cards()[3]) == 3; }));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(view->cards()[i]->display().name, QStringLiteral("Display %1").arg(i + 1));
        // Each card offers the other three displays as targets (buttons it replaced are hidden, then deleted).
        EXPECT_EQ(targetsOf(view->cards()[i]), 3) << i;
    }
    setDisplayCount(1);
    controller().refreshForMenuOpen();
    ASSERT_EQ(view->cards().size(), 1);
    EXPECT_EQ(visibleCards(), 1);
    EXPECT_TRUE(view->findChild<QWidget*>(QStringLiteral("singleDisplayHint"))->isVisibleTo(view.get()));
}

}  // namespace
