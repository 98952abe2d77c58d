// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QString>
#include <optional>

// Plain values shared by the platform services and the core.

// The platform's number for a connected display; stable only while it stays connected.
using MonitorId = quint32;
