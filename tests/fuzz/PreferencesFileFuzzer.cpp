// SPDX-License-Identifier: MIT
// The preferences file as read from disk: any bytes decode without a crash, and the values read from
// them are written and read back unchanged.
#include <QByteArray>

#include "platform/xdg/FileSettingsStore.h"
#include "tests/fuzz/FuzzCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const FileSettingsStore::Decoded decoded = FileSettingsStore::decode(bytes);
    if (!decoded.error.isEmpty()) {
        FUZZ_CHECK(decoded.values.isEmpty());
        return 0;
    }
    const FileSettingsStore::Decoded again = FileSettingsStore::decode(FileSettingsStore::encode(decoded.values));
    FUZZ_CHECK(again.error.isEmpty());
    FUZZ_CHECK(!again.partlyDamaged);
    FUZZ_CHECK(again.values == decoded.values);
    return 0;
}
