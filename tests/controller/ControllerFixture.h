// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QSemaphore>
#include <QStringList>
#include <memory>
#include <ostream>

#include "app/controller/AppController.h"
#include "platform/fake/FakePlatform.h"

// Readable QStrings in test failure messages.
inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}

// A fake desktop with two displays, both permissions granted, and a controller built on it.
// Background captures are always finished before the fake platform goes away.
class ControllerTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    AppController& controller() { return *m_controller; }
    // Destroys the controller while captures may still run.
    void destroyController() { m_controller.reset(); }
    // Spins the event loop until the predicate holds (bounded).
    static bool waitUntil(const std::function<bool()>& predicate, int timeoutMs = 5000);
    // Waits for every background capture and delivers the hand-overs they queued.
    static void finishBackgroundWork();
    // Makes the next background capture wait at its window-list query until release() is called.
    void holdNextCapture();
    // Waits until the held capture has started.
    bool heldCaptureStarted();
    void release();
    // Names of the controller's change signals, in the order they were emitted.
    QStringList& signalLog() { return m_signals; }

    FakePlatform platform;

private:
    std::unique_ptr<AppController> m_controller;
    QStringList m_signals;
    QSemaphore m_started;
    QSemaphore m_release;
    std::atomic<bool> m_holdArmed = false;
};
