// SPDX-License-Identifier: MIT
#include "platform/x11/Edid.h"

namespace {

constexpr int kBaseBlockSize = 128;
constexpr unsigned char kHeader[8] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr int kDescriptorOffsets[4] = {54, 72, 90, 108};
constexpr unsigned char kMonitorNameTag = 0xFC;
constexpr unsigned char kSerialTextTag = 0xFF;

quint32 byteAt(const QByteArray& data, int offset) {
    return static_cast<quint8>(data.at(offset));
}

}  // namespace

std::optional<Edid> parseEdid(const QByteArray& data) {
    if (data.size() < kBaseBlockSize) {
        return std::nullopt;
    }
    for (int i = 0; i < 8; ++i) {
        if (byteAt(data, i) != kHeader[i]) {
            return std::nullopt;
        }
    }
    quint32 sum = 0;
    for (int i = 0; i < kBaseBlockSize; ++i) {
        sum += byteAt(data, i);
    }
    if (sum % 256 != 0) {
        return std::nullopt;
    }

    Edid edid;
    edid.vendor = (byteAt(data, 8) << 8) | byteAt(data, 9);
    edid.model = byteAt(data, 10) | (byteAt(data, 11) << 8);
    edid.serial = byteAt(data, 12) | (byteAt(data, 13) << 8) | (byteAt(data, 14) << 16) | (byteAt(data, 15) << 24);
    for (const int offset : kDescriptorOffsets) {
        // Display descriptors start with two zero bytes; byte 3 says what they hold, 13 bytes of text
        // from byte 5, ended by a line feed when shorter.
        if (byteAt(data, offset) != 0 || byteAt(data, offset + 1) != 0) {
            continue;
        }
        const quint32 tag = byteAt(data, offset + 3);
        QString* field = tag == kMonitorNameTag  ? &edid.monitorName
                         : tag == kSerialTextTag ? &edid.serialText
                                                 : nullptr;
        if (field == nullptr || !field->isEmpty()) {
            continue;
        }
        QByteArray text = data.mid(offset + 5, 13);
        const qsizetype end = text.indexOf('\n');
        if (end >= 0) {
            text.truncate(end);
        }
        *field = QString::fromLatin1(text).trimmed();
    }
    return edid;
}
