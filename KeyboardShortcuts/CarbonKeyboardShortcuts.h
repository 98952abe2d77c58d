#pragma once

#include <QList>
#include <functional>

#include "KeyboardShortcuts/Shortcut.h"

// The low layer of the global shortcuts: one table of hot keys registered with the platform's hot-key
// service, the platform's pressed/released events, and a fallback that matches raw key events while
// one of the application's menus is open (the menu then holds the keyboard and hot keys stay silent).
namespace KeyboardShortcuts::CarbonKeyboardShortcuts {

using Handler = std::function<void(const Shortcut&)>;

// The status the event path answers for an event it does not handle.
constexpr int eventNotHandledErr = -9874;

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

// A raw key event (kind 1 down, 3 up) matched against the table; 0 when a hot key handled it.
int handleRawKeyEvent(int keyCode, int carbonModifiers, int kind);
// A platform hot-key event (kind 5 pressed, 6 released); 0 when handled.
int handleHotKeyEvent(quint32 hotKeyId, int kind);

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
