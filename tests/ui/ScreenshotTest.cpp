// SPDX-License-Identifier: MIT
// Pictures of the permission guide and the panel's permission request, light and dark.
#include <QApplication>
#include <QImage>

#include "app/ui/LatticaApp.h"
#include "app/ui/panel/TrayPanelView.h"
#include "tests/ui/ScreenshotSupport.h"
#include "tests/ui/UiFixture.h"

namespace {

class Screenshots : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        directory = screenshotDirectory();
        original = QApplication::palette();
    }
    void TearDown() override {
        QApplication::setPalette(original);
        if (controller_) {
            if (QWidget* guide = windows().permissionWindow()) {
                guide->close();
            }
        }
        UiTest::TearDown();
    }
    void save(QWidget& widget, const QString& name) {
        QCoreApplication::processEvents();
        const QImage image = widget.grab().toImage();
        EXPECT_FALSE(image.isNull());
        EXPECT_TRUE(image.save(directory + QLatin1Char('/') + name)) << name.toStdString();
    }

    QString directory;
    QPalette original;
    bool controller_ = false;
};

TEST_F(Screenshots, PermissionGuideLightAndDark) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    controller_ = true;
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : original);
        windows().showPermissionGuideWindow();
        QWidget* guide = windows().permissionWindow();
        ASSERT_NE(guide, nullptr);
        ASSERT_TRUE(waitUntil([&] { return guide->isVisible(); }));
        save(*guide, dark ? QStringLiteral("permission-guide-dark.png") : QStringLiteral("permission-guide.png"));
    }
}

TEST_F(Screenshots, PanelAskingForPermissionsLightAndDark) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeController();
    controller_ = true;
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : original);
        TrayPanelView view(controller());
        view.resize(460, 235);
        view.show();
        ASSERT_TRUE(waitUntil([&] { return view.isVisible(); }));
        save(view, dark ? QStringLiteral("panel-permissions-dark.png") : QStringLiteral("panel-permissions.png"));
    }
}

}  // namespace
