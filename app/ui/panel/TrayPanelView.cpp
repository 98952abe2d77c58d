// SPDX-License-Identifier: MIT
#include "app/ui/panel/TrayPanelView.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "app/controller/AppController.h"
#include "app/ui/common/CapabilityText.h"
#include "app/ui/common/SymbolIcons.h"
#include "app/ui/common/SymbolLabel.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/PanelGeometry.h"

namespace {

constexpr int kPanelMargin = 12;
constexpr int kCardSpacing = 8;
constexpr int kGridPadding = 10;

QPushButton* makeButton(const QString& symbol, const QString& title, QWidget* parent) {
    auto* button = new QPushButton(SymbolIcons::icon(symbol), title, parent);
    button->setIconSize(QSize(16, 16));
    button->setAutoDefault(false);
    return button;
}

}  // namespace

TrayPanelView::TrayPanelView(AppController& controller, QWidget* parent) : QWidget(parent), m_controller(controller) {
    setObjectName(QStringLiteral("trayPanel"));
    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(kPanelMargin, kPanelMargin, kPanelMargin, kPanelMargin);
    root->setSpacing(8);

    auto* header = new QVBoxLayout();
    header->setSpacing(2);
    header->addWidget(ViewStyle::makeLabel(tr("Lattica"), ViewStyle::titleFont(), this));
    header->addWidget(ViewStyle::makeLabel(tr("Preview displays and move windows from one display to another."),
                                           ViewStyle::captionFont(), this, true, true));
    root->addLayout(header);

    auto* body = new QWidget(this);
    body->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    m_pages = new QStackedLayout(body);
    m_blockedPage = makeBlockedPage();
    m_loadingPage =
        makeMessagePage(tr("Loading screen previews..."), tr("Preview generation runs in the background."), true);
    m_loadingPage->setObjectName(QStringLiteral("loadingPage"));
    m_emptyPage = makeMessagePage(tr("No displays detected"), tr("Connect a display and try again."), false);
    m_emptyPage->setObjectName(QStringLiteral("noDisplaysPage"));
    m_gridPage = makeGridPage();
    for (QWidget* page : {m_blockedPage, m_loadingPage, m_emptyPage, m_gridPage}) {
        m_pages->addWidget(page);
    }
    root->addWidget(body, 1);
    root->addWidget(makeFooter());

    connect(&m_controller, &AppController::permissionStateChanged, this, &TrayPanelView::render);
    connect(&m_controller, &AppController::displaysChanged, this, &TrayPanelView::render);
    connect(&m_controller, &AppController::isLoadingPreviewsChanged, this, &TrayPanelView::render);
    connect(this, &TrayPanelView::cardsPainted, &m_controller, &AppController::previewsViewPainted);
    render();
}

QWidget* TrayPanelView::makeBlockedPage() {
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("permissionsRequiredPage"));
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 4, 0, 0);
    layout->setSpacing(6);
    QFont titleFont = ViewStyle::subheadlineFont();
    titleFont.setWeight(QFont::DemiBold);
    layout->addWidget(ViewStyle::makeLabel(tr("Permissions Required"), titleFont, page));
    layout->addWidget(ViewStyle::makeLabel(
        tr("Lattica needs screen capture and window control to view screen previews and move windows."),
        ViewStyle::captionFont(), page, true, true));

    auto* badges = new QHBoxLayout();
    badges->setSpacing(6);
    m_screenRecordingBadge = makePermissionBadge(QStringLiteral("screenRecordingBadge"), page);
    m_accessibilityBadge = makePermissionBadge(QStringLiteral("accessibilityBadge"), page);
    badges->addWidget(m_screenRecordingBadge);
    badges->addWidget(m_accessibilityBadge);
    badges->addStretch(1);
    layout->addLayout(badges);

    auto* buttons = new QHBoxLayout();
    buttons->setSpacing(6);
    QPushButton* screenRecording = makeButton(QStringLiteral("display"), tr("Check Screen Capture"), page);
    screenRecording->setObjectName(QStringLiteral("requestScreenRecordingButton"));
    connect(screenRecording, &QPushButton::clicked, this, [this] { m_controller.requestScreenRecordingPermission(); });
    QPushButton* accessibility = makeButton(QStringLiteral("hand.raised"), tr("Check Window Control"), page);
    accessibility->setObjectName(QStringLiteral("requestAccessibilityButton"));
    connect(accessibility, &QPushButton::clicked, this, [this] { m_controller.requestAccessibilityPermission(); });
    buttons->addWidget(screenRecording);
    buttons->addWidget(accessibility);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addStretch(1);
    return page;
}

