// SPDX-License-Identifier: MIT
// A monitor's EDID: any bytes parse without a crash; what is accepted has a valid base block, and the
// identity read from it depends on the base block only.
#include <QByteArray>

#include "platform/x11/Edid.h"
#include "tests/fuzz/FuzzCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<Edid> edid = parseEdid(bytes);
    if (!edid) {
        return 0;
    }
    FUZZ_CHECK(bytes.size() >= 128);
    FUZZ_CHECK(bytes.startsWith(QByteArray::fromHex("00ffffffffffff00")));
    unsigned sum = 0;
    for (int i = 0; i < 128; ++i) {
        sum += static_cast<quint8>(bytes.at(i));
    }
    FUZZ_CHECK(sum % 256 == 0);
    // A monitor-name descriptor holds at most 13 characters.
    FUZZ_CHECK(edid->monitorName.size() <= 13);
    FUZZ_CHECK(edid->monitorName == edid->monitorName.trimmed());
    const std::optional<Edid> baseOnly = parseEdid(bytes.left(128));
    FUZZ_CHECK(baseOnly && *baseOnly == *edid);
    return 0;
}
