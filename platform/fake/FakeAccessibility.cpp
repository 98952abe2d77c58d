#include "platform/fake/FakeAccessibility.h"

QString FakeAccessibility::key(const AXUIElement& element, const QString& attribute) {
    return QStringLiteral("%1/%2/%3").arg(static_cast<int>(element.kind)).arg(element.identifier).arg(attribute);
}

void FakeAccessibility::setValue(const AXUIElement& element, const QString& attribute, const QVariant& value) {
    m_values.insert(key(element, attribute), value);
}

void FakeAccessibility::setReadError(const AXUIElement& element, const QString& attribute, AXError error) {
    m_readErrors.insert(key(element, attribute), error);
}

void FakeAccessibility::setWriteError(const AXUIElement& element, const QString& attribute, AXError error) {
    m_writeErrors.insert(key(element, attribute), error);
}

AXError FakeAccessibility::copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) {
    const QString k = key(element, attribute);
    if (m_readErrors.contains(k)) {
        return m_readErrors.value(k);
    }
    if (!m_values.contains(k)) {
        return kAXErrorNoValue;
    }
    *value = m_values.value(k);
    return kAXErrorSuccess;
}

AXError FakeAccessibility::setAttributeValue(const AXUIElement& element, const QString& attribute,
                                             const QVariant& value) {
    m_writes.append({element, attribute, value});
    const QString k = key(element, attribute);
    if (m_writeErrors.contains(k)) {
        return m_writeErrors.value(k);
    }
    m_values.insert(k, value);
    return kAXErrorSuccess;
}
