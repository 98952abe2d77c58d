#pragma once

#include <QList>
#include <functional>

#include "KeyboardShortcuts/KeyEvents.h"
#include "KeyboardShortcuts/Shortcut.h"

// The low layer of the global shortcuts: one table of hot keys registered with the platform's hot-key
// service, the platform's pressed/released events, and a fallback that matches raw key events while
// one of the application's menus is open (the menu then holds the keyboard and hot keys stay silent).
namespace KeyboardShortcuts::CarbonKeyboardShortcuts {

using Handler = std::function<void(const Shortcut&)>;

// Registers a hot key under the next id. A failure prints "Error registering hotkey <shortcut>: <status>"
// on standard output and keeps nothing.
void register_(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp);
// Removes every hot key of this shortcut; unknown shortcuts are ignored.
void unregister(const Shortcut& shortcut);
// Registers again every suspended hot key under its old id.
void softRegisterAll();
// Chooses between hot keys and the raw key fallback from the master switch, the menu state and
// whether a recorder records (then every hot key is released so that the recorder gets the keys).
void updateEventHandler();
// The candidates that the system or another client already holds.
QList<Shortcut> system(const QList<Shortcut>& candidates);

// A raw key event matched against the table; true when a hot key took it (a probe runs nothing).
bool handleRawKeyEvent(int keyCode, int carbonModifiers, RawKeyEvent event);
// A hot-key event for the table entry hotKeyId; true when the entry exists and handled it.
bool handleHotKeyEvent(int hotKeyId, HotKeyEvent event);

// Inspection, for tests and the debug trace.
int lastHotKeyId();
QList<int> hotKeyIds();
// Whether the entry holds a live platform registration (false while suspended).
bool isActive(int hotKeyId);
std::optional<Shortcut> shortcutForHotKey(int hotKeyId);
bool isEventHandlerInstalled();
bool isRawKeyMonitorActive();
// When the platform's hot-key service is not the one the table was built on (a new platform was
// installed), forgets the table's hot keys and answers true; the id counter keeps counting.
bool rebindIfServiceChanged();
// Forgets every hot key and the id counter (each test starts from a fresh process state).
void resetForTesting();

}  // namespace KeyboardShortcuts::CarbonKeyboardShortcuts
