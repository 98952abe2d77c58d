// SPDX-License-Identifier: MIT
#include <QMenu>
#include <QPushButton>
#include <QToolButton>

#include "app/ui/panel/DisplayCardView.h"
#include "tests/ui/UiFixture.h"

namespace {

class DisplayCard : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        setDisplayCount(3);
    }

    // A card for the display at position, after a refresh of the controller.
    void showCard(int position, bool loading = false) {
        card = std::make_unique<DisplayCardView>(controller());
        const QList<DisplaySnapshot>& displays = controller().displays();
        card->setFixedWidth(200);
        card->setDisplay(displays[position], displays, 112, loading);
        card->show();
        ASSERT_TRUE(waitUntil([&] { return card->isVisible(); }));
        card->repaint();
    }

    QList<QPushButton*> targetButtons() const {
        QList<QPushButton*> buttons;
        for (QPushButton* button : card->findChildren<QPushButton*>(QStringLiteral("moveTargetButton"))) {
            if (button->isVisibleTo(card.get())) {
                buttons.append(button);
            }
        }
        return buttons;
    }

    QString countText() const { return card->findChild<QLabel*>(QStringLiteral("windowCount"))->text(); }

    static DisplaySnapshot snapshot(int index, std::optional<int> visible = std::nullopt) {
        DisplaySnapshot display;
        display.id = static_cast<MonitorId>(index);
        display.index = index;
        display.name = QStringLiteral("Screen %1").arg(index);
        display.visibleWindowCount = visible;
        return display;
    }

    std::unique_ptr<DisplayCardView> card;
};

TEST_F(DisplayCard, Index51ShowsTheGenericNumberSymbol) {
    EXPECT_EQ(DisplayCardView::screenNumberSymbol(51), QStringLiteral("number.circle.fill"));
    EXPECT_EQ(DisplayCardView::screenNumberSymbol(120), QStringLiteral("number.circle.fill"));
}

TEST_F(DisplayCard, Index50ShowsItsOwnNumberedCircle) {
    EXPECT_EQ(DisplayCardView::screenNumberSymbol(50), QStringLiteral("50.circle.fill"));
    EXPECT_EQ(DisplayCardView::screenNumberSymbol(2), QStringLiteral("2.circle.fill"));
}

TEST_F(DisplayCard, OneWindowIsCountedInTheSingular) {
    makeController();
    card = std::make_unique<DisplayCardView>(controller());
    card->setDisplay(snapshot(1, 1), {snapshot(1, 1)}, 80, false);
    EXPECT_EQ(countText(), QStringLiteral("1 visible window"));
}

TEST_F(DisplayCard, ZeroAndSeveralWindowsAreCountedInThePlural) {
    makeController();
    card = std::make_unique<DisplayCardView>(controller());
    card->setDisplay(snapshot(1, 0), {snapshot(1, 0)}, 80, false);
    EXPECT_EQ(countText(), QStringLiteral("0 visible windows"));
    card->setDisplay(snapshot(1, 3), {snapshot(1, 3)}, 80, false);
    EXPECT_EQ(countText(), QStringLiteral("3 visible windows"));
}

TEST_F(DisplayCard, UncountedWindowsReadCountingWindows) {
    makeController();
    card = std::make_unique<DisplayCardView>(controller());
    card->setDisplay(snapshot(1), {snapshot(1)}, 80, true);
    EXPECT_EQ(countText(), QStringLiteral("Counting windows..."));
}

TEST_F(DisplayCard, ReloadKeyIsTheLoadingFlagThenPidsAndCounts) {
    const QList<DisplayAppGroup> groups{{412, QStringLiteral("Mail"), 3}, {87, QStringLiteral("Notes"), 1}};
    EXPECT_EQ(DisplayCardView::appMenuReloadKey(false, groups), QStringLiteral("false-412:3|87:1"));
    EXPECT_EQ(DisplayCardView::appMenuReloadKey(true, {}), QStringLiteral("true-"));
}

TEST_F(DisplayCard, HeaderAndBadgeShowTheDisplaysNumberAndName) {
    makeController();
    refreshAndWait();
    showCard(2);
    EXPECT_EQ(card->findChild<QLabel*>(QStringLiteral("indexBadge"))->text(), QStringLiteral("3"));
    EXPECT_EQ(card->findChild<QLabel*>(QStringLiteral("displayName"))->toolTip(), QStringLiteral("Display 3"));
    EXPECT_TRUE(card->findChild<QLabel*>(QStringLiteral("indexBadge"))->isVisible());
}

TEST_F(DisplayCard, TargetButtonsListTheOtherDisplaysInPanelOrder) {
    makeController();
    refreshAndWait();
    showCard(1);
    EXPECT_NE(labelWithText(*card, QStringLiteral("Move visible windows to:")), nullptr);
    const QList<QPushButton*> buttons = targetButtons();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons[0]->property("fullText").toString(), QStringLiteral("Display 1"));
    EXPECT_EQ(buttons[1]->property("fullText").toString(), QStringLiteral("Display 3"));
    EXPECT_EQ(card->findChild<QWidget*>(QStringLiteral("noTargetsWarning")), nullptr);
}

