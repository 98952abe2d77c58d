// SPDX-License-Identifier: MIT
#include "app/ui/guide/PermissionGuideView.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/permissions/PermissionService.h"
#include "app/ui/common/CapabilityText.h"
#include "app/ui/common/SymbolIcons.h"
#include "app/ui/common/SymbolLabel.h"
#include "app/ui/common/ViewStyle.h"

namespace {

constexpr int kContentWidth = 640;
constexpr int kMinimumHeight = 480;

SymbolLabel* iconLabel(const QString& symbol, int size, QWidget* parent) {
    return new SymbolLabel(symbol, size, parent);
}

QPushButton* makeButton(const QString& symbol, const QString& title, QWidget* parent) {
    auto* button = new QPushButton(SymbolIcons::icon(symbol), title, parent);
    button->setAutoDefault(false);
    return button;
}

// A button drawn in the accent colour, for the action the row is about.
void makeProminent(QPushButton& button, const QString& symbol) {
    button.setIcon(SymbolIcons::iconOnAccent(symbol));
    QPalette palette = button.palette();
    palette.setColor(QPalette::Button, palette.color(QPalette::Highlight));
    palette.setColor(QPalette::ButtonText, palette.color(QPalette::HighlightedText));
    button.setPalette(palette);
}

}  // namespace

PermissionGuideView::PermissionGuideView(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    setObjectName(QStringLiteral("permissionGuide"));
    setFixedWidth(kContentWidth);
    setMinimumHeight(kMinimumHeight);
    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(24, 22, 24, 18);
    root->setSpacing(16);

    auto* header = new QHBoxLayout();
    header->setSpacing(14);
    header->addWidget(iconLabel(QStringLiteral("lock.shield.fill"), 36, this), 0, Qt::AlignTop);
    auto* headerText = new QVBoxLayout();
    headerText->setSpacing(4);
    headerText->addWidget(ViewStyle::makeLabel(tr("Enable Required Permissions"), ViewStyle::titleFont(), this));
    headerText->addWidget(ViewStyle::makeLabel(
        tr("Lattica needs screen capture for previews and window control to move windows between displays."),
        ViewStyle::bodyFont(), this, true, true));
    header->addLayout(headerText, 1);
    root->addLayout(header);

    m_stepsLayout = new QVBoxLayout();
    m_stepsLayout->setSpacing(10);
    root->addLayout(m_stepsLayout);

    auto* note = new QHBoxLayout();
    note->setSpacing(8);
    note->addWidget(iconLabel(QStringLiteral("info.circle"), 16, this), 0, Qt::AlignTop);
    note->addWidget(
        ViewStyle::makeLabel(tr("When your session changes, check again: Lattica picks it up without a restart."),
                             ViewStyle::captionFont(), this, true, true),
        1);
    root->addLayout(note);

    m_statusLabel = ViewStyle::makeLabel(QString(), ViewStyle::captionFont(), this, false, true);
    m_statusLabel->setObjectName(QStringLiteral("statusMessage"));
    root->addWidget(m_statusLabel);
    root->addStretch(1);

    auto* footer = new QHBoxLayout();
    footer->setSpacing(8);
    QPushButton* recheck = makeButton(QStringLiteral("arrow.clockwise"), tr("Re-check Permissions"), this);
    recheck->setObjectName(QStringLiteral("recheckButton"));
    connect(recheck, &QPushButton::clicked, this, [this] { m_controller.refreshPermissions(); });
    QPushButton* continueButton = makeButton(QStringLiteral("checkmark.circle.fill"), tr("Continue"), this);
    continueButton->setObjectName(QStringLiteral("continueButton"));
    connect(continueButton, &QPushButton::clicked, this, &PermissionGuideView::continueIfGranted);
    footer->addStretch(1);
    footer->addWidget(recheck);
    footer->addWidget(continueButton);
    root->addLayout(footer);

    auto showStatus = [this] {
        m_statusLabel->setText(m_controller.statusMessage());
        m_statusLabel->setVisible(!m_controller.statusMessage().isEmpty());
    };
    connect(&m_controller, &AppController::permissionStateChanged, this, &PermissionGuideView::rebuildSteps);
    connect(&m_controller, &AppController::statusMessageChanged, this, showStatus);
    rebuildSteps();
    showStatus();
}

