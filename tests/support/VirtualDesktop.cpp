// SPDX-License-Identifier: MIT
#include "tests/support/VirtualDesktop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>
#include <cstdio>

QList<QRect> VirtualDesktop::layout() {
    return sideBySide(qEnvironmentVariable("LATTICA_TEST_LAYOUT", QStringLiteral("1920x1080,2560x1440,1280x1024")));
}

QList<QRect> VirtualDesktop::sideBySide(const QString& sizes) {
    QList<QRect> monitors;
    int x = 0;
    for (const QString& part : sizes.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList size = part.split(QLatin1Char('x'));
        const int width = size.value(0).toInt();
        const int height = size.value(1).toInt();
        monitors.append(QRect(x, 0, width, height));
        x += width;
    }
    return monitors;
}

QString VirtualDesktop::monitorGeometry(const QRect& rect) {
    return QStringLiteral("%1/%2x%3/%4+%5+%6")
        .arg(rect.width())
        .arg(rect.width() * 254 / 960)
        .arg(rect.height())
        .arg(rect.height() * 254 / 960)
        .arg(rect.x())
        .arg(rect.y());
}

int VirtualDesktop::run(const QString& program, const QStringList& arguments, int timeoutMs) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QString VirtualDesktop::output(const QString& program, const QStringList& arguments, int timeoutMs) {
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
    }
    const QByteArray errors = process.readAllStandardError();
    if (!errors.isEmpty()) {
        std::fputs(errors.constData(), stderr);
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

bool VirtualDesktop::waitUntil(const std::function<bool()>& predicate, int timeoutMs) {
    QDeadlineTimer deadline(timeoutMs);
    while (!predicate()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
    return true;
}

QProcessEnvironment VirtualDesktop::programEnvironment(const QString& configDirectory) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configDirectory);
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));
    return environment;
}

QProcessEnvironment VirtualDesktop::soleInstanceEnvironment(const QString& configDirectory,
                                                            const QString& runtimeDirectory) {
    QProcessEnvironment environment = programEnvironment(configDirectory);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDirectory);
    // An address of an unknown kind: the program finds no bus and starts none.
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("disabled:"));
    return environment;
}

QString VirtualDesktop::sourcePath(const QString& relative) {
    return QStringLiteral(LATTICA_SOURCE_DIR "/") + relative;
}