TEST_F(DisplayCard, PressingATargetMovesEveryVisibleWindowThereAndRefreshes) {
    addApplication(100, QStringLiteral("Editor"), 0, {1, 2});
    makeController();
    refreshAndWait();
    showCard(0);
    targetButtons()[0]->click();
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 2 of 2 windows."));
    EXPECT_GE(platform.windowControl.currentFrame(1).x(), 1920);
    EXPECT_LT(platform.windowControl.currentFrame(1).x(), 3840);
    // The move refreshed the panel: placeholders first, then new previews.
    EXPECT_TRUE(controller().isLoadingPreviews());
    EXPECT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
}

TEST_F(DisplayCard, SingleDisplayShowsTheWarningInsteadOfTargets) {
    setDisplayCount(1);
    addApplication(100, QStringLiteral("Editor"), 0, {1});
    makeController();
    refreshAndWait();
    showCard(0);
    EXPECT_TRUE(targetButtons().isEmpty());
    QWidget* warning = card->findChild<QWidget*>(QStringLiteral("noTargetsWarning"));
    ASSERT_NE(warning, nullptr);
    EXPECT_TRUE(warning->isVisible());
    EXPECT_NE(labelWithText(*warning, QStringLiteral("No other display available for moving windows.")), nullptr);
    EXPECT_EQ(labelWithText(*card, QStringLiteral("Move visible windows to:")), nullptr);
    // The application submenu is there, without target items.
    const QList<QAction*> items = card->appMenu()->actions();
    ASSERT_EQ(items.size(), 1);
    ASSERT_NE(items[0]->menu(), nullptr);
    EXPECT_TRUE(items[0]->menu()->actions().isEmpty());
}

TEST_F(DisplayCard, FailedCaptureShowsPreviewUnavailableWithCountsAndMenu) {
    platform.monitors.setPicture(platform.monitors.monitors()[0].id, QImage());
    addApplication(100, QStringLiteral("Editor"), 0, {1});
    makeController();
    refreshAndWait();
    showCard(0, false);
    EXPECT_TRUE(card->findChild<QLabel*>(QStringLiteral("previewUnavailable"))->isVisible());
    EXPECT_FALSE(card->findChild<QWidget*>(QStringLiteral("loadingPreview"))->isVisible());
    EXPECT_TRUE(card->scaledPreview().isNull());
    EXPECT_EQ(countText(), QStringLiteral("1 visible window"));
    ASSERT_EQ(card->appMenu()->actions().size(), 1);
    EXPECT_EQ(card->appMenu()->actions()[0]->text(), QStringLiteral("Editor (1)"));
}

TEST_F(DisplayCard, LoadingCardShowsLoadingPreviewAndADisabledMenuItem) {
    makeController();
    controller().refreshForMenuOpen();
    showCard(0, true);
    EXPECT_TRUE(card->findChild<QWidget*>(QStringLiteral("loadingPreview"))->isVisible());
    EXPECT_NE(labelWithText(*card, QStringLiteral("Loading preview...")), nullptr);
    EXPECT_FALSE(card->findChild<QLabel*>(QStringLiteral("previewUnavailable"))->isVisible());
    const QList<QAction*> items = card->appMenu()->actions();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0]->text(), QStringLiteral("Loading applications..."));
    EXPECT_FALSE(items[0]->isEnabled());
}

TEST_F(DisplayCard, NoApplicationsGiveADisabledMenuItem) {
    makeController();
    refreshAndWait();
    showCard(0);
    const QList<QAction*> items = card->appMenu()->actions();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0]->text(), QStringLiteral("No applications found on this screen"));
    EXPECT_FALSE(items[0]->isEnabled());
}

TEST_F(DisplayCard, ApplicationMenuShowsNameCountAndIconWithTargets) {
    QImage mailIcon(32, 32, QImage::Format_ARGB32);
    mailIcon.fill(QColor(200, 30, 30));
    platform.runningApplications.icons.insert(200, mailIcon);
    addApplication(200, QStringLiteral("Mail"), 0, {5, 6, 7});
    addApplication(300, QStringLiteral("Notes"), 0, {8});
    makeController();
    refreshAndWait();
    showCard(0);
    EXPECT_EQ(card->appMenuReloadKey(), QStringLiteral("false-200:3|300:1"));
    const QList<QAction*> items = card->appMenu()->actions();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0]->text(), QStringLiteral("Mail (3)"));
    EXPECT_EQ(items[1]->text(), QStringLiteral("Notes (1)"));
    // Mail's own icon; Notes has none and gets the stand-in.
    EXPECT_EQ(items[0]->icon().pixmap(16, 16).toImage().pixelColor(8, 8).rgb(), QColor(200, 30, 30).rgb());
    EXPECT_FALSE(items[1]->icon().isNull());
    EXPECT_NE(items[1]->icon().pixmap(16, 16).toImage().pixelColor(8, 8).rgb(), QColor(200, 30, 30).rgb());
    QStringList targets;
    for (QAction* action : items[0]->menu()->actions()) {
        targets.append(action->text());
        EXPECT_FALSE(action->icon().isNull());
    }
    EXPECT_EQ(targets, (QStringList{QStringLiteral("Display 2"), QStringLiteral("Display 3")}));
}

