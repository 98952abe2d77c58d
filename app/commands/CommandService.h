// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "app/commands/CommandResult.h"
#include "app/model/Models.h"

class Preferences;

// Whether a move keeps each window's size or scales it to the target monitor; by default as the
// preference says.
enum class SizeMode { Preference, Adjust, Keep };

// The commands of the command line and of the bus interface: list the monitors and windows, move the
// focused window, all windows of a monitor or all of one application's. Each runs at once on the calling
// (main) thread. It reads the preferences and never writes them, so a command run beside the tray
// instance changes nothing of its state.
class CommandService {
public:
    explicit CommandService(const Preferences& preferences) : m_preferences(preferences) {}

    // The monitors: index, id, name, bounds, primary.
    CommandResult displays() const;
    // The user windows, front to back: id, pid, app, title, frame, monitor index.
    CommandResult windows() const;
    CommandResult moveFocused(const QString& to, SizeMode size) const;
    CommandResult moveAll(const QString& from, const QString& to, SizeMode size) const;
    // Every window of the application (named as the panel names it, or by process id) on any other
    // monitor, minimised ones shown again.
    CommandResult moveApplication(const QString& application, const QString& to, SizeMode size) const;
    // Exchanges the visible windows of two monitors, each landing in its relative place on the other. The
    // windows are chosen before the first moves, so a window moved to the second is not moved back.
    CommandResult swap(const QString& first, const QString& second, SizeMode size) const;

    // The size mode's word on the command line and the bus: "", "adjust" or "keep"; nothing for others.
    static std::optional<SizeMode> sizeModeNamed(const QString& word);

private:
    bool adjusts(SizeMode size) const;
    // Nothing when window control is usable, else the result that says why not.
    static std::optional<CommandResult> unavailable();
    // The monitor of the focused window, if a window has focus.
    static std::optional<DisplayDescriptor> focusedMonitor(const QList<DisplayDescriptor>& displays);

    const Preferences& m_preferences;
};
