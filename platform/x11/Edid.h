// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The identity a monitor reports in its EDID base block.
struct Edid {
    quint32 vendor = 0;   // manufacturer id, bytes 8-9 as one big-endian number
    quint32 model = 0;    // product code, bytes 10-11, little-endian
    quint32 serial = 0;   // serial number, bytes 12-15, little-endian
    QString monitorName;  // the monitor-name descriptor, empty when there is none
    QString serialText;   // the serial-number descriptor, empty when there is none

    bool operator==(const Edid&) const = default;
};

// Parses an EDID blob; nothing when it is shorter than a base block, its header is wrong or its
// base block's checksum does not add up.
std::optional<Edid> parseEdid(const QByteArray& data);
