// Reads through the Accessibility facade on a real desktop.
#include <QPointF>
#include <QSizeF>
#include <algorithm>

#include "platform/Accessibility.h"
#include "platform/Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/x11windows/X11DesktopFixture.h"

namespace {

class X11AccessibilityReadsTest : public X11DesktopFixture {
protected:
    Accessibility& ax() { return *Platform::services().accessibility; }
    AXUIElement app() const { return AXUIElement::application(static_cast<pid_t>(client.pid())); }

    AXError read(const AXUIElement& element, const char* attribute, QVariant* value) {
        return ax().copyAttributeValue(element, QLatin1String(attribute), value);
    }
    QList<quint32> windowNumbers(const AXUIElement& element, const char* attribute) {
        QVariant value;
        QList<quint32> numbers;
        if (read(element, attribute, &value) == kAXErrorSuccess) {
            for (const AXUIElement& window : value.value<AXUIElementList>()) {
                numbers.append(static_cast<quint32>(window.identifier));
            }
        }
        return numbers;
    }
    static QList<qint64> sortedNumbers(const QVariant& list) {
        QList<qint64> numbers;
        for (const AXUIElement& element : list.value<AXUIElementList>()) {
            numbers.append(element.identifier);
        }
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }
    QString role(quint32 window) {
        QVariant value;
        return read(AXUIElement::window(window), kAXRoleAttribute, &value) == kAXErrorSuccess ? value.toString()
                                                                                              : QString();
    }
};

TEST_F(X11AccessibilityReadsTest, WindowsListsShownWindowsAndAllWindowsAddsMinimisedOnes) {
    const quint32 shown = client.open(QStringLiteral("shown"), placement(0, 100, 100, 300, 200));
    const quint32 iconic =
        client.open(QStringLiteral("iconic"), placement(0, 150, 150, 300, 200) + QStringLiteral(" states=minimized"));
    ASSERT_NE(shown, 0u);
    ASSERT_NE(iconic, 0u);
    const QList<quint32> windows = windowNumbers(app(), kAXWindowsAttribute);
    const QList<quint32> all = windowNumbers(app(), kAXAllWindowsAttribute);
    EXPECT_TRUE(windows.contains(shown));
    EXPECT_FALSE(windows.contains(iconic));
    EXPECT_TRUE(all.contains(shown));
    EXPECT_TRUE(all.contains(iconic));
    EXPECT_EQ(all.size(), 2);
}

TEST_F(X11AccessibilityReadsTest, WindowListsHoldThisWorkspaceAndStickyWindowsOnly) {
    ASSERT_TRUE(switchToDesktop(0));
    const quint32 here = client.open(QStringLiteral("here"), placement(0, 100, 100, 300, 200));
    const quint32 iconic =
        client.open(QStringLiteral("iconic"), placement(0, 150, 150, 300, 200) + QStringLiteral(" states=minimized"));
    const quint32 sticky = client.open(QStringLiteral("sticky"), placement(0, 200, 200, 300, 200));
    const quint32 away = client.open(QStringLiteral("away"), placement(0, 250, 250, 300, 200));
    const quint32 awayIconic = client.open(QStringLiteral("awayIconic"),
                                           placement(0, 300, 300, 300, 200) + QStringLiteral(" states=minimized"));
    ASSERT_TRUE(here && iconic && sticky && away && awayIconic);
    ASSERT_TRUE(sendToDesktop(sticky, kAllDesktops));
    ASSERT_TRUE(sendToDesktop(away, 1));
    ASSERT_TRUE(sendToDesktop(awayIconic, 1));
    QList<quint32> windows = windowNumbers(app(), kAXWindowsAttribute);
    QList<quint32> all = windowNumbers(app(), kAXAllWindowsAttribute);
    std::sort(windows.begin(), windows.end());
    std::sort(all.begin(), all.end());
    QList<quint32> expectedWindows{here, sticky};
    QList<quint32> expectedAll{here, iconic, sticky};
    std::sort(expectedWindows.begin(), expectedWindows.end());
    std::sort(expectedAll.begin(), expectedAll.end());
    EXPECT_EQ(windows, expectedWindows);
    EXPECT_EQ(all, expectedAll);
    // Seen from the other workspace, the lists turn around.
    ASSERT_TRUE(switchToDesktop(1));
    all = windowNumbers(app(), kAXAllWindowsAttribute);
    std::sort(all.begin(), all.end());
    expectedAll = {sticky, away, awayIconic};
    std::sort(expectedAll.begin(), expectedAll.end());
    EXPECT_EQ(all, expectedAll);
    EXPECT_TRUE(switchToDesktop(0));
}

TEST_F(X11AccessibilityReadsTest, ApplicationWithoutWindowsHasAnEmptyList) {
    QVariant value;
    ASSERT_EQ(read(app(), kAXWindowsAttribute, &value), kAXErrorSuccess);
    EXPECT_TRUE(value.value<AXUIElementList>().isEmpty());
}

TEST_F(X11AccessibilityReadsTest, RolesFollowWindowTypes) {
    const QString at = placement(1, 100, 100, 300, 200);
    const quint32 normal = client.open(QStringLiteral("normal"), at);
    const quint32 utility = client.open(QStringLiteral("utility"), at + QStringLiteral(" type=utility"));
    const quint32 dialog = client.open(QStringLiteral("dialog"), at + QStringLiteral(" type=dialog"));
    const quint32 modal =
        client.open(QStringLiteral("modal"), at + QStringLiteral(" states=modal transient-for=normal"));
    const quint32 transient =
        client.open(QStringLiteral("transient"), at + QStringLiteral(" transient-for=normal type=none"));
    const quint32 dock = client.open(QStringLiteral("dock"), at + QStringLiteral(" type=dock"));
    const quint32 splash = client.open(QStringLiteral("splash"), at + QStringLiteral(" type=splash"));
    EXPECT_EQ(role(normal), QLatin1String(kAXWindowRole));
    EXPECT_EQ(role(utility), QLatin1String(kAXWindowRole));
    EXPECT_EQ(role(dialog), QLatin1String(kAXDialogRole));
    EXPECT_EQ(role(modal), QLatin1String(kAXDialogRole));
    EXPECT_EQ(role(transient), QLatin1String(kAXDialogRole));
    for (quint32 window : {dock, splash}) {
        const QString r = role(window);
        EXPECT_FALSE(r.isEmpty());
        EXPECT_NE(r, QLatin1String(kAXWindowRole));
        EXPECT_NE(r, QLatin1String(kAXDialogRole));
        EXPECT_NE(r, QLatin1String(kAXSheetRole));
    }
}

TEST_F(X11AccessibilityReadsTest, NumberPositionAndSizeMatchTheWindowList) {
    const quint32 window = client.open(QStringLiteral("w"), placement(2, 130, 140, 333, 222));
    ASSERT_NE(window, 0u);
    QVariant number, position, size, minimized;
    ASSERT_EQ(read(AXUIElement::window(window), kAXWindowNumberAttribute, &number), kAXErrorSuccess);
    ASSERT_EQ(read(AXUIElement::window(window), kAXPositionAttribute, &position), kAXErrorSuccess);
    ASSERT_EQ(read(AXUIElement::window(window), kAXSizeAttribute, &size), kAXErrorSuccess);
    ASSERT_EQ(read(AXUIElement::window(window), kAXMinimizedAttribute, &minimized), kAXErrorSuccess);
    EXPECT_EQ(number.toLongLong(), window);
    EXPECT_EQ(position.typeId(), QMetaType::QPointF);
    EXPECT_EQ(size.typeId(), QMetaType::QSizeF);
    EXPECT_EQ(QRectF(position.toPointF(), size.toSizeF()), boundsOf(entryFor(window)));
    EXPECT_EQ(QRectF(position.toPointF(), size.toSizeF()), QRectF(frameFromTree(window)));
    EXPECT_FALSE(minimized.toBool());
}

TEST_F(X11AccessibilityReadsTest, FocusFollowsTheActiveWindow) {
    TestClient other;
    ASSERT_TRUE(other.start());
    const quint32 mine = client.open(QStringLiteral("mine"), placement(0, 100, 100, 300, 200));
    const quint32 theirs = other.open(QStringLiteral("theirs"), placement(1, 100, 100, 300, 200));
    ASSERT_NE(mine, 0u);
    ASSERT_NE(theirs, 0u);
    QVariant value;
    // The window manager focuses a new window a moment after it appears; let that happen first.
    ASSERT_TRUE(activate(theirs));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return read(AXUIElement::systemWide(), kAXFocusedWindowAttribute, &value) == kAXErrorSuccess &&
               value.value<AXUIElement>() == AXUIElement::window(theirs);
    }));
    ASSERT_TRUE(activate(mine));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return read(AXUIElement::systemWide(), kAXFocusedWindowAttribute, &value) == kAXErrorSuccess &&
               value.value<AXUIElement>() == AXUIElement::window(mine);
    }));
    ASSERT_EQ(read(AXUIElement::systemWide(), kAXFocusedApplicationAttribute, &value), kAXErrorSuccess);
    EXPECT_EQ(value.value<AXUIElement>(), app());
    ASSERT_EQ(read(app(), kAXFocusedWindowAttribute, &value), kAXErrorSuccess);
    EXPECT_EQ(value.value<AXUIElement>(), AXUIElement::window(mine));
    ASSERT_EQ(read(app(), kAXMainWindowAttribute, &value), kAXErrorSuccess);
    EXPECT_EQ(value.value<AXUIElement>(), AXUIElement::window(mine));
    // The other application has no focused window while ours is active.
    const AXUIElement otherApp = AXUIElement::application(static_cast<pid_t>(other.pid()));
    EXPECT_EQ(read(otherApp, kAXFocusedWindowAttribute, &value), kAXErrorNoValue);
    EXPECT_EQ(read(otherApp, kAXMainWindowAttribute, &value), kAXErrorNoValue);
}

