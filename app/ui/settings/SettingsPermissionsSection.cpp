// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsPermissionsSection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/permissions/PermissionService.h"
#include "app/ui/common/CapabilityText.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsCard.h"

namespace {

QLabel* makeBadge(QWidget* parent, const QString& objectName) {
    auto* badge = new QLabel(parent);
    badge->setObjectName(objectName);
    badge->setAlignment(Qt::AlignCenter);
    badge->setMinimumWidth(64);
    QFont font = ViewStyle::captionFont();
    font.setWeight(QFont::DemiBold);
    badge->setFont(font);
    return badge;
}

QLabel* makeExplanation(QWidget* parent, const QString& objectName) {
    QLabel* explanation = ViewStyle::makeLabel(QString(), ViewStyle::captionFont(), parent, false, true);
    explanation->setObjectName(objectName);
    return explanation;
}

void showCheck(QLabel* badge, QLabel* explanation, const CapabilityCheck& check) {
    badge->setText(CapabilityText::grantText(check));
    const QColor color = CapabilityText::grantColor(check);
    badge->setStyleSheet(QStringLiteral("QLabel { color: %1; border: 1px solid %1; border-radius: 8px; "
                                        "padding: 1px 8px; }")
                             .arg(color.name()));
    explanation->setText(check.explanation);
    explanation->setVisible(!check.explanation.isEmpty());
}

// One capability: its name, purpose and explanation on the left, badge and buttons on the right.
QWidget* makePermissionRow(const QString& title, const QString& purpose, QLabel* badge, QLabel* explanation,
                           QPushButton* request, QPushButton* settings) {
    auto* row = new QWidget();
    auto* texts = new QVBoxLayout();
    texts->setSpacing(2);
    texts->addWidget(ViewStyle::makeLabel(title, ViewStyle::headlineFont(), row));
    texts->addWidget(ViewStyle::makeLabel(purpose, ViewStyle::captionFont(), row, true, true));
    explanation->setParent(row);
    texts->addWidget(explanation);

    auto* top = new QHBoxLayout();
    top->addLayout(texts, 1);
    top->addWidget(badge, 0, Qt::AlignTop);

    auto* buttons = new QHBoxLayout();
    buttons->addStretch();
    buttons->addWidget(request);
    buttons->addWidget(settings);

    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 4, 0, 4);
    layout->setSpacing(8);
    layout->addLayout(top);
    layout->addLayout(buttons);
    return row;
}

}  // namespace

SettingsPermissionsSection::SettingsPermissionsSection(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    m_screenRecordingBadge = makeBadge(this, QStringLiteral("badge.screenRecording"));
    m_accessibilityBadge = makeBadge(this, QStringLiteral("badge.accessibility"));
    m_screenRecordingExplanation = makeExplanation(this, QStringLiteral("explanation.screenRecording"));
    m_accessibilityExplanation = makeExplanation(this, QStringLiteral("explanation.accessibility"));

    auto* requestScreenRecording = new QPushButton(tr("Request Access"));
    requestScreenRecording->setObjectName(QStringLiteral("request.screenRecording"));
    auto* openScreenRecording = new QPushButton(tr("Open Help"));
    openScreenRecording->setObjectName(QStringLiteral("settings.screenRecording"));
    auto* requestAccessibility = new QPushButton(tr("Request Access"));
    requestAccessibility->setObjectName(QStringLiteral("request.accessibility"));
    auto* openAccessibility = new QPushButton(tr("Open Help"));
    openAccessibility->setObjectName(QStringLiteral("settings.accessibility"));

    connect(requestScreenRecording, &QPushButton::clicked, this,
            [this] { m_controller.requestScreenRecordingPermission(); });
    connect(openScreenRecording, &QPushButton::clicked, this,
            [] { PermissionService::openHelp(Capability::ScreenCapture); });
    connect(requestAccessibility, &QPushButton::clicked, this,
            [this] { m_controller.requestAccessibilityPermission(); });
    connect(openAccessibility, &QPushButton::clicked, this,
            [] { PermissionService::openHelp(Capability::WindowControl); });

    auto* card = new SettingsCard(QString(), this);
    card->addRow(makePermissionRow(
        tr("Screen Capture"), tr("Needed to show live previews of your displays in the panel."), m_screenRecordingBadge,
        m_screenRecordingExplanation, requestScreenRecording, openScreenRecording));
    card->addRow(
        makePermissionRow(tr("Window Control"), tr("Needed to find and move the windows of other applications."),
                          m_accessibilityBadge, m_accessibilityExplanation, requestAccessibility, openAccessibility));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(card);

    connect(&m_controller, &AppController::permissionStateChanged, this, [this] { updateBadges(); });
    updateBadges();
}

void SettingsPermissionsSection::updateBadges() {
    const PermissionState state = m_controller.permissionState();
    showCheck(m_screenRecordingBadge, m_screenRecordingExplanation, state.screenCapture);
    showCheck(m_accessibilityBadge, m_accessibilityExplanation, state.windowControl);
}
