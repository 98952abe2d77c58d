// SPDX-License-Identifier: MIT
// The remembered displays: any bytes decode without a crash; accepted records never repeat an
// identifier, and they are encoded and decoded back as the same records.
#include <QByteArray>
#include <QSet>

#include "app/displayshortcuts/ShortcutDisplayRecordCoding.h"
#include "tests/fuzz/FuzzCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<QList<ShortcutDisplayRecord>> records = ShortcutDisplayRecordCoding::decode(bytes);
    if (!records) {
        return 0;
    }
    QSet<QString> identifiers;
    for (const ShortcutDisplayRecord& record : *records) {
        identifiers.insert(record.id);
    }
    FUZZ_CHECK(identifiers.size() == records->size());
    const QByteArray encoded = ShortcutDisplayRecordCoding::encode(*records);
    const std::optional<QList<ShortcutDisplayRecord>> again = ShortcutDisplayRecordCoding::decode(encoded);
    FUZZ_CHECK(again && *again == *records);
    return 0;
}