QLabel* TrayPanelView::makePermissionBadge(const QString& objectName, QWidget* parent) {
    auto* badge = new QLabel(parent);
    badge->setObjectName(objectName);
    QFont font = ViewStyle::captionFont();
    font.setWeight(QFont::Medium);
    badge->setFont(font);
    return badge;
}

void TrayPanelView::updatePermissionBadge(QLabel* badge, const QString& title, const CapabilityCheck& check) {
    const QColor tint = CapabilityText::grantColor(check);
    badge->setText(title + QStringLiteral(": ") + CapabilityText::grantText(check));
    // The panel is small: why a capability is limited or missing is told on hovering its badge.
    badge->setToolTip(check.explanation);
    const int radius = (badge->fontMetrics().height() + 12) / 2;
    badge->setStyleSheet(QStringLiteral("QLabel { color: %1; background-color: rgba(%2, %3, %4, 0.12); "
                                        "border-radius: %5px; padding: 6px 10px; }")
                             .arg(tint.name())
                             .arg(tint.red())
                             .arg(tint.green())
                             .arg(tint.blue())
                             .arg(radius));
}

QWidget* TrayPanelView::makeMessagePage(const QString& title, const QString& caption, bool withProgress) {
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setSpacing(6);
    layout->addStretch(1);
    if (withProgress) {
        auto* progress = new QProgressBar(page);
        progress->setRange(0, 0);
        progress->setTextVisible(false);
        progress->setFixedSize(120, 8);
        layout->addWidget(progress, 0, Qt::AlignHCenter);
    }
    QFont titleFont = ViewStyle::bodyFont();
    titleFont.setWeight(QFont::DemiBold);
    layout->addWidget(ViewStyle::makeLabel(title, titleFont, page), 0, Qt::AlignHCenter);
    layout->addWidget(ViewStyle::makeLabel(caption, ViewStyle::captionFont(), page, true), 0, Qt::AlignHCenter);
    layout->addStretch(1);
    return page;
}

QWidget* TrayPanelView::makeGridPage() {
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("displaysPage"));
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);

    m_grid = new QWidget(page);
    m_grid->setObjectName(QStringLiteral("displayGrid"));
    m_grid->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_cardRow = new QHBoxLayout(m_grid);
    m_cardRow->setContentsMargins(0, kGridPadding, 0, kGridPadding);
    m_cardRow->setSpacing(kCardSpacing);
    layout->addWidget(m_grid, 1);

    m_singleDisplayHint = new QWidget(page);
    m_singleDisplayHint->setObjectName(QStringLiteral("singleDisplayHint"));
    auto* hint = new QHBoxLayout(m_singleDisplayHint);
    hint->setContentsMargins(0, 0, 0, 0);
    hint->setSpacing(6);
    hint->addWidget(new SymbolLabel(QStringLiteral("display"), 14, m_singleDisplayHint), 0, Qt::AlignTop);
    hint->addWidget(
        ViewStyle::makeLabel(tr("Only one display is connected. Connect another display to enable window moves."),
                             ViewStyle::captionFont(), m_singleDisplayHint, true, true),
        1);
    layout->addWidget(m_singleDisplayHint);
    return page;
}

