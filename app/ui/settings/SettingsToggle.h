// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

// An on/off switch: a rounded track with a sliding knob, checkable like a check box.
class SettingsToggle : public QAbstractButton {
    Q_OBJECT
public:
    explicit SettingsToggle(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
