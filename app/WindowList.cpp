#include "app/WindowList.h"

#include <QStringList>
#include <limits>

#include "app/Geometry.h"
#include "app/VariantNumbers.h"
#include "platform/Platform.h"
#include "platform/Workspace.h"

namespace {

pid_t narrowedPID(const std::optional<qint64>& value, const QVariant& original) {
    if (!value || *value < std::numeric_limits<qint32>::min() || *value > std::numeric_limits<qint32>::max()) {
        qFatal("kCGWindowOwnerPID does not fit 32 bits: %s", qPrintable(original.toString()));
    }
    return static_cast<pid_t>(*value);
}

}  // namespace

bool WindowList::isExcludedOwnerName(const QString& name) {
    static const QStringList excluded = {QStringLiteral("Window Server"), QStringLiteral("SystemUIServer"),
                                         QStringLiteral("ControlCenter"), QStringLiteral("NotificationCenter"),
                                         QStringLiteral("Dock")};
    return excluded.contains(name);
}

std::optional<pid_t> WindowList::ownerPID(const WindowInfo& entry) {
    const QVariant value = entry.value(QLatin1String(kCGWindowOwnerPID));
    if (value.typeId() == QMetaType::Int) {
        return static_cast<pid_t>(value.toInt());
    }
    if (value.typeId() == QMetaType::LongLong) {
        return narrowedPID(value.toLongLong(), value);
    }
    if (VariantNumbers::isNumber(value)) {
        return narrowedPID(VariantNumbers::integerValue(value), value);
    }
    return std::nullopt;
}

std::optional<qint64> WindowList::windowID(const WindowInfo& entry) {
    const QVariant value = entry.value(QLatin1String(kCGWindowNumber));
    if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::LongLong) {
        return value.toLongLong();
    }
    if (VariantNumbers::isNumber(value)) {
        return VariantNumbers::integerValue(value);
    }
    return std::nullopt;
}

bool WindowList::isOnScreen(const WindowInfo& entry) {
    const QVariant value = entry.value(QLatin1String(kCGWindowIsOnscreen));
    if (value.typeId() == QMetaType::Bool) {
        return value.toBool();
    }
    if (VariantNumbers::isNumber(value)) {
        const std::optional<qint64> integer = VariantNumbers::integerValue(value);
        return integer && *integer != 0;
    }
    return false;
}

bool WindowList::isOnNormalLayer(const WindowInfo& entry) {
    const QVariant value = entry.value(QLatin1String(kCGWindowLayer));
    return VariantNumbers::isInteger(value) && value.toLongLong() == 0;
}

std::optional<QString> WindowList::ownerName(const WindowInfo& entry) {
    const QVariant value = entry.value(QLatin1String(kCGWindowOwnerName));
    if (value.typeId() != QMetaType::QString) {
        return std::nullopt;
    }
    return value.toString();
}

bool WindowList::isTransparent(const WindowInfo& entry) {
    const QVariant value = entry.value(QLatin1String(kCGWindowAlpha));
    return VariantNumbers::isNumber(value) && value.toDouble() <= 0.01;
}

std::optional<QRectF> WindowList::bounds(const WindowInfo& entry) {
    return Geometry::rectFromDictionaryRepresentation(entry.value(QLatin1String(kCGWindowBounds)));
}

bool WindowList::hasUserWindowSize(const QRectF& bounds) {
    return bounds.width() >= 120.0 && bounds.height() >= 80.0;
}

QSet<pid_t> WindowList::regularApplicationPIDs() {
    QSet<pid_t> pids;
    for (const RunningApplication& application : Platform::services().workspace->runningApplications()) {
        if (application.activationPolicy == ActivationPolicy::Regular && !application.isTerminated) {
            pids.insert(application.processIdentifier);
        }
    }
    return pids;
}
