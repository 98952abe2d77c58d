// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinOwnWindows.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QJsonArray>
#include <QWindow>

#include "platform/kwin/KWinBridge.h"

namespace {

bool isPanel(const QWindow& window) {
    return window.type() == Qt::Popup && window.transientParent() == nullptr;
}

// The title KWin sees: the toolkit gives an untitled window the application's name.
QString shownTitle(const QWindow& window) {
    return window.title().isEmpty() ? QCoreApplication::applicationName() : window.title();
}

// KWin's rule without what only the first showing does.
QJsonObject lasting(QJsonObject rule) {
    rule.remove(QStringLiteral("place"));
    rule.remove(QStringLiteral("activate"));
    return rule;
}

}  // namespace

KWinOwnWindows::KWinOwnWindows(KWinBridge& bridge) : m_bridge(bridge) {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

KWinOwnWindows::~KWinOwnWindows() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

QJsonObject KWinOwnWindows::ruleFor(const QWindow& window) const {
    if (!window.isTopLevel()) {
        return {};
    }
    if (isPanel(window)) {
        return {{QStringLiteral("skipTaskbar"), true},
                {QStringLiteral("skipSwitcher"), true},
                {QStringLiteral("place"), QStringLiteral("pointer")},
                {QStringLiteral("activate"), true}};
    }
    if (!isTaskbarKind(window)) {
        return {};
    }
    const bool skip = !m_shown && !window.property(kAlwaysInTaskbarProperty).toBool();
    return {{QStringLiteral("skipTaskbar"), skip}, {QStringLiteral("skipSwitcher"), skip}};
}

QList<KWinBridge::OwnWindowRule> KWinOwnWindows::rules(const QWindow* showing) const {
    QList<KWinBridge::OwnWindowRule> rules;
    // The window being shown first: where windows look alike, the newest one's rule counts.
    if (showing != nullptr && !ruleFor(*showing).isEmpty()) {
        rules.append({shownTitle(*showing), showing->size(), ruleFor(*showing)});
    }
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window != showing && window->isVisible() && !ruleFor(*window).isEmpty()) {
            rules.append({shownTitle(*window), window->size(), ruleFor(*window)});
        }
    }
    return rules;
}

bool KWinOwnWindows::eventFilter(QObject* watched, QEvent* event) {
    // The rule must be there before KWin sees the window; a Show event comes before the toolkit maps it.
    if (event->type() == QEvent::Show && watched->isWindowType()) {
        m_bridge.setOwnWindowRules(rules(static_cast<QWindow*>(watched)));
    }
    return QObject::eventFilter(watched, event);
}

void KWinOwnWindows::applyToShownWindows(bool activate) {
    const QList<KWinBridge::OwnWindowRule> current = rules();
    m_bridge.setOwnWindowRules(current);
    QJsonArray shown;
    for (const KWinBridge::OwnWindowRule& rule : current) {
        shown.append(QJsonObject{{QStringLiteral("caption"), rule.title},
                                 {QStringLiteral("width"), rule.size.width()},
                                 {QStringLiteral("height"), rule.size.height()},
                                 {QStringLiteral("rule"), lasting(rule.rule)}});
    }
    const QJsonObject others{{QStringLiteral("skipTaskbar"), !m_shown}, {QStringLiteral("skipSwitcher"), !m_shown}};
    QJsonObject command{{QStringLiteral("op"), QStringLiteral("ownWindows")},
                        {QStringLiteral("pid"), static_cast<int>(::getpid())},
                        {QStringLiteral("rules"), shown},
                        {QStringLiteral("otherWindows"), others}};
    if (activate) {
        command.insert(QStringLiteral("activate"), true);
    }
    m_bridge.command(command);
}

void KWinOwnWindows::setShownInTaskbar(bool shown) {
    m_shown = shown;
    applyToShownWindows(false);
}

void KWinOwnWindows::bringToFront() {
    applyToShownWindows(true);
}
