// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QProcess>
#include <QRect>
#include <QStringList>
#include <memory>
#include <optional>

#include "platform/WindowList.h"
#include "platform/kwin/KWinPlatform.h"
#include "tests/testclient/TestClient.h"

// Drives one lattica-wayland-test-client process: native Wayland windows of one colour.
class WaylandClient {
public:
    ~WaylandClient();
    bool start(int timeoutMs = 5000);
    // Opens a window ("title=... w= h= color=#rrggbb state=...") and waits until it has painted.
    bool open(const QString& name, const QString& options = {}, int timeoutMs = 5000);
    bool close(const QString& name, int timeoutMs = 5000);
    qint64 pid() const { return m_process.processId(); }

private:
    void send(const QString& line);
    bool waitForLine(const QString& line, int timeoutMs);

    QProcess m_process;
    QByteArray m_buffer;
    QStringList m_lines;
};

// Presses keys and moves the pointer as a user would, through KWin's fake-input protocol
// (lattica-kwin-fake-keys).
class FakeKeys {
public:
    static constexpr int kEvdevLeftControl = 29;
    static constexpr int kEvdevLeftAlt = 56;
    static constexpr int kEvdevTwo = 3;

    ~FakeKeys();
    bool start();
    static constexpr int kEvdevEscape = 1;

    // Sends "down CODE" or "up CODE" and waits until KWin has handled it.
    bool send(const char* command, int evdevCode);
    // Moves the pointer to a point of KWin's global logical space and waits until KWin has handled it.
    bool movePointer(const QPoint& point);

private:
    QByteArray answer();
    QProcess m_process;
};

// A test that runs inside the headless KWin session of scripts/virtual-kwin.sh: skipped when kwin_wayland
// is not installed, failed when run outside the session.
class KWinSessionTest : public ::testing::Test {
protected:
    void SetUp() override;
};

// The same, with the KWin services installed, a native Wayland client and an X11 one.
class KWinSessionFixture : public KWinSessionTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // The outputs the session was started with, left to right, in KWin's logical coordinates.
    static QList<QRect> layout();
    // Waits until the window list holds a window with the title; its entry.
    std::optional<WindowEntry> waitForWindow(const QString& title, int timeoutMs = 5000);
    std::optional<WindowEntry> entryFor(qint64 id);
    // True when the frame lies within tolerance of the rectangle.
    static bool near(const QRectF& actual, const QRectF& expected, double tolerance = 2.0);

    std::unique_ptr<KWinPlatform> platform;
    WaylandClient wayland;
    TestClient x11;
};
