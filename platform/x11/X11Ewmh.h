// SPDX-License-Identifier: MIT
#pragma once

class X11Connection;

namespace X11Ewmh {

// Whether a window manager that follows EWMH runs on the connection's screen: the root window names a
// check window, and the check window names itself (a stale property left by a window manager that
// died does not).
bool windowManagerPresent(X11Connection& connection);

}  // namespace X11Ewmh
