// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsSectionPage.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsSymbols.h"

namespace {
constexpr int kSymbolSize = 26;
}

SettingsSectionPage::SettingsSectionPage(SettingsSection section, QWidget* content, QWidget* parent)
    : QWidget(parent), m_section(section), m_content(content) {
    setObjectName(QStringLiteral("page.") + SettingsSections::rawValue(section));

    m_symbol = new QLabel(this);
    m_symbol->setObjectName(QStringLiteral("headerSymbol"));
    m_symbol->setFixedSize(kSymbolSize + 4, kSymbolSize + 4);
    m_symbol->setAlignment(Qt::AlignCenter);
    drawSymbol();

    m_title = ViewStyle::makeLabel(SettingsSections::title(section), ViewStyle::titleFont(), this);
    m_title->setObjectName(QStringLiteral("headerTitle"));

    m_description =
        ViewStyle::makeLabel(SettingsSections::description(section), ViewStyle::subheadlineFont(), this, true, true);
    m_description->setObjectName(QStringLiteral("headerDescription"));
    m_description->setVisible(!m_description->text().isEmpty());

    auto* titleRow = new QHBoxLayout();
    titleRow->setSpacing(10);
    titleRow->addWidget(m_symbol);
    titleRow->addWidget(m_title, 1);

    auto* scrolled = new QWidget();
    auto* scrolledLayout = new QVBoxLayout(scrolled);
    scrolledLayout->setContentsMargins(24, 4, 24, 20);
    scrolledLayout->addWidget(content);
    scrolledLayout->addStretch();

    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(scrolled);

    auto* header = new QVBoxLayout();
    header->setContentsMargins(24, 22, 24, 10);
    header->setSpacing(6);
    header->addLayout(titleRow);
    header->addWidget(m_description);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(scroll, 1);
}

void SettingsSectionPage::drawSymbol() {
    m_symbol->setPixmap(SettingsSymbols::icon(SettingsSections::symbol(m_section))
                            .pixmap(QSize(kSymbolSize, kSymbolSize), devicePixelRatioF()));
}

void SettingsSectionPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        drawSymbol();
    }
}

QString SettingsSectionPage::titleText() const {
    return m_title->text();
}

QString SettingsSectionPage::descriptionText() const {
    return m_description->text();
}

bool SettingsSectionPage::hasDescriptionLine() const {
    return !m_description->isHidden();
}
