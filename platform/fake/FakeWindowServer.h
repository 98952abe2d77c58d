#pragma once

#include "platform/WindowServer.h"

// A scripted window list for tests.
class FakeWindowServer : public WindowServer {
public:
    // Entries front to back; nothing models an unavailable list.
    std::optional<QList<WindowInfo>> windowList = QList<WindowInfo>{};
    quint32 lastOptions = 0;

    std::optional<QList<WindowInfo>> copyWindowInfo(quint32 options) override {
        lastOptions = options;
        return windowList;
    }
};
