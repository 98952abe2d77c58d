// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

#include "app/model/Models.h"

class SettingsStore;

// The stored form of the remembered displays: a compact JSON array of objects with the keys
// "id", "lastKnownName" and "lastKnownIndex", in that order; the index is left out when unknown.
namespace ShortcutDisplayRecordCoding {

QByteArray encode(const QList<ShortcutDisplayRecord>& records);
// Nothing when the data is not such an array, or when it repeats an identifier.
std::optional<QList<ShortcutDisplayRecord>> decode(const QByteArray& data);

// The records stored under the key. A value that cannot be decoded reads as no records; before the
// records written next replace it, it is kept in the same store under "<key>.corrupt-<time>", and one
// line says so.
QList<ShortcutDisplayRecord> load(SettingsStore& store, const QString& key);

}  // namespace ShortcutDisplayRecordCoding
