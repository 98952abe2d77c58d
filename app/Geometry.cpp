#include "app/Geometry.h"

#include <QVariantMap>

#include "app/VariantNumbers.h"

std::optional<QRectF> Geometry::rectFromDictionaryRepresentation(const QVariant& value) {
    if (value.typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    const QVariantMap dictionary = value.toMap();
    double fields[4] = {};
    const char* keys[4] = {"X", "Y", "Width", "Height"};
    for (int i = 0; i < 4; ++i) {
        const QVariant field = dictionary.value(QLatin1String(keys[i]));
        if (!VariantNumbers::isNumber(field)) {
            return std::nullopt;
        }
        fields[i] = field.toDouble();
    }
    return QRectF(fields[0], fields[1], fields[2], fields[3]);
}
