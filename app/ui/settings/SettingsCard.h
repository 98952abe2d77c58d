// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

class QVBoxLayout;

// A rounded panel that groups the controls of a section; rows are separated by thin lines.
class SettingsCard : public QFrame {
    Q_OBJECT
public:
    // A card with an optional heading above its rows.
    explicit SettingsCard(const QString& heading = {}, QWidget* parent = nullptr);

    // Appends a row, with a separator line when other rows come before it.
    void addRow(QWidget* row);
    // Appends a row and returns its layout, for a label on the left and controls on the right.
    class QHBoxLayout* addRowLayout();
    // Removes and deletes every row.
    void clearRows();
    int rowCount() const { return m_rowCount; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* m_rows = nullptr;
    int m_rowCount = 0;
};
