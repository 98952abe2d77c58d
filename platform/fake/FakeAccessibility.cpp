#include "platform/fake/FakeAccessibility.h"

#include <QPointF>
#include <QSizeF>

QString FakeAccessibility::key(const AXUIElement& element, const QString& attribute) {
    return QStringLiteral("%1/%2/%3").arg(static_cast<int>(element.kind)).arg(element.identifier).arg(attribute);
}

void FakeAccessibility::setValue(const AXUIElement& element, const QString& attribute, const QVariant& value) {
    QMutexLocker locker(&m_mutex);
    m_values.insert(key(element, attribute), value);
}

void FakeAccessibility::removeValue(const AXUIElement& element, const QString& attribute) {
    QMutexLocker locker(&m_mutex);
    m_values.remove(key(element, attribute));
}

void FakeAccessibility::setReadError(const AXUIElement& element, const QString& attribute, AXError error) {
    QMutexLocker locker(&m_mutex);
    m_readErrors.insert(key(element, attribute), error);
}

void FakeAccessibility::setWriteError(const AXUIElement& element, const QString& attribute, AXError error) {
    QMutexLocker locker(&m_mutex);
    m_writeErrors.insert(key(element, attribute), error);
}

void FakeAccessibility::failNextWrite(const AXUIElement& element, const QString& attribute, AXError error) {
    QMutexLocker locker(&m_mutex);
    m_nextWriteErrors.insert(key(element, attribute), error);
}

void FakeAccessibility::ignoreWrites(const AXUIElement& element, const QString& attribute, AXError reported) {
    QMutexLocker locker(&m_mutex);
    m_ignoredWrites.insert(key(element, attribute), reported);
}

void FakeAccessibility::addWindow(pid_t pid, const Window& window) {
    const AXUIElement app = AXUIElement::application(pid);
    const AXUIElement element = AXUIElement::window(window.number);
    QMutexLocker locker(&m_mutex);
    for (const auto& [listed, attribute] :
         {std::pair{window.inWindows, kAXWindowsAttribute}, std::pair{window.inAllWindows, kAXAllWindowsAttribute}}) {
        if (!listed) {
            continue;
        }
        const QString listKey = key(app, QLatin1String(attribute));
        AXUIElementList list = m_values.value(listKey).value<AXUIElementList>();
        list.append(element);
        m_values.insert(listKey, QVariant::fromValue(list));
    }
    if (window.numberReadable) {
        m_values.insert(key(element, QLatin1String(kAXWindowNumberAttribute)), window.number);
    }
    m_values.insert(key(element, QLatin1String(kAXRoleAttribute)), window.role);
    m_values.insert(key(element, QLatin1String(kAXPositionAttribute)), window.frame.topLeft());
    m_values.insert(key(element, QLatin1String(kAXSizeAttribute)), window.frame.size());
}

QRectF FakeAccessibility::frame(qint64 windowNumber) const {
    const AXUIElement element = AXUIElement::window(windowNumber);
    QMutexLocker locker(&m_mutex);
    return QRectF(m_values.value(key(element, QLatin1String(kAXPositionAttribute))).toPointF(),
                  m_values.value(key(element, QLatin1String(kAXSizeAttribute))).toSizeF());
}

QList<FakeAccessibility::Write> FakeAccessibility::writes() const {
    QMutexLocker locker(&m_mutex);
    return m_writes;
}

QList<FakeAccessibility::Write> FakeAccessibility::writes(const AXUIElement& element, const QString& attribute) const {
    QMutexLocker locker(&m_mutex);
    QList<Write> matching;
    for (const Write& write : m_writes) {
        if (write.element == element && write.attribute == attribute) {
            matching.append(write);
        }
    }
    return matching;
}

void FakeAccessibility::clearWrites() {
    QMutexLocker locker(&m_mutex);
    m_writes.clear();
}

int FakeAccessibility::readCount() const {
    QMutexLocker locker(&m_mutex);
    return m_readCount;
}

int FakeAccessibility::batchCount() const {
    QMutexLocker locker(&m_mutex);
    return m_batchCount;
}

AXError FakeAccessibility::copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
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
    QMutexLocker locker(&m_mutex);
    m_writes.append({element, attribute, value});
    const QString k = key(element, attribute);
    if (m_nextWriteErrors.contains(k)) {
        return m_nextWriteErrors.take(k);
    }
    if (m_writeErrors.contains(k)) {
        return m_writeErrors.value(k);
    }
    if (m_ignoredWrites.contains(k)) {
        return m_ignoredWrites.value(k);
    }
    m_values.insert(k, value);
    return kAXErrorSuccess;
}

QList<AXAttributeReply> FakeAccessibility::copyAttributeValues(const QList<AXAttributeRequest>& requests) {
    {
        QMutexLocker locker(&m_mutex);
        ++m_batchCount;
    }
    return Accessibility::copyAttributeValues(requests);
}
