// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppController;
class QLabel;

// The two capability rows: status badge, what limits the capability or why it is missing, a request
// (a new check) and a button that opens the help page.
class SettingsPermissionsSection : public QWidget {
    Q_OBJECT
public:
    explicit SettingsPermissionsSection(AppController& controller, QWidget* parent = nullptr);

    QLabel* screenRecordingBadge() const { return m_screenRecordingBadge; }
    QLabel* accessibilityBadge() const { return m_accessibilityBadge; }
    QLabel* screenRecordingExplanation() const { return m_screenRecordingExplanation; }
    QLabel* accessibilityExplanation() const { return m_accessibilityExplanation; }

private:
    void updateBadges();

    AppController& m_controller;
    QLabel* m_screenRecordingBadge = nullptr;
    QLabel* m_accessibilityBadge = nullptr;
    QLabel* m_screenRecordingExplanation = nullptr;
    QLabel* m_accessibilityExplanation = nullptr;
};
