// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <QThreadPool>
#include <memory>

#include "app/controller/AppController.h"
#include "app/ui/settings/SettingsView.h"
#include "platform/fake/FakePlatform.h"

// A settings view on the fake platform: two connected displays, both permissions granted, and update
// checks pointed at a loopback port where nothing listens, so that no test reaches the network.
class SettingsFixture : public ::testing::Test {
protected:
    static Monitor mainDisplay() {
        return {.id = 1,
                .name = QStringLiteral("Built-in Display"),
                .bounds = QRectF(0, 0, 1920, 1080),
                .vendor = 16,
                .model = 32,
                .serial = 5};
    }
    static Monitor studioDisplay() {
        return {.id = 2,
                .name = QStringLiteral("Studio Display"),
                .bounds = QRectF(1920, 0, 2560, 1440),
                .vendor = 16,
                .model = 33,
                .serial = 7};
    }
    static QString mainID() { return QStringLiteral("v16-m32-s5"); }
    static QString studioID() { return QStringLiteral("v16-m33-s7"); }

    void SetUp() override {
        qputenv("LATTICA_APPCAST_URL", QByteArrayLiteral("http://127.0.0.1:9/appcast.xml"));
        platform.monitors.setMonitors({mainDisplay(), studioDisplay()});
    }

    void TearDown() override {
        view.reset();
        controller.reset();
        // A panel refresh may still be capturing on the pool, reading the fake platform that goes next.
        QThreadPool::globalInstance()->waitForDone();
        qunsetenv("LATTICA_APPCAST_URL");
    }

    // Builds the controller and the view (after the test has scripted the platform), optionally shown.
    SettingsView& makeView(bool show = true) {
        controller = std::make_unique<AppController>();
        view = std::make_unique<SettingsView>(*controller);
        view->resize(760, 540);
        if (show) {
            view->show();
            EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
        }
        return *view;
    }

    template <typename T>
    T* find(const QString& objectName) const {
        T* child = view->findChild<T*>(objectName);
        EXPECT_NE(child, nullptr) << "no child named " << objectName.toStdString();
        return child;
    }

    FakePlatform platform;
    std::unique_ptr<AppController> controller;
    std::unique_ptr<SettingsView> view;
};