TEST_F(DisplayCard, ApplicationMenuItemMovesOnlyThatApplication) {
    addApplication(200, QStringLiteral("Mail"), 0, {5, 6});
    addApplication(300, QStringLiteral("Notes"), 0, {8});
    makeController();
    refreshAndWait();
    showCard(0);
    QMenu* mail = card->appMenu()->actions()[0]->menu();
    mail->actions()[1]->trigger();
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 2 of 2 Mail windows."));
    EXPECT_GE(platform.windowControl.currentFrame(5).x(), 3840);
    EXPECT_LT(platform.windowControl.currentFrame(8).x(), 1920);
    EXPECT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
}

TEST_F(DisplayCard, MenuIsRebuiltWhenTheLoadingFlagFlips) {
    makeController();
    refreshAndWait();
    showCard(0, true);
    const int builds = card->appMenuBuildCount();
    const QList<DisplaySnapshot> displays = controller().displays();
    card->setDisplay(displays[0], displays, 112, false);
    EXPECT_EQ(card->appMenuBuildCount(), builds + 1);
    EXPECT_EQ(card->appMenu()->actions()[0]->text(), QStringLiteral("No applications found on this screen"));
}

TEST_F(DisplayCard, MenuIsRebuiltWhenAGroupsCountChangesUnderTheSameName) {
    makeController();
    QList<DisplaySnapshot> displays{snapshot(1, 2), snapshot(2, 0)};
    displays[0].appGroups = {{412, QStringLiteral("Mail"), 2}};
    card = std::make_unique<DisplayCardView>(controller());
    card->setDisplay(displays[0], displays, 80, false);
    const int builds = card->appMenuBuildCount();
    displays[0].appGroups = {{412, QStringLiteral("Mail"), 3}};
    card->setDisplay(displays[0], displays, 80, false);
    EXPECT_EQ(card->appMenuBuildCount(), builds + 1);
    EXPECT_EQ(card->appMenu()->actions()[0]->text(), QStringLiteral("Mail (3)"));
}

TEST_F(DisplayCard, MenuIsKeptWhenNothingItShowsChanged) {
    makeController();
    QList<DisplaySnapshot> displays{snapshot(1, 2), snapshot(2, 0)};
    displays[0].appGroups = {{412, QStringLiteral("Mail"), 2}};
    card = std::make_unique<DisplayCardView>(controller());
    card->setDisplay(displays[0], displays, 80, false);
    QMenu* menu = card->appMenu();
    const int builds = card->appMenuBuildCount();
    displays[0].visibleWindowCount = 5;
    card->setDisplay(displays[0], displays, 80, false);
    EXPECT_EQ(card->appMenuBuildCount(), builds);
    EXPECT_EQ(card->appMenu(), menu);
}

TEST_F(DisplayCard, PreviewIsScaledOncePerSnapshotNotAtEveryPaint) {
    makeController();
    refreshAndWait();
    showCard(0);
    EXPECT_EQ(card->previewScaleCount(), 1);
    EXPECT_EQ(card->scaledPreview().deviceIndependentSize().toSize(), card->previewRect().size());
    card->repaint();
    card->repaint();
    const QList<DisplaySnapshot> displays = controller().displays();
    card->setDisplay(displays[0], displays, 112, false);
    EXPECT_EQ(card->previewScaleCount(), 1);

    setDisplayCount(3);  // new pictures
    refreshAndWait();
    const QList<DisplaySnapshot> fresh = controller().displays();
    card->setDisplay(fresh[0], fresh, 112, false);
    EXPECT_EQ(card->previewScaleCount(), 2);
}

TEST_F(DisplayCard, PreviewIsStretchedOverTheWholeArea) {
    makeController();
    refreshAndWait();
    showCard(0);
    const QImage painted = card->grab().toImage();
    const QRect area = card->previewRect();
    const QColor expected = platform.monitors.picture(platform.monitors.monitors()[0].id).pixelColor(0, 0);
    // Near the four corners of the area (inside the rounded corners) and in its middle.
    for (const QPoint& point : {area.topLeft() + QPoint(8, area.height() / 2), area.topRight() + QPoint(-8, 8),
                                area.bottomLeft() + QPoint(8, -8), area.bottomRight() + QPoint(-8, -8)}) {
        EXPECT_EQ(painted.pixelColor(point).rgb(), expected.rgb()) << point.x() << "," << point.y();
    }
}

}  // namespace
