// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QString>

#include "platform/SessionCheck.h"

// How the views name the state of a capability: "Granted" only when it works for every application.
namespace CapabilityText {

// "Granted", "Limited" or "Missing".
QString grantText(const CapabilityCheck& check);
QColor grantColor(const CapabilityCheck& check);

}  // namespace CapabilityText
