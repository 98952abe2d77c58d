#pragma once

#include <QHash>

#include "platform/Accessibility.h"

// A scripted Accessibility tree: attribute values and errors per element, and a record of writes.
class FakeAccessibility : public Accessibility {
public:
    struct Write {
        AXUIElement element;
        QString attribute;
        QVariant value;
    };

    // The value an attribute reads as.
    void setValue(const AXUIElement& element, const QString& attribute, const QVariant& value);
    // Makes reading (or writing) an attribute fail with an error.
    void setReadError(const AXUIElement& element, const QString& attribute, AXError error);
    void setWriteError(const AXUIElement& element, const QString& attribute, AXError error);

    const QList<Write>& writes() const { return m_writes; }

    AXError copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) override;
    AXError setAttributeValue(const AXUIElement& element, const QString& attribute, const QVariant& value) override;

private:
    static QString key(const AXUIElement& element, const QString& attribute);

    QHash<QString, QVariant> m_values;
    QHash<QString, AXError> m_readErrors;
    QHash<QString, AXError> m_writeErrors;
    QList<Write> m_writes;
};
