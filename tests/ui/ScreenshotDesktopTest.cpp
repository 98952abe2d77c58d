// SPDX-License-Identifier: MIT
// Pictures of the real panel on the virtual desktop, light and dark, with client windows on every
// monitor; saved as pictures.
#include <gtest/gtest.h>

#include <xcb/xcb.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QThreadPool>

#include "app/controller/AppController.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/WindowPresenter.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/TrayPanelView.h"
#include "platform/SettingsStore.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"
#include "tests/ui/ScreenshotSupport.h"

namespace {

TEST(PanelScreenshot, PanelWithEveryMonitorLightAndDark) {
    const QString directory = screenshotDirectory();
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    QApplication::setQuitOnLastWindowClosed(false);
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    ASSERT_NE(platform, nullptr);
    platform->install();
    platform->services().settings->setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);

    const QList<QRect> monitors = VirtualDesktop::layout();
    const QStringList colours{QStringLiteral("#4a7bd0"), QStringLiteral("#d0804a"), QStringLiteral("#4ab07a"),
                              QStringLiteral("#b04a9a")};
    TestClient editor;
    TestClient viewer;
    ASSERT_TRUE(editor.start());
    ASSERT_TRUE(viewer.start());
    for (int i = 0; i < monitors.size(); ++i) {
        const QRect area = monitors[i];
        editor.open(QStringLiteral("e%1").arg(i), QStringLiteral("x=%1 y=%2 w=%3 h=%4 color=%5 pid=yes")
                                                      .arg(area.x() + area.width() / 10)
                                                      .arg(area.y() + area.height() / 8)
                                                      .arg(area.width() / 2)
                                                      .arg(area.height() / 2)
                                                      .arg(colours[i % colours.size()]));
        if (i % 2 == 0) {
            viewer.open(QStringLiteral("v%1").arg(i), QStringLiteral("x=%1 y=%2 w=%3 h=%4 color=#e8e8e8 pid=yes")
                                                          .arg(area.x() + area.width() / 2)
                                                          .arg(area.y() + area.height() / 3)
                                                          .arg(area.width() / 3)
                                                          .arg(area.height() / 2));
        }
    }

    AppController controller;
    WindowPresenter windows(controller);
    LatticaApp app(controller, windows);
    const QPalette original = QApplication::palette();
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : original);
        app.openPanel();
        ASSERT_TRUE(VirtualDesktop::waitUntil(
            [&] {
                const QList<DisplayCardView*> cards = app.panelContent()->cards();
                if (controller.isLoadingPreviews() || cards.size() != monitors.size()) {
                    return false;
                }
                for (DisplayCardView* card : cards) {
                    if (card->scaledPreview().isNull()) {
                        return false;
                    }
                }
                return true;
            },
            10000));
        const QImage image = app.panel()->grab().toImage();
        const QString name = QStringLiteral("panel-%1-display%2%3.png")
                                 .arg(monitors.size())
                                 .arg(monitors.size() == 1 ? QString() : QStringLiteral("s"))
                                 .arg(dark ? QStringLiteral("-dark") : QString());
        EXPECT_TRUE(image.save(directory + QLatin1Char('/') + name)) << name.toStdString();
        app.closePanel();
        // The next picture's previews must not catch this panel on its way out.
        const auto panelWindow = static_cast<xcb_window_t>(app.panel()->winId());
        xcb_connection_t* xcb = platform->connection().xcb();
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
            xcb_get_window_attributes_reply_t* attributes =
                xcb_get_window_attributes_reply(xcb, xcb_get_window_attributes(xcb, panelWindow), nullptr);
            const bool unmapped = attributes == nullptr || attributes->map_state == XCB_MAP_STATE_UNMAPPED;
            std::free(attributes);
            return unmapped;
        }));
    }
    QApplication::setPalette(original);
    QThreadPool::globalInstance()->waitForDone();
}

}  // namespace
