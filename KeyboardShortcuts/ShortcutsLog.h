// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

// Messages of the global shortcuts: refused hot keys, ignored stored shortcuts, and a debug trace.
Q_DECLARE_LOGGING_CATEGORY(lcShortcuts)
