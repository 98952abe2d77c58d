// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/BackendChoice.h"

namespace {

BackendSignals x11Session() {
    BackendSignals session;
    session.sessionType = QStringLiteral("x11");
    session.x11Display = true;
    return session;
}

BackendSignals waylandSession() {
    BackendSignals session;
    session.sessionType = QStringLiteral("wayland");
    session.waylandDisplay = true;
    session.x11Display = true;  // Xwayland
    return session;
}

TEST(BackendChoiceTest, AnX11SessionUsesX11EvenWithACompositorOnTheBus) {
    BackendSignals session = x11Session();
    session.kwinOnBus = true;  // KWin as an X11 window manager owns the same name
    EXPECT_EQ(BackendChooser::choose(session), (BackendChoice{Backend::X11, {}}));
    EXPECT_FALSE(BackendChooser::isWayland(session));
}

TEST(BackendChoiceTest, AnX11DisplayWithoutWaylandUsesX11WhenTheSessionTypeIsUnknown) {
    BackendSignals session;
    session.x11Display = true;
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::X11);
}

TEST(BackendChoiceTest, WaylandWithKWinUsesTheKWinBridge) {
    BackendSignals session = waylandSession();
    session.kwinOnBus = true;
    EXPECT_EQ(BackendChooser::choose(session), (BackendChoice{Backend::KWin, {}}));
}

TEST(BackendChoiceTest, AWaylandDisplayWithoutSessionTypeCountsAsWayland) {
    BackendSignals session;
    session.waylandDisplay = true;
    session.x11Display = true;
    session.kwinOnBus = true;
    EXPECT_TRUE(BackendChooser::isWayland(session));
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::KWin);
}

TEST(BackendChoiceTest, WaylandWithGnomeShellUsesTheGnomeBridge) {
    BackendSignals session = waylandSession();
    session.gnomeShellOnBus = true;
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::Gnome);
}

TEST(BackendChoiceTest, AnotherCompositorFallsBackToXwaylandAndSaysWhatIsLimited) {
    const BackendChoice choice = BackendChooser::choose(waylandSession());
    EXPECT_EQ(choice.backend, Backend::Xwayland);
    EXPECT_TRUE(choice.note.contains(QStringLiteral("only X11 applications"))) << choice.note.toStdString();
}

TEST(BackendChoiceTest, AnotherCompositorWithoutXwaylandHasNoBackend) {
    BackendSignals session = waylandSession();
    session.x11Display = false;
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::None);
}

TEST(BackendChoiceTest, NoDisplayAtAllHasNoBackend) {
    EXPECT_EQ(BackendChooser::choose(BackendSignals{}).backend, Backend::None);
}

TEST(BackendChoiceTest, AForcedBackendWinsOverTheSession) {
    BackendSignals session = waylandSession();
    session.kwinOnBus = true;
    session.forced = QStringLiteral("x11");
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::X11);
    session = x11Session();
    session.forced = QStringLiteral("kwin");
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::KWin);
    session.forced = QStringLiteral("gnome");
    EXPECT_EQ(BackendChooser::choose(session).backend, Backend::Gnome);
}

TEST(BackendChoiceTest, AnUnknownForcedBackendIsNamedAndTheSessionDecides) {
    BackendSignals session = waylandSession();
    session.kwinOnBus = true;
    session.forced = QStringLiteral("sway");
    const BackendChoice choice = BackendChooser::choose(session);
    EXPECT_EQ(choice.backend, Backend::KWin);
    EXPECT_TRUE(choice.note.contains(QStringLiteral("LATTICA_BACKEND=sway"))) << choice.note.toStdString();
}

TEST(BackendChoiceTest, NamesAreTheOnesLatticaBackendTakes) {
    EXPECT_EQ(BackendChooser::name(Backend::X11), QStringLiteral("x11"));
    EXPECT_EQ(BackendChooser::name(Backend::KWin), QStringLiteral("kwin"));
    EXPECT_EQ(BackendChooser::name(Backend::Gnome), QStringLiteral("gnome"));
    EXPECT_EQ(BackendChooser::name(Backend::Xwayland), QStringLiteral("xwayland"));
    EXPECT_EQ(BackendChooser::name(Backend::None), QStringLiteral("none"));
}

}  // namespace
