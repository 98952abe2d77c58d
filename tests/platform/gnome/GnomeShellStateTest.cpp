// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/gnome/GnomeAccelerators.h"
#include "platform/gnome/GnomeRunningApplications.h"
#include "platform/gnome/GnomeSessionCheck.h"
#include "platform/gnome/GnomeShellState.h"
#include "platform/gnome/GnomeWindowControl.h"
#include "platform/gnome/GnomeWindowList.h"

namespace {

TEST(GnomeShellState, MonitorsAreReadFromTheExtensionsAnswer) {
    const auto monitors = GnomeShellState::parseMonitors(
        R"([{"index":0,"x":0,"y":0,"width":1920,"height":1080,"scale":1,"primary":true},)"
        R"({"index":1,"x":1920,"y":0,"width":1280,"height":720,"scale":2,"primary":false}])");
    ASSERT_TRUE(monitors);
    ASSERT_EQ(monitors->size(), 2);
    EXPECT_EQ(monitors->at(0), (GnomeShellMonitor{0, QRectF(0, 0, 1920, 1080), 1.0, true}));
    EXPECT_EQ(monitors->at(1), (GnomeShellMonitor{1, QRectF(1920, 0, 1280, 720), 2.0, false}));
}

TEST(GnomeShellState, AnAnswerThatIsNotAListIsRefused) {
    EXPECT_FALSE(GnomeShellState::parseMonitors("{}"));
    EXPECT_FALSE(GnomeShellState::parseWindows("not json"));
}

TEST(GnomeShellState, WindowsBecomeListEntries) {
    const auto windows = GnomeShellState::parseWindows(
        R"([{"id":42,"pid":100,"title":"Notes","wmClass":"notes","application":"Notes","desktopId":"org.example.Notes.desktop",)"
        R"("frame":{"x":10,"y":20,"width":300,"height":200},"monitor":1,"layer":2,"type":0,"minimized":false,)"
        R"("maximized":false,"fullscreen":false,"skipTaskbar":false,"onCurrentWorkspace":true,"opacity":1,"client":"x11"},)"
        R"({"id":7,"pid":0,"title":"","wmClass":"","application":null,"desktopId":null,)"
        R"("frame":{"x":0,"y":0,"width":1920,"height":1080},"monitor":0,"layer":0,"type":1,"minimized":true,)"
        R"("onCurrentWorkspace":true,"opacity":0.5,"client":"wayland"}])");
    ASSERT_TRUE(windows);
    ASSERT_EQ(windows->size(), 2);
    const GnomeShellWindow& notes = windows->at(0);
    EXPECT_EQ(notes.id, 42U);
    EXPECT_FALSE(notes.wayland);
    const WindowEntry entry = GnomeWindowList::entryFor(notes);
    EXPECT_EQ(entry.id, 42);
    EXPECT_EQ(entry.pid, 100);
    EXPECT_EQ(entry.ownerName, QStringLiteral("Notes"));
    EXPECT_EQ(entry.frame, QRectF(10, 20, 300, 200));
    EXPECT_EQ(entry.layer, 0);
    EXPECT_TRUE(entry.onScreen);

    const WindowEntry desktop = GnomeWindowList::entryFor(windows->at(1));
    EXPECT_FALSE(desktop.pid);
    EXPECT_FALSE(desktop.ownerName);
    EXPECT_LT(desktop.layer, 0);
    EXPECT_FALSE(desktop.onScreen);
    EXPECT_EQ(desktop.opacity, 0.5);
}

TEST(GnomeShellState, ApplicationsAreGroupedByProcessWithTheirDesktopEntry) {
    GnomeShellWindow dialog;
    dialog.id = 1;
    dialog.pid = 100;
    dialog.type = static_cast<int>(GnomeWindowType::Utility);
    dialog.application = QStringLiteral("Notes");
    dialog.desktopId = QStringLiteral("org.example.Notes.desktop");
    GnomeShellWindow main = dialog;
    main.id = 2;
    main.type = static_cast<int>(GnomeWindowType::Normal);
    GnomeShellWindow dock;
    dock.id = 3;
    dock.pid = 200;
    dock.type = static_cast<int>(GnomeWindowType::Dock);
    dock.wmClass = QStringLiteral("panel");
    const QList<RunningApplication> applications = GnomeRunningApplications::applicationsOf({dialog, main, dock});
    ASSERT_EQ(applications.size(), 2);
    const auto notes = std::find_if(applications.cbegin(), applications.cend(),
                                    [](const RunningApplication& a) { return a.pid == 100; });
    ASSERT_NE(notes, applications.cend());
    EXPECT_EQ(notes->name, QStringLiteral("Notes"));
    EXPECT_EQ(notes->desktopId, QStringLiteral("org.example.Notes"));
    EXPECT_EQ(notes->policy, ApplicationPolicy::Regular);
    const auto panel = std::find_if(applications.cbegin(), applications.cend(),
                                    [](const RunningApplication& a) { return a.pid == 200; });
    ASSERT_NE(panel, applications.cend());
    EXPECT_EQ(panel->name, QStringLiteral("panel"));
    EXPECT_EQ(panel->policy, ApplicationPolicy::Prohibited);
}

TEST(GnomeShellState, AnApplicationsVisibleWindowsLeaveOutMinimisedAndOtherWorkspaces) {
    GnomeShellWindow shown;
    shown.id = 1;
    shown.pid = 100;
    GnomeShellWindow minimised = shown;
    minimised.id = 2;
    minimised.minimized = true;
    GnomeShellWindow elsewhere = shown;
    elsewhere.id = 3;
    elsewhere.onCurrentWorkspace = false;
    GnomeShellWindow other = shown;
    other.id = 4;
    other.pid = 200;
    const QList<GnomeShellWindow> windows{shown, minimised, elsewhere, other};
    EXPECT_EQ(GnomeWindowControl::windowsOf(windows, 100, WindowScope::Visible), (QList<WindowId>{1}));
    EXPECT_EQ(GnomeWindowControl::windowsOf(windows, 100, WindowScope::IncludingMinimised), (QList<WindowId>{1, 2}));
}

TEST(GnomeShellState, AChangeAnswerCarriesItsOutcomeAndTheWindow) {
    const GnomeChangeAnswer ok =
        GnomeShellState::parseChange(R"({"result":"ok","window":{"id":5,"frame":{"x":1,"y":2,"width":3,"height":4}}})");
    EXPECT_EQ(ok.outcome, GnomeChangeAnswer::Outcome::Ok);
    ASSERT_TRUE(ok.window);
    EXPECT_EQ(ok.window->frame, QRectF(1, 2, 3, 4));
    EXPECT_EQ(GnomeShellState::parseChange(R"({"result":"gone"})").outcome, GnomeChangeAnswer::Outcome::Gone);
    const GnomeChangeAnswer failed = GnomeShellState::parseChange(R"({"result":"failure","error":"no such monitor"})");
    EXPECT_EQ(failed.outcome, GnomeChangeAnswer::Outcome::Failure);
    EXPECT_EQ(failed.error, QStringLiteral("no such monitor"));
    EXPECT_EQ(GnomeShellState::parseChange("garbage").outcome, GnomeChangeAnswer::Outcome::Failure);
}

TEST(GnomeSessionCheckWording, EachExtensionStateSaysWhatToDo) {
    using State = GnomeSessionCheck::ExtensionState;
    EXPECT_EQ(GnomeSessionCheck::windowControlFor({true, false, State::Enabled}).availability, Availability::Available);
    const CapabilityCheck refused = GnomeSessionCheck::windowControlFor({true, true, State::Enabled});
    EXPECT_EQ(refused.availability, Availability::Unavailable);
    EXPECT_TRUE(refused.explanation.contains(QLatin1String("Quit the other copy")));
    const CapabilityCheck missing = GnomeSessionCheck::windowControlFor({false, false, State::Missing});
    EXPECT_EQ(missing.availability, Availability::Unavailable);
    EXPECT_TRUE(missing.explanation.contains(QLatin1String("not installed")));
    EXPECT_TRUE(missing.explanation.contains(QLatin1String("log out")));
    const CapabilityCheck disabled = GnomeSessionCheck::windowControlFor({false, false, State::Disabled});
    EXPECT_TRUE(disabled.explanation.contains(QLatin1String("gnome-extensions enable lattica@lattica.app")));
    const CapabilityCheck failed = GnomeSessionCheck::windowControlFor({false, false, State::Failed});
    EXPECT_TRUE(failed.explanation.contains(QLatin1String("could not start")));
}

TEST(GnomeSessionCheckWording, ACaptureThatFailedSaysTheShellsReason) {
    using State = GnomeSessionCheck::ExtensionState;
    EXPECT_EQ(GnomeSessionCheck::screenCaptureFor({true, false, State::Enabled, true, {}}).availability,
              Availability::Available);
    const CapabilityCheck failed =
        GnomeSessionCheck::screenCaptureFor({true, false, State::Enabled, false, QStringLiteral("stage not painted")});
    EXPECT_EQ(failed.availability, Availability::Unavailable);
    EXPECT_TRUE(failed.explanation.contains(QLatin1String("(stage not painted)"))) << failed.explanation.toStdString();
    EXPECT_TRUE(failed.explanation.contains(QLatin1String("without a preview")));
    // Without the extension, capture fails for the same reason window control does.
    EXPECT_EQ(GnomeSessionCheck::screenCaptureFor({false, false, State::Missing}),
              GnomeSessionCheck::windowControlFor({false, false, State::Missing}));
}

}  // namespace

namespace {

TEST(GnomeAcceleratorText, NamesTheModifiersAndThePhysicalKeysKeycode) {
    // Carbon 19 is the "2" key: evdev 3, keycode 11.
    const auto controlOptionTwo = GnomeAccelerators::accelerator(19, 0x1000 | 0x800);
    ASSERT_TRUE(std::holds_alternative<QString>(controlOptionTwo));
    EXPECT_EQ(std::get<QString>(controlOptionTwo), QStringLiteral("<Control><Alt>0x0b"));
    // Command is Super; shift keeps its name; Carbon 0 is "A": evdev 30, keycode 0x26.
    const auto commandShiftA = GnomeAccelerators::accelerator(0, 0x100 | 0x200);
    ASSERT_TRUE(std::holds_alternative<QString>(commandShiftA));
    EXPECT_EQ(std::get<QString>(commandShiftA), QStringLiteral("<Shift><Super>0x26"));
    const auto function = GnomeAccelerators::accelerator(19, 1U << 17);
    ASSERT_TRUE(std::holds_alternative<HotKeys::Failure>(function));
    EXPECT_EQ(std::get<HotKeys::Failure>(function).error, HotKeys::Error::unsupportedModifier);
}

}  // namespace
