#pragma once

#include <QHash>
#include <QMutex>
#include <QRectF>
#include <QSet>

#include "platform/Accessibility.h"

// A scripted Accessibility tree: attribute values and errors per element, writes that apply, fail or
// are silently ignored, and a record of every write. Safe to read from a background thread.
class FakeAccessibility : public Accessibility {
public:
    struct Write {
        AXUIElement element;
        QString attribute;
        QVariant value;
    };

    // One window of an application, as addWindow() scripts it.
    struct Window {
        qint64 number = 0;
        QRectF frame;
        QString role = QStringLiteral("AXWindow");
        bool inWindows = true;       // listed by "AXWindows"
        bool inAllWindows = true;    // listed by "AXAllWindows"
        bool numberReadable = true;  // false: "AXWindowNumber" has no value
    };

    // The value an attribute reads as.
    void setValue(const AXUIElement& element, const QString& attribute, const QVariant& value);
    void removeValue(const AXUIElement& element, const QString& attribute);
    // Makes reading (or writing) an attribute fail with an error.
    void setReadError(const AXUIElement& element, const QString& attribute, AXError error);
    void setWriteError(const AXUIElement& element, const QString& attribute, AXError error);
    // Makes only the next write of an attribute fail; later writes behave as scripted otherwise.
    void failNextWrite(const AXUIElement& element, const QString& attribute, AXError error);
    // Writes of the attribute report `reported` but change nothing, so a read-back shows the old value
    // (an application that refuses a size, for example).
    void ignoreWrites(const AXUIElement& element, const QString& attribute, AXError reported = kAXErrorSuccess);

    // Adds a window element to the application: its lists, number, role, position and size.
    void addWindow(pid_t pid, const Window& window);
    // The window's current position and size (as writes left them).
    QRectF frame(qint64 windowNumber) const;

    QList<Write> writes() const;
    QList<Write> writes(const AXUIElement& element, const QString& attribute) const;
    void clearWrites();
    // How many single reads and how many batched reads were made.
    int readCount() const;
    int batchCount() const;

    AXError copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) override;
    AXError setAttributeValue(const AXUIElement& element, const QString& attribute, const QVariant& value) override;
    QList<AXAttributeReply> copyAttributeValues(const QList<AXAttributeRequest>& requests) override;

private:
    static QString key(const AXUIElement& element, const QString& attribute);

    mutable QMutex m_mutex;
    QHash<QString, QVariant> m_values;
    QHash<QString, AXError> m_readErrors;
    QHash<QString, AXError> m_writeErrors;
    QHash<QString, AXError> m_ignoredWrites;
    QHash<QString, AXError> m_nextWriteErrors;
    QList<Write> m_writes;
    int m_readCount = 0;
    int m_batchCount = 0;
};