TEST_F(X11AccessibilityReadsTest, UnsupportedAttributesAndBadElementsGiveTheirErrors) {
    const quint32 window = client.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    QVariant value;
    EXPECT_EQ(read(app(), kAXHiddenAttribute, &value), kAXErrorAttributeUnsupported);
    EXPECT_EQ(ax().copyAttributeValue(AXUIElement::window(window), QStringLiteral("AXTitle"), &value),
              kAXErrorAttributeUnsupported);
    EXPECT_EQ(read(AXUIElement::window(window), kAXWindowsAttribute, &value), kAXErrorAttributeUnsupported);
    EXPECT_EQ(read(AXUIElement::systemWide(), kAXPositionAttribute, &value), kAXErrorAttributeUnsupported);
    EXPECT_EQ(read(AXUIElement::window(0), kAXPositionAttribute, &value), kAXErrorInvalidUIElement);
    EXPECT_EQ(read(AXUIElement::window(-5), kAXRoleAttribute, &value), kAXErrorInvalidUIElement);
    EXPECT_EQ(read(AXUIElement::window(0x7ffffff0), kAXSizeAttribute, &value), kAXErrorInvalidUIElement);
    EXPECT_EQ(read(AXUIElement::application(-1), kAXWindowsAttribute, &value), kAXErrorIllegalArgument);
    // A pid that belongs to no process.
    EXPECT_EQ(read(AXUIElement::application(0x7ffffff0), kAXWindowsAttribute, &value), kAXErrorInvalidUIElement);
}

