// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/ShellScreenshot.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace {
const QString kAllowedName = QStringLiteral("org.gnome.Screenshot");
}

ShellScreenshot::ShellScreenshot() {
    // The bus tells the Shell of the new owner before it passes on this process's next call, so the
    // Shell knows the name by the time a screenshot is asked for.
    m_ownsName = QDBusConnection::sessionBus().registerService(kAllowedName);
}

ShellScreenshot::~ShellScreenshot() {
    if (m_ownsName) {
        QDBusConnection::sessionBus().unregisterService(kAllowedName);
    }
}

QImage ShellScreenshot::area(const QRect& rect) {
    if (!m_ownsName) {
        m_error = QStringLiteral("%1 is owned by another process").arg(kAllowedName);
        return {};
    }
    const QString file = m_folder.filePath(QStringLiteral("area-%1.png").arg(++m_taken));
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("/org/gnome/Shell/Screenshot"),
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("ScreenshotArea"));
    message.setArguments({rect.x(), rect.y(), rect.width(), rect.height(), false, file});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 10000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty() ||
        !reply.arguments().constFirst().toBool()) {
        m_error = reply.type() == QDBusMessage::ErrorMessage ? reply.errorMessage()
                                                             : QStringLiteral("the Shell took no screenshot");
        return {};
    }
    QImage image(file);
    if (image.isNull()) {
        m_error = QStringLiteral("the screenshot %1 cannot be read").arg(file);
    }
    return image;
}
