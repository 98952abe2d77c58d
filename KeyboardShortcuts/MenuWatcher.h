#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>

class QMenu;

namespace KeyboardShortcuts {

// Tells when the application's menus open and close: the first menu shown begins tracking, the last one
// hidden ends it. Watches the application object's events from construction, when one exists.
class MenuWatcher : public QObject {
    Q_OBJECT
public:
    explicit MenuWatcher(std::function<void(bool isOpen)> onChange);
    ~MenuWatcher() override;

    // Whether any of the application's menus is visible now.
    bool isAnyMenuOpen() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void(bool)> m_onChange;
    QList<QPointer<QMenu>> m_openMenus;
};

}  // namespace KeyboardShortcuts
