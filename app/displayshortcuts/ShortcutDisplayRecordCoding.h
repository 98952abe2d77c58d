#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

#include "app/model/Models.h"

// The stored form of the remembered displays: a compact JSON array of objects with the keys
// "id", "lastKnownName" and "lastKnownIndex", in that order; the index is left out when unknown.
namespace ShortcutDisplayRecordCoding {

QByteArray encode(const QList<ShortcutDisplayRecord>& records);
// Nothing when the data is not such an array, or when it repeats an identifier.
std::optional<QList<ShortcutDisplayRecord>> decode(const QByteArray& data);

}  // namespace ShortcutDisplayRecordCoding