TEST_F(X11AccessibilityReadsTest, BatchReadsAnswerLikeSingleReads) {
    const quint32 a = client.open(QStringLiteral("a"), placement(0, 100, 100, 300, 200));
    const quint32 b =
        client.open(QStringLiteral("b"), placement(1, 100, 100, 300, 200) + QStringLiteral(" type=dialog"));
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    // Settle the focus first, so that both ways of reading see the same active window: the window
    // manager focuses the newest window a moment after it appears, so let that happen before.
    ASSERT_TRUE(activate(b));
    ASSERT_TRUE(activate(a));
    QList<AXAttributeRequest> requests;
    for (const AXUIElement& element :
         {app(), AXUIElement::window(a), AXUIElement::window(b), AXUIElement::window(0), AXUIElement::systemWide()}) {
        for (const char* attribute : {kAXWindowsAttribute, kAXAllWindowsAttribute, kAXRoleAttribute,
                                      kAXWindowNumberAttribute, kAXPositionAttribute, kAXSizeAttribute,
                                      kAXMinimizedAttribute, kAXFocusedWindowAttribute, kAXHiddenAttribute}) {
            requests.append({element, QLatin1String(attribute)});
        }
    }
    const QList<AXAttributeReply> batch = ax().copyAttributeValues(requests);
    ASSERT_EQ(batch.size(), requests.size());
    int successes = 0;
    for (qsizetype i = 0; i < requests.size(); ++i) {
        QVariant single;
        const AXError error = ax().copyAttributeValue(requests[i].element, requests[i].attribute, &single);
        EXPECT_EQ(batch[i].error, error) << i << " " << requests[i].attribute.toStdString();
        if (error == kAXErrorSuccess) {
            ++successes;
            // Lists are compared as sets: the stacking order may change between the two reads.
            if (single.canConvert<AXUIElementList>() && single.typeId() == qMetaTypeId<AXUIElementList>()) {
                EXPECT_EQ(sortedNumbers(batch[i].value), sortedNumbers(single)) << i;
            } else {
                EXPECT_EQ(batch[i].value, single) << i << " " << requests[i].attribute.toStdString();
            }
        }
    }
    EXPECT_GE(successes, 15);
}

}  // namespace
