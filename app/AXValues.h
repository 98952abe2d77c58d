#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>

#include "platform/Accessibility.h"

// Interpretation of Accessibility attribute values, shared by the inventory and the mover.
namespace AXValues {

// The installed Accessibility facade.
Accessibility* accessibility();

// A successful reply holding a point / size.
std::optional<QPointF> point(const AXAttributeReply& reply);
std::optional<QSizeF> size(const AXAttributeReply& reply);
// A successful reply holding a string.
std::optional<QString> string(const AXAttributeReply& reply);
// A successful reply holding a window number: any number's integer value.
std::optional<qint64> windowNumber(const AXAttributeReply& reply);
// Whether a value is a list of elements / one element.
bool isElementList(const QVariant& value);
bool isElement(const QVariant& value);

// A frame from a position and a size when both were read and both dimensions exceed one point.
std::optional<QRectF> usableFrame(const std::optional<QPointF>& position, const std::optional<QSizeF>& size);

// Whether a role is one of "AXWindow", "AXDialog", "AXSheet".
bool isMovableRole(const QString& role);

// Writes a point / size. A value with a coordinate that is not finite cannot be made into an
// Accessibility value: nothing is written and the result is kAXErrorFailure.
AXError setPoint(const AXUIElement& element, const QString& attribute, const QPointF& point);
AXError setSize(const AXUIElement& element, const QString& attribute, const QSizeF& size);

}  // namespace AXValues
