#pragma once

#include <QDBusContext>
#include <QObject>
#include <functional>

#include "app/commands/CommandResult.h"

class CommandService;

// The running instance's interface on the session bus, app.lattica.Lattica1 (dbus/ keeps its
// introspection). Moves run the same commands as the command line; what needs the user interface
// (the panel, the settings, quitting) is done by the actions the program passes in.
class LatticaBusService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.lattica.Lattica1")
public:
    struct Actions {
        std::function<void()> openPanel;
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    static inline const QString serviceName = QStringLiteral("app.lattica.Lattica");
    static inline const QString objectPath = QStringLiteral("/app/lattica/Lattica");
    static inline const QString interfaceName = QStringLiteral("app.lattica.Lattica1");

    LatticaBusService(const CommandService& commands, Actions actions, QObject* parent = nullptr);

public Q_SLOTS:
    Q_SCRIPTABLE QString Displays();
    Q_SCRIPTABLE QString Windows();
    Q_SCRIPTABLE int MoveFocused(const QString& to, const QString& size, int& attempted, QString& status);
    Q_SCRIPTABLE int MoveAll(const QString& from, const QString& to, const QString& size, int& attempted,
                             QString& status);
    Q_SCRIPTABLE int MoveApplication(const QString& application, const QString& to, const QString& size, int& attempted,
                                     QString& status);
    Q_SCRIPTABLE void OpenPanel();
    Q_SCRIPTABLE void OpenSettings();
    Q_SCRIPTABLE void Quit();

private:
    // Answers the call with the result's error when it is one; the moved count otherwise.
    int answer(const CommandResult& result, int& attempted, QString& status);
    QString listing(const CommandResult& result);
    static CommandResult invalidSize(const QString& size);

    const CommandService& m_commands;
    Actions m_actions;
};
