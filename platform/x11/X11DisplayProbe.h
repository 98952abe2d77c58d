// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// Checks that an X display can be opened before the toolkit tries: the toolkit aborts the program
// when it cannot, and waits forever on a server that accepts the connection but never answers.
namespace X11DisplayProbe {

// Nothing when the display answered within the time limit, otherwise why it cannot be used, as a
// short phrase ("no X server is running there", ...).
std::optional<QString> problem(const QByteArray& displayName, int timeoutMs);

}  // namespace X11DisplayProbe
