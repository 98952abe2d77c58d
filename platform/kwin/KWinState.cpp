// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinState.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QRectF rectOf(const QJsonObject& object) {
    return QRectF(object.value(QLatin1String("x")).toDouble(), object.value(QLatin1String("y")).toDouble(),
                  object.value(QLatin1String("width")).toDouble(), object.value(QLatin1String("height")).toDouble());
}

bool flag(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toBool();
}

QString text(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString();
}

KWinWindow windowOf(const QJsonObject& object) {
    KWinWindow window;
    window.uuid = text(object, "id");
    window.pid = static_cast<pid_t>(object.value(QLatin1String("pid")).toInteger());
    window.resourceClass = text(object, "resourceClass");
    window.resourceName = text(object, "resourceName");
    window.desktopFile = text(object, "desktopFile");
    window.caption = text(object, "caption");
    window.frame = rectOf(object);
    window.minimized = flag(object, "minimized");
    window.fullScreen = flag(object, "fullScreen");
    window.maximizedHorizontally = flag(object, "maximizedH");
    window.maximizedVertically = flag(object, "maximizedV");
    window.normal = flag(object, "normal");
    window.dialog = flag(object, "dialog");
    window.utility = flag(object, "utility");
    window.dock = flag(object, "dock");
    window.desktopWindow = flag(object, "desktopWindow");
    window.special = flag(object, "special");
    window.popup = flag(object, "popup");
    window.skipTaskbar = flag(object, "skipTaskbar");
    window.skipSwitcher = flag(object, "skipSwitcher");
    window.keepAbove = flag(object, "keepAbove");
    window.managed = object.value(QLatin1String("managed")).toBool(true);
    window.onCurrentDesktop = object.value(QLatin1String("onCurrentDesktop")).toBool(true);
    window.hidden = flag(object, "hidden");
    window.moveable = flag(object, "moveable");
    window.resizeable = flag(object, "resizeable");
    window.transient = flag(object, "transient");
    window.modal = flag(object, "modal");
    window.opacity = object.value(QLatin1String("opacity")).toDouble(1);
    window.stacking = object.value(QLatin1String("stacking")).toInt();
    window.screen = object.value(QLatin1String("screen")).toInt(-1);
    window.x11 = flag(object, "x11");
    return window;
}

}  // namespace

const KWinWindow* KWinState::window(const QString& uuid) const {
    for (const KWinWindow& candidate : windows) {
        if (candidate.uuid == uuid) {
            return &candidate;
        }
    }
    return nullptr;
}

std::optional<KWinState> KWinState::parse(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject root = document.object();
    if (!root.value(QLatin1String("windows")).isArray() || !root.value(QLatin1String("screens")).isArray()) {
        return std::nullopt;
    }
    KWinState state;
    state.api = root.value(QLatin1String("api")).toInt();
    state.activeUuid = root.value(QLatin1String("active")).toString();
    for (const QJsonValue& value : root.value(QLatin1String("screens")).toArray()) {
        const QJsonObject object = value.toObject();
        state.screens.append(KWinScreen{object.value(QLatin1String("name")).toString(), rectOf(object),
                                        rectOf(object.value(QLatin1String("workArea")).toObject())});
    }
    for (const QJsonValue& value : root.value(QLatin1String("windows")).toArray()) {
        KWinWindow window = windowOf(value.toObject());
        if (!window.uuid.isEmpty()) {
            state.windows.append(window);
        }
    }
    return state;
}
