#pragma once

#include <QWidget>

class AppController;
class QLabel;

// The two permission rows: status badge, "Request Access" and "Open System Settings".
class SettingsPermissionsSection : public QWidget {
    Q_OBJECT
public:
    explicit SettingsPermissionsSection(AppController& controller, QWidget* parent = nullptr);

    QLabel* screenRecordingBadge() const { return m_screenRecordingBadge; }
    QLabel* accessibilityBadge() const { return m_accessibilityBadge; }

private:
    void updateBadges();

    AppController& m_controller;
    QLabel* m_screenRecordingBadge = nullptr;
    QLabel* m_accessibilityBadge = nullptr;
};
