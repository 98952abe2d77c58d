// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SystemInfo.h"

// A scripted system description.
class FakeSystemInfo : public SystemInfo {
public:
    SystemDescription description{QStringLiteral("Test Linux 1.0"), QStringLiteral("Linux 6.1"),
                                  QStringLiteral("TestDesktop"), QStringLiteral("x11"), QStringLiteral("Fake")};

    SystemDescription describe() override { return description; }
};
