// SPDX-License-Identifier: MIT
// A window manager that answers late, as one does on a machine busy with other work: the moves it carries
// out count as done. It is held still with SIGSTOP and let go after a set delay, the lateness under test.
#include <signal.h>
#include <xcb/res.h>

#include <QPointF>
#include <chrono>
#include <thread>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/x11/X11WindowPlacer.h"
#include "platform/x11/XcbReply.h"
#include "tests/platform/x11/X11DesktopFixture.h"

namespace {

// How late the window manager answers: three times what a move used to be given, well within what a
// window manager waiting for a busy machine's processor takes.
constexpr auto kLateness = std::chrono::milliseconds(300);

// The window manager's process, as the X server knows the client that owns its check window.
std::optional<pid_t> windowManagerPid(xcb_connection_t* xcb) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data->root;
    const XcbReply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(xcb, xcb_intern_atom(xcb, 1, 24, "_NET_SUPPORTING_WM_CHECK"), nullptr));
    if (!atom) {
        return std::nullopt;
    }
    const XcbReply<xcb_get_property_reply_t> check(
        xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 1), nullptr));
    if (!check || xcb_get_property_value_length(check.get()) != 4) {
        return std::nullopt;
    }
    const xcb_res_client_id_spec_t spec{*static_cast<const xcb_window_t*>(xcb_get_property_value(check.get())),
                                        XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const XcbReply<xcb_res_query_client_ids_reply_t> ids(
        xcb_res_query_client_ids_reply(xcb, xcb_res_query_client_ids(xcb, 1, &spec), nullptr));
    if (!ids) {
        return std::nullopt;
    }
    for (auto it = xcb_res_query_client_ids_ids_iterator(ids.get()); it.rem > 0; xcb_res_client_id_value_next(&it)) {
        if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 && it.data->length == 4) {
            return static_cast<pid_t>(*xcb_res_client_id_value_value(it.data));
        }
    }
    return std::nullopt;
}

// Holds the window manager still from construction; answer() lets it go after the lateness, on a thread
// of its own, while the test waits in the call under test. It is let go at the latest on destruction.
class HeldWindowManager {
public:
    explicit HeldWindowManager(pid_t pid) : m_pid(pid), m_held(::kill(pid, SIGSTOP) == 0) {}
    ~HeldWindowManager() {
        if (m_waker.joinable()) {
            m_waker.join();
        }
        ::kill(m_pid, SIGCONT);
    }
    HeldWindowManager(const HeldWindowManager&) = delete;
    HeldWindowManager& operator=(const HeldWindowManager&) = delete;

    bool held() const { return m_held; }
    void answerLate() {
        m_waker = std::thread([pid = m_pid] {
            std::this_thread::sleep_for(kLateness);
            ::kill(pid, SIGCONT);
        });
    }

private:
    pid_t m_pid;
    bool m_held;
    std::thread m_waker;
};

class X11LateWindowManagerTest : public X11DesktopFixture {
protected:
    WindowControl& control() { return *Platform::services().windowControl; }
    WindowPlacer& placer() { return dynamic_cast<WindowPlacer&>(control()); }
};

TEST_F(X11LateWindowManagerTest, MoveAnsweredLateIsDone) {
    static_assert(std::chrono::milliseconds(X11WindowPlacer::kConfirmationMilliseconds) > 2 * kLateness,
                  "the window manager's lateness must leave it time to answer within the limit");
    const quint32 window = client.open(QStringLiteral("late"), placement(0, 100, 100, 400, 300));
    ASSERT_NE(window, 0u);
    const QRectF before = frameFromTree(window);
    const QPointF target = QPointF(monitors().value(1).topLeft()) + QPointF(120, 90);
    const std::optional<pid_t> pid = windowManagerPid(xcb());
    ASSERT_TRUE(pid.has_value()) << "the X server did not name the window manager's process";

    Result result = Result::Failure;
    {
        HeldWindowManager windowManager(*pid);
        ASSERT_TRUE(windowManager.held());
        windowManager.answerLate();
        result = control().move(window, target);
    }
    EXPECT_EQ(result, Result::Ok);
    EXPECT_TRUE(near(frameFromTree(window), QRectF(target, before.size())))
        << "frame at " << frameFromTree(window).x() << "," << frameFromTree(window).y();
}

TEST_F(X11LateWindowManagerTest, BatchAnsweredLateIsDone) {
    QList<quint32> windows;
    for (int i = 0; i < 3; ++i) {
        windows.append(
            client.open(QStringLiteral("late") + QString::number(i), placement(0, 60 + 50 * i, 80, 300, 200)));
    }
    ASSERT_FALSE(windows.contains(0u));
    QList<WindowPlacement> placements;
    QList<QRectF> expected;
    for (int i = 0; i < windows.size(); ++i) {
        const QRectF frame(QPointF(monitors().value(1).topLeft()) + QPointF(40 + 200 * i, 60), QSizeF(420, 260));
        placements.append({windows[i], frame.topLeft(), frame.size()});
        expected.append(frame);
    }
    const std::optional<pid_t> pid = windowManagerPid(xcb());
    ASSERT_TRUE(pid.has_value()) << "the X server did not name the window manager's process";

    QList<PlacementResult> results;
    {
        HeldWindowManager windowManager(*pid);
        ASSERT_TRUE(windowManager.held());
        windowManager.answerLate();
        results = placer().place(placements);
    }
    ASSERT_EQ(results.size(), windows.size());
    for (int i = 0; i < windows.size(); ++i) {
        EXPECT_EQ(results[i].position, Result::Ok) << "window " << i;
        EXPECT_EQ(results[i].size, Result::Ok) << "window " << i;
        EXPECT_TRUE(near(frameFromTree(windows[i]), expected[i])) << "window " << i;
    }
}

}  // namespace