QWidget* TrayPanelView::makeFooter() {
    auto* footer = new QWidget(this);
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    QPushButton* settings = makeButton(QStringLiteral("gearshape"), tr("Settings"), footer);
    settings->setObjectName(QStringLiteral("settingsButton"));
    connect(settings, &QPushButton::clicked, this, [this] {
        Q_EMIT dismissRequested();
        Q_EMIT settingsRequested();
    });
    QPushButton* quit = makeButton(QStringLiteral("power"), tr("Quit"), footer);
    quit->setObjectName(QStringLiteral("quitButton"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setToolTip(tr("Quit (%1)").arg(quit->shortcut().toString(QKeySequence::NativeText)));
    connect(quit, &QPushButton::clicked, this, [] { QCoreApplication::quit(); });
    row->addWidget(settings);
    row->addStretch(1);
    row->addWidget(quit);
    m_settingsButton = settings;
    m_quitButton = quit;
    return footer;
}

int TrayPanelView::gridWidth() const {
    return width() - 2 * kPanelMargin;
}

TrayPanelView::State TrayPanelView::stateFor(const PermissionState& permissions, bool displaysEmpty, bool isLoading) {
    if (!permissions.screenRecordingGranted || !permissions.accessibilityGranted) {
        return State::PermissionsRequired;
    }
    if (displaysEmpty) {
        return isLoading ? State::Loading : State::NoDisplays;
    }
    return State::Displays;
}

void TrayPanelView::render() {
    const PermissionState permissions = m_controller.permissionState();
    updatePermissionBadge(m_screenRecordingBadge, tr("Screen Capture"), permissions.screenCapture);
    updatePermissionBadge(m_accessibilityBadge, tr("Window Control"), permissions.windowControl);

    m_state = stateFor(permissions, m_controller.displays().isEmpty(), m_controller.isLoadingPreviews());
    switch (m_state) {
        case State::PermissionsRequired:
            m_pages->setCurrentWidget(m_blockedPage);
            break;
        case State::Loading:
            m_pages->setCurrentWidget(m_loadingPage);
            break;
        case State::NoDisplays:
            m_pages->setCurrentWidget(m_emptyPage);
            break;
        case State::Displays:
            m_pages->setCurrentWidget(m_gridPage);
            break;
    }
    updateCards();
}

void TrayPanelView::updateCards() {
    // No cards while the permission request is shown.
    const QList<DisplaySnapshot> displays =
        m_state == State::Displays ? m_controller.displays() : QList<DisplaySnapshot>();
    useCards(displays.size());
    m_singleDisplayHint->setVisible(displays.size() == 1);
    layoutCards();
}

void TrayPanelView::useCards(qsizetype count) {
    if (m_cards.size() == count) {
        return;
    }
    // Cards are hidden, never deleted: one of their buttons may be what started this change, and the next
    // change back needs them again.
    while (m_cards.size() > count) {
        DisplayCardView* card = m_cards.takeLast();
        card->hide();
        m_spareCards.prepend(card);
    }
    if (m_cardRow->count() == 0) {
        m_cardRow->addStretch(1);
        m_cardRow->addStretch(1);
    }
    while (m_cards.size() < count) {
        DisplayCardView* card = nullptr;
        if (!m_spareCards.isEmpty()) {
            card = m_spareCards.takeFirst();
            card->show();
        } else {
            card = new DisplayCardView(m_controller, m_grid);
            connect(card, &DisplayCardView::painted, this,
                    [this, card](bool withPreview) { notePainted(card, withPreview); });
            // Before the closing stretch, after every card made before.
            m_cardRow->insertWidget(m_cardRow->count() - 1, card, 0, Qt::AlignTop);
        }
        m_cards.append(card);
    }
    m_paintedCards.clear();
    m_cardsWithPreview.clear();
}

void TrayPanelView::prepare(const QList<DisplaySnapshot>& displays) {
    const State shown = m_state;
    m_pages->setCurrentWidget(m_gridPage);
    useCards(displays.size());
    m_singleDisplayHint->setVisible(displays.size() == 1);
    layoutCards(displays, true);
    // Painting once lays everything out and fills the caches of fonts, icons and styles.
    window()->grab();
    m_state = shown;
    render();
}

void TrayPanelView::layoutCards() {
    layoutCards(m_controller.displays(), m_controller.isLoadingPreviews());
}

void TrayPanelView::layoutCards(const QList<DisplaySnapshot>& displays, bool isLoading) {
    if (m_cards.isEmpty() || m_cards.size() != displays.size()) {
        return;
    }
    const double cardWidth = PanelGeometry::cardWidth(gridWidth(), static_cast<int>(m_cards.size()));
    const double previewHeight = PanelGeometry::previewHeight(cardWidth);
    for (qsizetype i = 0; i < m_cards.size(); ++i) {
        const DisplaySnapshot& display = displays[i];
        const bool loading = isLoading && !display.previewImage.has_value();
        m_cards[i]->setFixedWidth(qRound(cardWidth));
        m_cards[i]->setDisplay(display, displays, previewHeight, loading);
    }
    updateKeyboardOrder();
}

QList<QWidget*> TrayPanelView::keyboardOrder() const {
    QList<QWidget*> order;
    // Walks the focus chain, which updateKeyboardOrder keeps in reading order.
    for (QWidget* widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain()) {
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisibleTo(this) && widget->isEnabled()) {
            order.append(widget);
        }
    }
    return order;
}

void TrayPanelView::updateKeyboardOrder() {
    // Cards are made after the footer, so by default Tab would reach Quit before the first card.
    QList<QWidget*> chain;
    for (const DisplayCardView* card : std::as_const(m_cards)) {
        chain.append(card->keyboardControls());
    }
    for (QWidget* control : std::as_const(chain)) {
        control->installEventFilter(this);
    }
    chain.append(m_settingsButton);
    chain.append(m_quitButton);
    for (qsizetype i = 1; i < chain.size(); ++i) {
        QWidget::setTabOrder(chain[i - 1], chain[i]);
    }
    // A rebuilt card may have taken the focused button with it.
    if (isVisible() && (focusWidget() == nullptr || !focusWidget()->isVisibleTo(this))) {
        focusFirstControl();
    }
}

void TrayPanelView::focusFirstControl() {
    const QList<QWidget*> order = keyboardOrder();
    if (!order.isEmpty()) {
        order.first()->setFocus(Qt::PopupFocusReason);
    }
}

bool TrayPanelView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        auto* control = qobject_cast<QWidget*>(watched);
        for (DisplayCardView* card : std::as_const(m_cards)) {
            if (control != nullptr && card->isAncestorOf(control) &&
                (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
                return handleCardKey(card, control, key->key());
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

bool TrayPanelView::handleCardKey(DisplayCardView* card, QWidget* control, int key) {
    const qsizetype cardIndex = m_cards.indexOf(card);
    const QList<QWidget*> controls = card->keyboardControls();
    const qsizetype position = controls.indexOf(control);
    if (key >= Qt::Key_1 && key <= Qt::Key_9) {
        return card->moveToDisplayIndex(key - Qt::Key_0);
    }
    QWidget* next = nullptr;
    switch (key) {
        case Qt::Key_Up:
            next = position > 0 ? controls[position - 1] : nullptr;
            break;
        case Qt::Key_Down:
            next = position + 1 < controls.size() ? controls[position + 1] : nullptr;
            break;
        case Qt::Key_Left:
        case Qt::Key_Right: {
            // The control at the same place in the neighbouring card, or its last one.
            const qsizetype neighbour = cardIndex + (key == Qt::Key_Left ? -1 : 1);
            if (neighbour >= 0 && neighbour < m_cards.size()) {
                const QList<QWidget*> theirs = m_cards[neighbour]->keyboardControls();
                next = theirs.value(qMin(position, theirs.size() - 1));
            }
            break;
        }
        default:
            return false;
    }
    if (next != nullptr) {
        next->setFocus(Qt::TabFocusReason);
    }
    // Arrows never leave the cards, so they are used up even at an edge.
    return true;
}

void TrayPanelView::notePainted(DisplayCardView* card, bool withPreview) {
    if (!isVisible()) {
        return;
    }
    m_paintedCards.insert(card);
    if (withPreview) {
        m_cardsWithPreview.insert(card);
    }
    const auto everyCard = [this](const QSet<DisplayCardView*>& painted) {
        return std::all_of(m_cards.cbegin(), m_cards.cend(),
                           [&painted](DisplayCardView* each) { return painted.contains(each); });
    };
    if (!m_cardsPaintedTold && everyCard(m_paintedCards)) {
        m_cardsPaintedTold = true;
        Q_EMIT cardsPainted();
    }
    if (!m_previewsPaintedTold && everyCard(m_cardsWithPreview)) {
        m_previewsPaintedTold = true;
        Q_EMIT previewsPainted();
    }
}

void TrayPanelView::showEvent(QShowEvent* event) {
    m_paintedCards.clear();
    m_cardsWithPreview.clear();
    m_cardsPaintedTold = false;
    m_previewsPaintedTold = false;
    QWidget::showEvent(event);
    // Told before the window is mapped (the toolkit maps it after this event). Only a popup stands where
    // it was put; a window manager may still move an ordinary window, so no area is known for one.
    m_controller.previewsViewShowing(window()->windowType() == Qt::Popup ? displaySpaceArea() : QRectF());
    // Opened from the tray by keyboard or mouse, the panel is ready for the keyboard at once.
    focusFirstControl();
}

QRectF TrayPanelView::displaySpaceArea() const {
    const QRect frame = window()->frameGeometry();
    const QScreen* screen = QGuiApplication::screenAt(frame.center());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (screen == nullptr || primary == nullptr) {
        return {};
    }
    return PanelGeometry::displaySpaceArea(frame, screen->geometry(), screen->devicePixelRatio(),
                                           primary->geometry().topLeft());
}

void TrayPanelView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutCards();
}
