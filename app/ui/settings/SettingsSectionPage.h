// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "app/ui/settings/SettingsSection.h"

class QLabel;

// The detail pane of one section: its header (symbol, title, and the description when there is one)
// above the section's cards, which scroll when they do not fit.
class SettingsSectionPage : public QWidget {
    Q_OBJECT
public:
    SettingsSectionPage(SettingsSection section, QWidget* content, QWidget* parent = nullptr);

    SettingsSection section() const { return m_section; }
    QWidget* content() const { return m_content; }
    QString titleText() const;
    // Empty, and the line hidden, for a section without description.
    QString descriptionText() const;
    bool hasDescriptionLine() const;

protected:
    // The symbol is drawn in the palette's colours, so a new palette redraws it.
    void changeEvent(QEvent* event) override;

private:
    void drawSymbol();

    SettingsSection m_section;
    QWidget* m_content = nullptr;
    QLabel* m_symbol = nullptr;
    QLabel* m_title = nullptr;
    QLabel* m_description = nullptr;
};
