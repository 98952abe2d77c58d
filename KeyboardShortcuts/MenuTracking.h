#pragma once

#include <functional>

// Tells when the application's menus open and close: the first menu shown begins tracking, the last one
// hidden ends it.
namespace KeyboardShortcuts::MenuTracking {

// Starts watching once per process (later calls do nothing); needs the application object, so it
// does nothing until one exists.
void startObserving(std::function<void(bool isOpen)> onChange);
// Whether any of the application's menus is visible now.
bool isAnyMenuOpen();

}  // namespace KeyboardShortcuts::MenuTracking
