#include "app/views/SettingsSectionPage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "app/views/SymbolIcons.h"
#include "app/views/ViewStyle.h"

namespace {
constexpr int kSymbolSize = 26;
}

SettingsSectionPage::SettingsSectionPage(SettingsSection section, QWidget* content, QWidget* parent)
    : QWidget(parent), m_section(section), m_content(content) {
    setObjectName(QStringLiteral("page.") + SettingsSections::rawValue(section));

    auto* symbol = new QLabel(this);
    symbol->setObjectName(QStringLiteral("headerSymbol"));
    symbol->setPixmap(SymbolIcons::icon(SettingsSections::symbol(section))
                          .pixmap(QSize(kSymbolSize, kSymbolSize), devicePixelRatioF()));
    symbol->setFixedSize(kSymbolSize + 4, kSymbolSize + 4);
    symbol->setAlignment(Qt::AlignCenter);

    m_title = ViewStyle::makeLabel(SettingsSections::title(section), ViewStyle::titleFont(), this);
    m_title->setObjectName(QStringLiteral("headerTitle"));

    m_description =
        ViewStyle::makeLabel(SettingsSections::description(section), ViewStyle::subheadlineFont(), this, true, true);
    m_description->setObjectName(QStringLiteral("headerDescription"));
    m_description->setVisible(!m_description->text().isEmpty());

    auto* titleRow = new QHBoxLayout();
    titleRow->setSpacing(10);
    titleRow->addWidget(symbol);
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

QString SettingsSectionPage::titleText() const {
    return m_title->text();
}

QString SettingsSectionPage::descriptionText() const {
    return m_description->text();
}

bool SettingsSectionPage::hasDescriptionLine() const {
    return !m_description->isHidden();
}
