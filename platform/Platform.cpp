// SPDX-License-Identifier: MIT
#include "platform/Platform.h"

namespace {
// The one place that knows which backend is in use.
PlatformServices g_services;
}  // namespace

const PlatformServices& Platform::services() {
    return g_services;
}

void Platform::install(const PlatformServices& services) {
    g_services = services;
}
