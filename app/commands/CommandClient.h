// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <optional>

#include "app/commands/CommandResult.h"

// Calls the running instance's bus interface for the command line.
namespace CommandClient {

// Calls a method with its arguments. Nothing when no instance answers (then the caller does the work
// itself); a result carrying the instance's error when it refused.
std::optional<CommandResult> call(const QString& method, const QVariantList& arguments);

}  // namespace CommandClient
