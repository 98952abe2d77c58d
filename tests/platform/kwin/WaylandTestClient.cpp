// SPDX-License-Identifier: MIT
// lattica-wayland-test-client: opens native Wayland windows (Qt on its wayland platform) as told on
// standard input, one command a line:
//   open name=N [title=T] [w=W] [h=H] [color=#rrggbb] [state=normal|maximized|fullscreen|minimized]
//   close name=N
//   exit
// It answers "ready" once connected, "window N" once a window is shown and painted, "closed N".
// Windows are one flat colour, so that they never animate and a capture shows where they are.
#include <unistd.h>

#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QRasterWindow>
#include <QSocketNotifier>
#include <cstdio>

namespace {

class ColourWindow : public QRasterWindow {
public:
    ColourWindow(QString name, QColor colour, bool minimiseWhenShown)
        : m_name(std::move(name)), m_colour(colour), m_minimiseWhenShown(minimiseWhenShown) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(), size()), m_colour);
        if (!m_reported) {
            m_reported = true;
            std::printf("window %s\n", qPrintable(m_name));
            std::fflush(stdout);
            // A window that is never shown is never managed: it is minimised once it has been.
            if (m_minimiseWhenShown) {
                QMetaObject::invokeMethod(
                    this, [this] { showMinimized(); }, Qt::QueuedConnection);
            }
        }
    }

private:
    QString m_name;
    QColor m_colour;
    bool m_minimiseWhenShown;
    bool m_reported = false;
};

QHash<QString, QString> options(const QStringList& words) {
    QHash<QString, QString> values;
    for (const QString& word : words) {
        const qsizetype equals = word.indexOf(QLatin1Char('='));
        if (equals > 0) {
            values.insert(word.left(equals), word.mid(equals + 1));
        }
    }
    return values;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("lattica-wayland-test-client"));
    QHash<QString, ColourWindow*> windows;
    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
        char buffer[4096];
        const ssize_t length = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (length <= 0) {
            QCoreApplication::quit();
            return;
        }
        pending.append(buffer, length);
        qsizetype newline;
        while ((newline = pending.indexOf('\n')) >= 0) {
            const QStringList words =
                QString::fromUtf8(pending.left(newline)).split(QLatin1Char(' '), Qt::SkipEmptyParts);
            pending.remove(0, newline + 1);
            if (words.isEmpty()) {
                continue;
            }
            const QHash<QString, QString> values = options(words.mid(1));
            const QString name = values.value(QStringLiteral("name"));
            if (words.first() == QLatin1String("exit")) {
                QCoreApplication::quit();
            } else if (words.first() == QLatin1String("close")) {
                delete windows.take(name);
                std::printf("closed %s\n", qPrintable(name));
            } else if (words.first() == QLatin1String("open")) {
                const QString state = values.value(QStringLiteral("state"));
                auto* window =
                    new ColourWindow(name, QColor(values.value(QStringLiteral("color"), QStringLiteral("#3060c0"))),
                                     state == QLatin1String("minimized"));
                window->setTitle(values.value(QStringLiteral("title"), name));
                window->resize(values.value(QStringLiteral("w"), QStringLiteral("400")).toInt(),
                               values.value(QStringLiteral("h"), QStringLiteral("300")).toInt());
                windows.insert(name, window);
                if (state == QLatin1String("maximized")) {
                    window->showMaximized();
                } else if (state == QLatin1String("fullscreen")) {
                    window->showFullScreen();
                } else {
                    window->show();
                }
            } else {
                std::printf("error cannot read: %s\n", qPrintable(words.join(QLatin1Char(' '))));
            }
            std::fflush(stdout);
        }
    });
    std::printf("ready\n");
    std::fflush(stdout);
    const int status = QGuiApplication::exec();
    qDeleteAll(windows);
    return status;
}
