// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsAboutSection.h"

#include <QApplication>
#include <QDate>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "BuildConfig.h"
#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsCard.h"
#include "app/ui/settings/SettingsSymbols.h"

namespace {
constexpr int kAppIconSize = 72;
}

QString SettingsAboutSection::versionLine() {
    return tr("Version %1 (%2)")
        .arg(QString::fromLatin1(BuildConfig::kVersion), QString::fromLatin1(BuildConfig::kBuildNumber));
}

QString SettingsAboutSection::creditsLine() {
    return tr("© %1 The Lattica developers").arg(QDate::currentDate().year());
}

SettingsAboutSection::SettingsAboutSection(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("appIcon"));
    const QIcon appIcon = QApplication::windowIcon();
    const QIcon shown =
        appIcon.isNull() ? SettingsSymbols::icon(QStringLiteral("rectangle.on.rectangle.angled")) : appIcon;
    icon->setPixmap(shown.pixmap(QSize(kAppIconSize, kAppIconSize), devicePixelRatioF()));
    icon->setAlignment(Qt::AlignCenter);

    QFont nameFont = ViewStyle::titleFont();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.2);
    QLabel* name = ViewStyle::makeLabel(QStringLiteral("Lattica"), nameFont, this);
    name->setObjectName(QStringLiteral("appName"));
    QLabel* tagline = ViewStyle::makeLabel(tr("Find Lost Windows Instantly"), ViewStyle::headlineFont(), this);
    tagline->setObjectName(QStringLiteral("tagline"));
    QLabel* version = ViewStyle::makeLabel(versionLine(), ViewStyle::subheadlineFont(), this, true);
    version->setObjectName(QStringLiteral("versionLine"));
    QLabel* credits = ViewStyle::makeLabel(creditsLine(), ViewStyle::captionFont(), this, true);
    credits->setObjectName(QStringLiteral("creditsLine"));
    for (QLabel* label : {name, tagline, version, credits}) {
        label->setAlignment(Qt::AlignCenter);
    }

    m_contactSupport = new QPushButton(SettingsSymbols::icon(QStringLiteral("envelope")), tr("Contact Support"), this);
    m_contactSupport->setObjectName(QStringLiteral("contactSupport"));
    connect(m_contactSupport, &QPushButton::clicked, this, [this] { m_controller.contactSupport(); });

    auto* creditsCard = new SettingsCard(tr("Credits"), this);
    creditsCard->setObjectName(QStringLiteral("creditsCard"));
    QHBoxLayout* creditsRow = creditsCard->addRowLayout();
    QLabel* creditsText =
        ViewStyle::makeLabel(tr("Lattica is developed in the open. Source code, issues and release notes live on the "
                                "project page."),
                             ViewStyle::captionFont(), creditsCard, true, true);
    m_gitHub = new QPushButton(SettingsSymbols::icon(QStringLiteral("link")), QStringLiteral("GitHub"), creditsCard);
    m_gitHub->setObjectName(QStringLiteral("gitHubLink"));
    m_gitHub->setFlat(true);
    m_gitHub->setCursor(Qt::PointingHandCursor);
    m_gitHub->setToolTip(QString::fromLatin1(BuildConfig::kProjectUrl));
    // Link-coloured text, taken from whatever palette is current.
    m_gitHub->setStyleSheet(QStringLiteral("QPushButton { color: palette(link); }"));
    creditsRow->addWidget(creditsText, 1);
    creditsRow->addWidget(m_gitHub);
    connect(m_gitHub, &QPushButton::clicked, this, [this] { m_controller.openProjectPage(); });

    auto* supportRow = new QHBoxLayout();
    supportRow->addStretch();
    supportRow->addWidget(m_contactSupport);
    supportRow->addStretch();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(icon);
    layout->addSpacing(4);
    layout->addWidget(name);
    layout->addWidget(tagline);
    layout->addWidget(version);
    layout->addWidget(credits);
    layout->addSpacing(12);
    layout->addLayout(supportRow);
    layout->addSpacing(16);
    layout->addWidget(creditsCard);
}
