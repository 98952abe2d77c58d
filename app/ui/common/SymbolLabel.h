// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QWidget>

// A symbol shown at a fixed size. It paints the icon at every repaint, so drawn symbols follow the
// current palette (light or dark) instead of keeping the colours of the moment they were made.
class SymbolLabel : public QWidget {
public:
    SymbolLabel(const QString& symbolName, int size, QWidget* parent = nullptr);

    void setSymbol(const QString& symbolName);
    const QString& symbolName() const { return m_symbolName; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbolName;
    QIcon m_icon;
};
