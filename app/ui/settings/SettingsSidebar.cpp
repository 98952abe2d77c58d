// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsSidebar.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include "app/ui/settings/SettingsSidebarButton.h"

SettingsSidebar::SettingsSidebar(QWidget* parent) : QWidget(parent) {
    setFixedWidth(kWidth);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    // The control background: the colour lists and fields sit on.
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    auto* list = new QWidget();
    list->setBackgroundRole(QPalette::Base);
    auto* listLayout = new QVBoxLayout(list);
    listLayout->setContentsMargins(10, 14, 10, 14);
    listLayout->setSpacing(3);
    m_order = SettingsSections::sidebarSections();
    for (const SettingsSection section : m_order) {
        auto* button = new SettingsSidebarButton(section, list);
        button->setObjectName(QStringLiteral("sidebar.") + SettingsSections::rawValue(section));
        connect(button, &QAbstractButton::clicked, this, [this, section] { Q_EMIT sectionSelected(section); });
        listLayout->addWidget(button);
        m_buttons.insert(section, button);
    }
    listLayout->addStretch();

    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setBackgroundRole(QPalette::Base);
    scroll->viewport()->setBackgroundRole(QPalette::Base);
    scroll->setWidget(list);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
}

void SettingsSidebar::setSelectedSection(SettingsSection section) {
    if (SettingsSidebarButton* button = m_buttons.value(section)) {
        button->setChecked(true);
        return;
    }
    // A section the sidebar does not list: no entry is highlighted.
    for (SettingsSidebarButton* button : std::as_const(m_buttons)) {
        button->setAutoExclusive(false);
        button->setChecked(false);
        button->setAutoExclusive(true);
    }
}

QList<SettingsSection> SettingsSidebar::listedSections() const {
    return m_order;
}
