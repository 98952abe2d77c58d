// Without a window manager the facade answers that Accessibility is not available.
#include <QPointF>

#include "platform/Accessibility.h"
#include "platform/Platform.h"
#include "tests/x11windows/X11DesktopFixture.h"

namespace {

class X11AccessibilityWithoutWmTest : public X11DesktopFixture {};

TEST_F(X11AccessibilityWithoutWmTest, EveryReadAndWriteIsApiDisabled) {
    const quint32 window = client.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    Accessibility& ax = *Platform::services().accessibility;
    QVariant value;
    EXPECT_EQ(ax.copyAttributeValue(AXUIElement::window(window), QLatin1String(kAXPositionAttribute), &value),
              kAXErrorAPIDisabled);
    EXPECT_EQ(ax.copyAttributeValue(AXUIElement::application(static_cast<pid_t>(client.pid())),
                                    QLatin1String(kAXWindowsAttribute), &value),
              kAXErrorAPIDisabled);
    EXPECT_EQ(ax.copyAttributeValue(AXUIElement::systemWide(), QLatin1String(kAXFocusedWindowAttribute), &value),
              kAXErrorAPIDisabled);
    EXPECT_EQ(ax.setAttributeValue(AXUIElement::window(window), QLatin1String(kAXPositionAttribute), QPointF(5, 5)),
              kAXErrorAPIDisabled);
    // The window list itself does not need a window manager: unmanaged windows are still listed.
    EXPECT_TRUE(entryFor(window).has_value());
}

}  // namespace