QWidget* PermissionGuideView::guideStep(const QString& title, qint64 stepNumber, const QString& stepSymbol,
                                        const CapabilityCheck& check, const QString& requestTitle,
                                        const QString& requestSymbol, const QString& openSettingsTitle,
                                        const std::function<void()>& requestAction,
                                        const std::function<void()>& openSettingsAction) {
    auto* row = new QFrame(this);
    row->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(12);

    auto* number = new QLabel(QString::asprintf("%lld", static_cast<long long>(stepNumber)), row);
    number->setObjectName(QStringLiteral("stepNumber"));
    number->setAlignment(Qt::AlignCenter);
    number->setFixedSize(26, 26);
    QFont numberFont = ViewStyle::headlineFont();
    number->setFont(numberFont);
    number->setForegroundRole(QPalette::HighlightedText);
    number->setStyleSheet(QStringLiteral("QLabel { background-color: palette(highlight); border-radius: 13px; }"));
    layout->addWidget(number, 0, Qt::AlignVCenter);
    layout->addWidget(iconLabel(stepSymbol, 22, row), 0, Qt::AlignVCenter);

    auto* text = new QVBoxLayout();
    text->setSpacing(2);
    text->addWidget(ViewStyle::makeLabel(title, ViewStyle::headlineFont(), row));
    auto* state = new QHBoxLayout();
    state->setSpacing(4);
    const bool granted = check.availability == Availability::Available;
    state->addWidget(iconLabel(
        granted ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("exclamationmark.triangle"), 14, row));
    QLabel* stateLabel = ViewStyle::makeLabel(CapabilityText::grantText(check), ViewStyle::captionFont(), row);
    stateLabel->setObjectName(QStringLiteral("grantState"));
    QPalette statePalette = stateLabel->palette();
    statePalette.setColor(QPalette::WindowText, CapabilityText::grantColor(check));
    stateLabel->setPalette(statePalette);
    state->addWidget(stateLabel);
    state->addStretch(1);
    text->addLayout(state);
    // Why the capability is limited or missing, and what helps.
    QLabel* explanation = ViewStyle::makeLabel(check.explanation, ViewStyle::captionFont(), row, true, true);
    explanation->setObjectName(QStringLiteral("explanation"));
    explanation->setVisible(!check.explanation.isEmpty());
    text->addWidget(explanation);
    layout->addLayout(text, 1);

    QPushButton* request = makeButton(requestSymbol, requestTitle, row);
    request->setObjectName(QStringLiteral("requestButton"));
    makeProminent(*request, requestSymbol);
    connect(request, &QPushButton::clicked, this, requestAction);
    QPushButton* openSettings = makeButton(QStringLiteral("gearshape"), openSettingsTitle, row);
    openSettings->setObjectName(QStringLiteral("openSettingsButton"));
    openSettings->setFlat(true);
    connect(openSettings, &QPushButton::clicked, this, openSettingsAction);
    auto* buttons = new QVBoxLayout();
    buttons->setSpacing(4);
    buttons->addWidget(request);
    buttons->addWidget(openSettings);
    layout->addLayout(buttons);
    return row;
}

void PermissionGuideView::rebuildSteps() {
    while (QLayoutItem* item = m_stepsLayout->takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            // Later: the row's own button may be what changed the state.
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
    const PermissionState permissions = m_controller.permissionState();
    QWidget* screenRecording = guideStep(
        tr("Screen Capture"), 1, QStringLiteral("display"), permissions.screenCapture, tr("Check Screen Capture"),
        QStringLiteral("display"), tr("Open Help"), [this] { m_controller.requestScreenRecordingPermission(); },
        [] { PermissionService::openHelp(Capability::ScreenCapture); });
    screenRecording->setObjectName(QStringLiteral("screenRecordingStep"));
    QWidget* accessibility = guideStep(
        tr("Window Control"), 2, QStringLiteral("hand.raised.fill"), permissions.windowControl,
        tr("Check Window Control"), QStringLiteral("hand.raised.fill"), tr("Open Help"),
        [this] { m_controller.requestAccessibilityPermission(); },
        [] { PermissionService::openHelp(Capability::WindowControl); });
    accessibility->setObjectName(QStringLiteral("accessibilityStep"));
    m_stepsLayout->addWidget(screenRecording);
    m_stepsLayout->addWidget(accessibility);
}

void PermissionGuideView::continueIfGranted() {
    m_controller.refreshPermissions();
    if (!m_controller.permissionState().bothGranted()) {
        return;
    }
    window()->close();
    m_controller.refreshForMenuOpen();
}
