// SPDX-License-Identifier: MIT
#include "tests/ui/UiFixture.h"

#include "tests/support/VirtualDesktop.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <QThreadPool>

void UiTest::SetUp() {
    // As in the program: closing a window never ends it.
    QApplication::setQuitOnLastWindowClosed(false);
    platform.sessionCheck.screenCaptureAvailable = true;
    platform.sessionCheck.windowControlAvailable = true;
    // The launch sequence would otherwise start an update check over the network.
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    setDisplayCount(2);
}

void UiTest::TearDown() {
    finishBackgroundWork();
    m_windows.reset();
    m_controller.reset();
}

void UiTest::setDisplayCount(int count) {
    QList<Monitor> displays;
    for (int i = 0; i < count; ++i) {
        QImage picture(192, 108, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv((i * 70) % 360, 160, 200));
        const auto id = static_cast<MonitorId>(i + 1);
        displays.append({.id = id,
                         .name = QStringLiteral("Display %1").arg(i + 1),
                         .bounds = QRectF(i * 1920, 0, 1920, 1080),
                         .serial = static_cast<quint32>(100 + i)});
        platform.monitors.setPicture(id, picture);
    }
    platform.monitors.setMonitors(displays);
}

AppController& UiTest::makeController() {
    m_windows.reset();
    m_controller = std::make_unique<AppController>();
    m_windows = std::make_unique<WindowPresenter>(*m_controller);
    return *m_controller;
}

void UiTest::refreshAndWait() {
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
}

void UiTest::addApplication(pid_t pid, const QString& name, int displayIndex, const QList<qint64>& numbers) {
    platform.runningApplications.addApplication(pid, name);
    std::optional<QList<WindowEntry>> list = platform.windowList.scriptedList();
    for (qint64 number : numbers) {
        const QRectF frame(displayIndex * 1920 + 100 + number * 10, 100, 800, 600);
        list->append(WindowEntry{.id = number, .pid = pid, .ownerName = name, .frame = frame});
        platform.windowControl.addWindow(pid, {.id = number, .frame = frame});
    }
    platform.windowList.setWindowList(list);
}

bool UiTest::waitUntil(const std::function<bool()>& predicate, int timeoutMs) {
    return VirtualDesktop::waitUntil(predicate, timeoutMs);
}

void UiTest::finishBackgroundWork() {
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

QStringList UiTest::visibleLabelTexts(const QWidget& root) {
    QStringList texts;
    for (QLabel* label : root.findChildren<QLabel*>()) {
        if (label->isVisibleTo(&root) && !label->text().isEmpty()) {
            texts.append(label->text());
        }
    }
    return texts;
}

QLabel* UiTest::labelWithText(const QWidget& root, const QString& text) {
    for (QLabel* label : root.findChildren<QLabel*>()) {
        if (label->text() == text) {
            return label;
        }
    }
    return nullptr;
}

QAbstractButton* UiTest::buttonWithText(const QWidget& root, const QString& text) {
    for (QAbstractButton* button : root.findChildren<QAbstractButton*>()) {
        if (button->text() == text) {
            return button;
        }
    }
    return nullptr;
}
