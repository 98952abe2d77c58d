// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QRect>
#include <memory>
#include <optional>

#include "platform/WindowList.h"
#include "platform/gnome/GnomePlatform.h"
#include "tests/platform/kwin/KWinSessionFixture.h"

// A test inside the headless GNOME Shell session of scripts/virtual-gnome.sh, with the GNOME services
// installed and a native Wayland test client running. Skipped when gnome-shell is not installed.
class GnomeSessionFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The monitors the session was started with, left to right, in the Shell's logical coordinates.
    static QList<QRect> layout();
    // Waits until the window list holds a window with the title; its entry.
    std::optional<WindowEntry> waitForWindow(const QString& title, int timeoutMs = 5000);

    std::unique_ptr<GnomePlatform> platform;
    WaylandClient wayland;
};
