// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeShellState.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QRectF rectangleFrom(const QJsonObject& object) {
    return QRectF(object.value(QLatin1String("x")).toDouble(), object.value(QLatin1String("y")).toDouble(),
                  object.value(QLatin1String("width")).toDouble(), object.value(QLatin1String("height")).toDouble());
}

std::optional<QString> optionalString(const QJsonValue& value) {
    if (!value.isString()) {
        return std::nullopt;
    }
    return value.toString();
}

GnomeShellWindow windowFrom(const QJsonObject& object) {
    GnomeShellWindow window;
    window.id = static_cast<quint64>(object.value(QLatin1String("id")).toDouble());
    window.pid = static_cast<pid_t>(object.value(QLatin1String("pid")).toInt());
    window.title = object.value(QLatin1String("title")).toString();
    window.wmClass = object.value(QLatin1String("wmClass")).toString();
    window.application = optionalString(object.value(QLatin1String("application")));
    window.desktopId = optionalString(object.value(QLatin1String("desktopId")));
    window.frame = rectangleFrom(object.value(QLatin1String("frame")).toObject());
    window.monitor = object.value(QLatin1String("monitor")).toInt(-1);
    window.stackLayer = object.value(QLatin1String("layer")).toInt(2);
    window.type = object.value(QLatin1String("type")).toInt();
    window.minimized = object.value(QLatin1String("minimized")).toBool();
    window.maximized = object.value(QLatin1String("maximized")).toBool();
    window.fullscreen = object.value(QLatin1String("fullscreen")).toBool();
    window.skipTaskbar = object.value(QLatin1String("skipTaskbar")).toBool();
    window.onCurrentWorkspace = object.value(QLatin1String("onCurrentWorkspace")).toBool(true);
    window.opacity = object.value(QLatin1String("opacity")).toDouble(1.0);
    window.wayland = object.value(QLatin1String("client")).toString() != QLatin1String("x11");
    return window;
}

std::optional<QJsonArray> arrayFrom(const QByteArray& json) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        return std::nullopt;
    }
    return document.array();
}

}  // namespace

std::optional<QList<GnomeShellMonitor>> GnomeShellState::parseMonitors(const QByteArray& json) {
    const std::optional<QJsonArray> array = arrayFrom(json);
    if (!array) {
        return std::nullopt;
    }
    QList<GnomeShellMonitor> monitors;
    for (const QJsonValue& value : *array) {
        const QJsonObject object = value.toObject();
        GnomeShellMonitor monitor;
        monitor.index = object.value(QLatin1String("index")).toInt();
        monitor.geometry = rectangleFrom(object);
        monitor.scale = object.value(QLatin1String("scale")).toDouble(1.0);
        monitor.primary = object.value(QLatin1String("primary")).toBool();
        monitors.append(monitor);
    }
    return monitors;
}

std::optional<QList<GnomeShellWindow>> GnomeShellState::parseWindows(const QByteArray& json) {
    const std::optional<QJsonArray> array = arrayFrom(json);
    if (!array) {
        return std::nullopt;
    }
    QList<GnomeShellWindow> windows;
    for (const QJsonValue& value : *array) {
        windows.append(windowFrom(value.toObject()));
    }
    return windows;
}

GnomeChangeAnswer GnomeShellState::parseChange(const QByteArray& json) {
    GnomeChangeAnswer answer;
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const QString result = object.value(QLatin1String("result")).toString();
    if (result == QLatin1String("ok")) {
        answer.outcome = GnomeChangeAnswer::Outcome::Ok;
    } else if (result == QLatin1String("gone")) {
        answer.outcome = GnomeChangeAnswer::Outcome::Gone;
    } else {
        answer.error =
            object.value(QLatin1String("error"))
                .toString(result.isEmpty() ? QStringLiteral("the extension's answer could not be read") : result);
    }
    if (object.value(QLatin1String("window")).isObject()) {
        answer.window = windowFrom(object.value(QLatin1String("window")).toObject());
    }
    return answer;
}
