#include "app/AXValues.h"

#include <cmath>

#include "app/VariantNumbers.h"
#include "platform/Platform.h"

Accessibility* AXValues::accessibility() {
    return Platform::services().accessibility;
}

std::optional<QPointF> AXValues::point(const AXAttributeReply& reply) {
    if (reply.error != kAXErrorSuccess || reply.value.typeId() != QMetaType::QPointF) {
        return std::nullopt;
    }
    return reply.value.toPointF();
}

std::optional<QSizeF> AXValues::size(const AXAttributeReply& reply) {
    if (reply.error != kAXErrorSuccess || reply.value.typeId() != QMetaType::QSizeF) {
        return std::nullopt;
    }
    return reply.value.toSizeF();
}

std::optional<QString> AXValues::string(const AXAttributeReply& reply) {
    if (reply.error != kAXErrorSuccess || reply.value.typeId() != QMetaType::QString) {
        return std::nullopt;
    }
    return reply.value.toString();
}

std::optional<qint64> AXValues::windowNumber(const AXAttributeReply& reply) {
    if (reply.error != kAXErrorSuccess) {
        return std::nullopt;
    }
    return VariantNumbers::integerValue(reply.value);
}

bool AXValues::isElementList(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<AXUIElementList>();
}

bool AXValues::isElement(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<AXUIElement>();
}

std::optional<QRectF> AXValues::usableFrame(const std::optional<QPointF>& position, const std::optional<QSizeF>& size) {
    if (!position || !size || !(size->width() > 1.0 && size->height() > 1.0)) {
        return std::nullopt;
    }
    return QRectF(*position, *size);
}

bool AXValues::isMovableRole(const QString& role) {
    return role == QLatin1String(kAXWindowRole) || role == QLatin1String(kAXDialogRole) ||
           role == QLatin1String(kAXSheetRole);
}

AXError AXValues::setPoint(const AXUIElement& element, const QString& attribute, const QPointF& point) {
    if (!std::isfinite(point.x()) || !std::isfinite(point.y())) {
        return kAXErrorFailure;
    }
    return accessibility()->setAttributeValue(element, attribute, QVariant::fromValue(point));
}

AXError AXValues::setSize(const AXUIElement& element, const QString& attribute, const QSizeF& size) {
    if (!std::isfinite(size.width()) || !std::isfinite(size.height())) {
        return kAXErrorFailure;
    }
    return accessibility()->setAttributeValue(element, attribute, QVariant::fromValue(size));
}
