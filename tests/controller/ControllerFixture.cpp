// SPDX-License-Identifier: MIT
#include "tests/controller/ControllerFixture.h"

#include "tests/support/VirtualDesktop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <QThreadPool>

void ControllerTest::SetUp() {
    // Enough threads that a held capture never blocks the next one.
    QThreadPool::globalInstance()->setMaxThreadCount(std::max(4, QThreadPool::globalInstance()->maxThreadCount()));
    QImage picture(16, 9, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    platform.monitors.setMonitors({
        {.id = 1, .name = QStringLiteral("Left"), .bounds = QRectF(0, 0, 1920, 1080), .serial = 11},
        {.id = 2, .name = QStringLiteral("Right"), .bounds = QRectF(1920, 0, 2560, 1440), .serial = 22},
    });
    platform.monitors.setPicture(1, picture);
    platform.monitors.setPicture(2, picture);
    platform.sessionCheck.screenCaptureAvailable = true;
    platform.sessionCheck.windowControlAvailable = true;
    m_controller = std::make_unique<AppController>();

    AppController* c = m_controller.get();
    auto log = [this](const char* name) { return [this, name] { m_signals.append(QLatin1String(name)); }; };
    QObject::connect(c, &AppController::permissionStateChanged, c, log("permissionState"));
    QObject::connect(c, &AppController::connectedShortcutDisplaysChanged, c, log("connectedShortcutDisplays"));
    QObject::connect(c, &AppController::disconnectedShortcutDisplaysChanged, c, log("disconnectedShortcutDisplays"));
    QObject::connect(c, &AppController::displaysChanged, c, log("displays"));
    QObject::connect(c, &AppController::isLoadingPreviewsChanged, c, [this, c] {
        m_signals.append(QStringLiteral("isLoadingPreviews=%1").arg(c->isLoadingPreviews()));
    });
    QObject::connect(c, &AppController::statusMessageChanged, c, log("statusMessage"));
}

void ControllerTest::TearDown() {
    release();
    finishBackgroundWork();
    m_controller.reset();
    platform.windowList.setQueryHook({});
}

bool ControllerTest::waitUntil(const std::function<bool()>& predicate, int timeoutMs) {
    return VirtualDesktop::waitUntil(predicate, timeoutMs);
}

void ControllerTest::finishBackgroundWork() {
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

void ControllerTest::holdNextCapture() {
    m_holdArmed = true;
    platform.windowList.setQueryHook([this](int) {
        // Only a background capture is held; the mover queries the list on the main thread.
        const bool onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
        if (!onMainThread && m_holdArmed.exchange(false)) {
            m_started.release();
            m_release.acquire();
        }
    });
}

bool ControllerTest::heldCaptureStarted() {
    return m_started.tryAcquire(1, 5000);
}

void ControllerTest::release() {
    m_holdArmed = false;
    if (m_release.available() == 0) {
        m_release.release();
    }
}
