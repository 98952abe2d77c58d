#pragma once

#include <QMetaType>
#include <QVariant>
#include <cmath>
#include <limits>
#include <optional>

// Classifies the values that platform dictionaries carry. The window list and the Accessibility facade
// hand numbers over as QVariant of several widths; these helpers say which kinds a reader accepts.
namespace VariantNumbers {

// Integers of every width and sign.
inline bool isInteger(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
            return true;
        default:
            return false;
    }
}

// Any number: integers and floating point. Booleans and strings are not numbers.
inline bool isNumber(const QVariant& value) {
    return isInteger(value) || value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
}

// A number's integer value (floating point truncated towards zero); nothing when the value is not a
// number or its integer value does not fit 64 bits.
inline std::optional<qint64> integerValue(const QVariant& value) {
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float) {
        const double d = value.toDouble();
        if (!std::isfinite(d) || d >= 9223372036854775808.0 || d < -9223372036854775808.0) {
            return std::nullopt;
        }
        return static_cast<qint64>(d);
    }
    if (value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::ULong) {
        const quint64 u = value.toULongLong();
        if (u > static_cast<quint64>(std::numeric_limits<qint64>::max())) {
            return std::nullopt;
        }
        return static_cast<qint64>(u);
    }
    if (!isInteger(value)) {
        return std::nullopt;
    }
    return value.toLongLong();
}

}  // namespace VariantNumbers
