#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include "platform/Types.h"

// Result codes of the Accessibility facade. 0 is success; the others keep their conventional numbers.
using AXError = qint32;
inline constexpr AXError kAXErrorSuccess = 0;
inline constexpr AXError kAXErrorFailure = -25200;
inline constexpr AXError kAXErrorIllegalArgument = -25201;
inline constexpr AXError kAXErrorInvalidUIElement = -25202;
inline constexpr AXError kAXErrorInvalidUIElementObserver = -25203;
inline constexpr AXError kAXErrorCannotComplete = -25204;
inline constexpr AXError kAXErrorAttributeUnsupported = -25205;
inline constexpr AXError kAXErrorActionUnsupported = -25206;
inline constexpr AXError kAXErrorNotificationUnsupported = -25207;
inline constexpr AXError kAXErrorNotImplemented = -25208;
inline constexpr AXError kAXErrorNotificationAlreadyRegistered = -25209;
inline constexpr AXError kAXErrorNotificationNotRegistered = -25210;
inline constexpr AXError kAXErrorAPIDisabled = -25211;
inline constexpr AXError kAXErrorNoValue = -25212;
inline constexpr AXError kAXErrorParameterizedAttributeUnsupported = -25213;
inline constexpr AXError kAXErrorNotEnoughPrecision = -25214;

// Attribute names.
inline constexpr const char* kAXWindowsAttribute = "AXWindows";
inline constexpr const char* kAXAllWindowsAttribute = "AXAllWindows";
inline constexpr const char* kAXRoleAttribute = "AXRole";
inline constexpr const char* kAXWindowNumberAttribute = "AXWindowNumber";
inline constexpr const char* kAXPositionAttribute = "AXPosition";
inline constexpr const char* kAXSizeAttribute = "AXSize";
inline constexpr const char* kAXMinimizedAttribute = "AXMinimized";
inline constexpr const char* kAXHiddenAttribute = "AXHidden";
inline constexpr const char* kAXFocusedWindowAttribute = "AXFocusedWindow";
inline constexpr const char* kAXMainWindowAttribute = "AXMainWindow";
inline constexpr const char* kAXFocusedApplicationAttribute = "AXFocusedApplication";

// Role values.
inline constexpr const char* kAXWindowRole = "AXWindow";
inline constexpr const char* kAXDialogRole = "AXDialog";
inline constexpr const char* kAXSheetRole = "AXSheet";

// A handle on one element of the Accessibility tree: the system-wide element, an application (by pid)
// or a window (by its window number). Two handles are equal when they name the same element.
struct AXUIElement {
    enum class Kind { SystemWide, Application, Window };
    Kind kind = Kind::SystemWide;
    qint64 identifier = 0;  // the pid of an application, the window number of a window

    static AXUIElement systemWide() { return {Kind::SystemWide, 0}; }
    static AXUIElement application(pid_t pid) { return {Kind::Application, pid}; }
    static AXUIElement window(qint64 windowNumber) { return {Kind::Window, windowNumber}; }

    bool operator==(const AXUIElement&) const = default;
};
using AXUIElementList = QList<AXUIElement>;
Q_DECLARE_METATYPE(AXUIElement)
Q_DECLARE_METATYPE(AXUIElementList)

// Attribute values travel as QVariant:
//   element: AXUIElement; list of elements: AXUIElementList; position: QPointF; size: QSizeF;
//   role: QString; window number: int or qint64; minimised, hidden: bool.
struct AXAttributeRequest {
    AXUIElement element;
    QString attribute;
};
struct AXAttributeReply {
    AXError error = kAXErrorSuccess;
    QVariant value;
};

// The Accessibility facade: named attributes of elements, read and written with AXError results.
class Accessibility {
public:
    Accessibility() = default;
    virtual ~Accessibility() = default;
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;

    // Reads one attribute. On success fills value and returns kAXErrorSuccess.
    virtual AXError copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) = 0;
    // Writes one attribute; returns once the change is applied or a short time limit has passed.
    virtual AXError setAttributeValue(const AXUIElement& element, const QString& attribute, const QVariant& value) = 0;
    // Reads many attributes at once, in request order. Backends that can pipeline requests override this.
    virtual QList<AXAttributeReply> copyAttributeValues(const QList<AXAttributeRequest>& requests);
};
