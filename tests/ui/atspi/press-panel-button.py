#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Opens Lattica's panel and presses one of its buttons over AT-SPI, the way a screen reader reaches it.
The panel is a popup, which toolkits leave out of the application's list of windows; a screen reader
finds it through the focus, which the panel puts on its first card when it opens. From there the panel's
buttons are read, and the one whose accessible name matches the pattern is pressed. While none is found,
Tab moves the focus on, every two seconds.
As a screen reader does, it listens before the program starts: a toolkit learns of the listeners once,
when its bridge starts, and of later ones from the registry's signal, which a listener registered while
the bridge starts can miss. So it prints "listening" once its listener is in place, then reads the
program's process id from its input, and then opens the panel.
Usage: press-panel-button.py REGEX TIMEOUT_SECONDS OPEN_COMMAND...
Exit status 0 pressed, 1 not found, 2 failed."""
import re
import subprocess
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def buttons(node, depth=0):
    if node is None or depth > 40:
        return
    try:
        role = node.get_role()
        count = node.get_child_count()
    except GLib.Error:
        return
    if role == Atspi.Role.PUSH_BUTTON:
        yield node
    for index in range(count):
        yield from buttons(node.get_child_at_index(index), depth + 1)


def window_of(node):
    """The top-level object (the window) that holds a node: the last one below the application."""
    while True:
        parent = node.get_parent()
        if parent is None or parent.get_role() in (Atspi.Role.APPLICATION, Atspi.Role.DESKTOP_FRAME):
            return node
        node = parent


def main():
    pattern, timeout = re.compile(sys.argv[1]), float(sys.argv[2])
    command = sys.argv[3:]
    outcome = {"status": 1, "names": []}

    def on_focus(event):
        source = event.source
        if event.detail1 != 1 or source is None or source.get_process_id() != pid:
            return
        window = window_of(source)
        found = list(buttons(window))
        outcome["names"] = [button.get_name() for button in found]
        matching = [button for button in found if pattern.fullmatch(button.get_name() or "")]
        print("focus on %r (%s) in %r; buttons: %r" % (source.get_name(), source.get_role_name(), window.get_name(),
                                                        outcome["names"]))
        if not matching:
            return  # the previews may still be arriving; the next focus change looks again
        target = matching[0]
        if "Action" not in target.get_interfaces() or target.get_n_actions() == 0:
            print("the button %r offers no action" % target.get_name())
            outcome["status"] = 2
        else:
            print("pressing %r" % target.get_name())
            outcome["status"] = 0 if target.do_action(0) else 2
        Atspi.event_quit()

    listener = Atspi.EventListener.new(on_focus)
    listener.register("object:state-changed:focused")
    print("listening", flush=True)
    line = sys.stdin.readline()
    if not line.strip().isdigit():
        print("no process id on the input, but %r" % line)
        return 2
    pid = int(line)

    def give_up():
        print("no button matches %r; the buttons seen are: %r" % (pattern.pattern, outcome["names"]))
        Atspi.event_quit()
        return False

    def nudge():
        # A focus change the bridge reported before it heard of our listener is lost: Tab moves the focus
        # within the panel again, as a screen reader's user does.
        subprocess.run(["xdotool", "key", "Tab"], check=False)
        return True

    GLib.timeout_add(int(timeout * 1000), give_up)
    GLib.timeout_add(2000, nudge)
    # The panel opens once the listener is in place, so that its first focus is seen.
    opener = subprocess.run(command, check=False)
    if opener.returncode != 0:
        print("%r failed with status %d" % (command, opener.returncode))
        return 2
    Atspi.event_main()
    listener.deregister("object:state-changed:focused")
    return outcome["status"]


if __name__ == "__main__":
    sys.exit(main())
