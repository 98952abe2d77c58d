// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>
#include <memory>

#include "app/controller/AppController.h"
#include "app/ui/WindowPresenter.h"
#include "platform/fake/FakePlatform.h"

// A fake desktop (displays with pictures, both permissions granted) and a controller built on it.
class UiTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Replaces the displays with count displays side by side, 1920 x 1080 each, named "Display N".
    void setDisplayCount(int count);
    // Builds the controller from the platform as it is scripted now.
    AppController& makeController();
    AppController& controller() { return *m_controller; }
    // The presenter of the program's windows, built with the controller.
    WindowPresenter& windows() { return *m_windows; }
    // Opens the panel's refresh and waits until the previews have arrived.
    void refreshAndWait();
    // A regular application with windows on a display, known to both the window list and Accessibility.
    void addApplication(pid_t pid, const QString& name, int displayIndex, const QList<qint64>& numbers);

    static bool waitUntil(const std::function<bool()>& predicate, int timeoutMs = 5000);
    static void finishBackgroundWork();

    // Visible labels and buttons of a widget tree, by text.
    static QStringList visibleLabelTexts(const QWidget& root);
    static QLabel* labelWithText(const QWidget& root, const QString& text);
    static QAbstractButton* buttonWithText(const QWidget& root, const QString& text);

    FakePlatform platform;

private:
    std::unique_ptr<AppController> m_controller;
    std::unique_ptr<WindowPresenter> m_windows;
};
