// Replaced by the shortcut subsystem sources.
