// SPDX-License-Identifier: MIT
#include "app/ui/panel/DisplayCardView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/ui/common/SymbolIcons.h"
#include "app/ui/common/SymbolLabel.h"
#include "app/ui/common/ViewStyle.h"

namespace {

// The text broken into lines at spaces so that each line is at most width wide, for a button, which cannot
// wrap by itself; a word wider than that keeps a line of its own.
QString wrappedToWidth(const QString& text, const QFontMetrics& metrics, int width) {
    QStringList lines;
    QString line;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (!line.isEmpty() && metrics.horizontalAdvance(longer) > width) {
            lines.append(line);
            line = word;
        } else {
            line = longer;
        }
    }
    lines.append(line);
    return lines.join(QLatin1Char('\n'));
}

constexpr int kPadding = 8;
constexpr int kPreviewCornerRadius = 6;
constexpr int kCardCornerRadius = 10;
constexpr int kTargetIconSize = 18;
constexpr int kBadgeInset = 6;
// The symbol set has numbered circles up to this number.
constexpr int kHighestNumberedSymbol = 50;

QString targetsKey(const QList<DisplaySnapshot>& targets) {
    QStringList parts;
    for (const DisplaySnapshot& target : targets) {
        parts.append(QStringLiteral("%1:%2:%3").arg(target.id).arg(target.index).arg(target.name));
    }
    return parts.join(QLatin1Char('|'));
}

void clearLayout(QLayout* layout) {
    while (QLayoutItem* item = layout->takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            // Later, because the widget may be the button whose click is being handled.
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
}

}  // namespace

DisplayCardView::DisplayCardView(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    setObjectName(QStringLiteral("displayCard"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
    layout->setSpacing(6);

    auto* header = new QHBoxLayout();
    header->setSpacing(6);
    m_numberIcon = new SymbolLabel(screenNumberSymbol(1), kTargetIconSize, this);
    m_numberIcon->setObjectName(QStringLiteral("numberSymbol"));
    m_nameLabel = ViewStyle::makeLabel(QString(), ViewStyle::headlineFont(), this);
    m_nameLabel->setObjectName(QStringLiteral("displayName"));
    m_nameLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    header->addWidget(m_numberIcon);
    header->addWidget(m_nameLabel, 1);
    layout->addLayout(header);

    m_previewArea = new QWidget(this);
    m_previewArea->setObjectName(QStringLiteral("previewArea"));
    m_previewArea->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_previewArea->installEventFilter(this);
    layout->addWidget(m_previewArea);

    m_loadingOverlay = new QWidget(m_previewArea);
    m_loadingOverlay->setObjectName(QStringLiteral("loadingPreview"));
    auto* loadingLayout = new QVBoxLayout(m_loadingOverlay);
    loadingLayout->setContentsMargins(0, 0, 0, 0);
    loadingLayout->setSpacing(4);
    auto* spinner = new QProgressBar(m_loadingOverlay);
    spinner->setRange(0, 0);
    spinner->setTextVisible(false);
    spinner->setFixedSize(64, 6);
    loadingLayout->addWidget(spinner, 0, Qt::AlignHCenter);
    loadingLayout->addWidget(
        ViewStyle::makeLabel(tr("Loading preview..."), ViewStyle::captionFont(), m_loadingOverlay, true), 0,
        Qt::AlignHCenter);

    m_unavailableLabel = ViewStyle::makeLabel(tr("Preview unavailable"), ViewStyle::captionFont(), m_previewArea, true);
    m_unavailableLabel->setObjectName(QStringLiteral("previewUnavailable"));

    m_indexBadge = new QLabel(m_previewArea);
    m_indexBadge->setObjectName(QStringLiteral("indexBadge"));
    QFont badgeFont = ViewStyle::subheadlineFont();
    badgeFont.setWeight(QFont::DemiBold);
    m_indexBadge->setFont(badgeFont);
    m_indexBadge->setStyleSheet(
        QStringLiteral("QLabel { color: white; background-color: rgba(0, 0, 0, 191); border-radius: 5px; "
                       "padding: 2px 6px; }"));

    m_windowCountLabel = ViewStyle::makeLabel(QString(), ViewStyle::captionFont(), this, true);
    m_windowCountLabel->setObjectName(QStringLiteral("windowCount"));
    layout->addWidget(m_windowCountLabel);

    m_moveControls = new QWidget(this);
    m_moveControlsLayout = new QVBoxLayout(m_moveControls);
    m_moveControlsLayout->setContentsMargins(0, 0, 0, 0);
    m_moveControlsLayout->setSpacing(4);
    layout->addWidget(m_moveControls);

    m_appMenuButton = new QToolButton(this);
    m_appMenuButton->setObjectName(QStringLiteral("appMenuButton"));
    m_appMenuButton->setText(tr("Move app windows..."));
    m_appMenuButton->setIcon(SymbolIcons::icon(QStringLiteral("list.bullet.rectangle")));
    m_appMenuButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_appMenuButton->setPopupMode(QToolButton::InstantPopup);
    m_appMenuButton->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    // Reachable with Tab like the move buttons; its menu opens with Space or Enter.
    m_appMenuButton->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(m_appMenuButton);
    layout->addStretch(1);
}

QString DisplayCardView::screenNumberSymbol(int index) {
    if (index > kHighestNumberedSymbol) {
        return QStringLiteral("number.circle.fill");
    }
    return QString::number(index) + QStringLiteral(".circle.fill");
}

QString DisplayCardView::appMenuReloadKey(bool isLoadingPreview, const QList<DisplayAppGroup>& groups) {
    QStringList parts;
    parts.reserve(groups.size());
    for (const DisplayAppGroup& group : groups) {
        parts.append(QString::number(group.pid) + QLatin1Char(':') + QString::number(group.windowCount));
    }
    return (isLoadingPreview ? QStringLiteral("true") : QStringLiteral("false")) + QLatin1Char('-') +
           parts.join(QLatin1Char('|'));
}

void DisplayCardView::setDisplay(const DisplaySnapshot& display, const QList<DisplaySnapshot>& allDisplays,
                                 double previewHeight, bool isLoadingPreview) {
    m_display = display;
    m_allDisplays = allDisplays;
    m_previewHeight = previewHeight;
    m_isLoadingPreview = isLoadingPreview;

    m_previewArea->setFixedHeight(qRound(previewHeight));
    updateHeader();
    updatePreviewState();
    updateScaledPreview();
    updateWindowCount();
    rebuildMoveControls();
    rebuildAppMenu();
    update();
}

QList<DisplaySnapshot> DisplayCardView::targets() const {
    QList<DisplaySnapshot> result;
    for (const DisplaySnapshot& candidate : m_allDisplays) {
        if (candidate.id != m_display.id) {
            result.append(candidate);
        }
    }
    return result;
}

void DisplayCardView::updateHeader() {
    // What a screen reader says for the card and for controls whose text is only a display's name.
    setAccessibleName(tr("Display %1, %2").arg(m_display.index).arg(m_display.name));
    m_previewArea->setAccessibleName(tr("Preview of %1").arg(m_display.name));
    m_appMenuButton->setAccessibleName(tr("Move app windows from %1").arg(m_display.name));
    m_numberIcon->setSymbol(screenNumberSymbol(m_display.index));
    m_nameLabel->setToolTip(m_display.name);
    m_indexBadge->setText(QString::number(m_display.index));
    m_indexBadge->adjustSize();
    elideTexts();
}

void DisplayCardView::updatePreviewState() {
    const bool hasImage = m_display.previewImage.has_value() && !m_display.previewImage->isNull();
    m_loadingOverlay->setVisible(!hasImage && m_isLoadingPreview);
    m_unavailableLabel->setVisible(!hasImage && !m_isLoadingPreview);
    m_indexBadge->raise();
}

void DisplayCardView::updateScaledPreview() {
    const bool hasImage = m_display.previewImage.has_value() && !m_display.previewImage->isNull();
    if (!hasImage) {
        m_scaledPreview = QPixmap();
        m_scaledImageKey = 0;
        return;
    }
    // Until the card is laid out on screen the area has no final size; the first paint scales then.
    const QSize area = m_previewArea->size();
    if (area.isEmpty() || !isVisible()) {
        return;
    }
    const qreal ratio = devicePixelRatioF();
    const QSize pixels = area * ratio;
    if (m_display.previewImage->cacheKey() == m_scaledImageKey && pixels == m_scaledSize) {
        return;
    }
    // Stretched over the whole area, as the display's shape and the card's differ slightly.
    m_scaledPreview =
        QPixmap::fromImage(m_display.previewImage->scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    m_scaledPreview.setDevicePixelRatio(ratio);
    m_scaledImageKey = m_display.previewImage->cacheKey();
    m_scaledSize = pixels;
    ++m_previewScaleCount;
}

void DisplayCardView::updateWindowCount() {
    if (!m_display.visibleWindowCount.has_value()) {
        m_windowCountLabel->setText(tr("Counting windows..."));
    } else {
        const int count = *m_display.visibleWindowCount;
        // English keeps its singular as a text of its own; other languages word every count in the plural text.
        m_windowCountLabel->setText(count == 1 ? tr("1 visible window") : tr("%n visible windows", nullptr, count));
    }
    setAccessibleDescription(m_windowCountLabel->text());
    m_previewArea->setAccessibleDescription(m_display.name + QStringLiteral(", ") + m_windowCountLabel->text());
    updateMoveButtonNames();
}

void DisplayCardView::updateMoveButtonNames() {
    // The button shows only the target's name; a screen reader says the whole move.
    QString windows = tr("the visible windows");
    if (m_display.visibleWindowCount.has_value()) {
        const int count = *m_display.visibleWindowCount;
        windows = count == 1 ? tr("1 window") : tr("%n windows", nullptr, count);
    }
    for (QPushButton* button : m_moveControls->findChildren<QPushButton*>(QStringLiteral("moveTargetButton"))) {
        button->setAccessibleName(tr("Move %1 from screen %2 to %3")
                                      .arg(windows)
                                      .arg(m_display.index)
                                      .arg(button->property("fullText").toString()));
    }
}

void DisplayCardView::rebuildMoveControls() {
    const QList<DisplaySnapshot> others = targets();
    const QString key = targetsKey(others) + (others.isEmpty() ? QStringLiteral("none") : QString());
    if (key == m_builtTargetsKey) {
        return;
    }
    m_builtTargetsKey = key;
    clearLayout(m_moveControlsLayout);

    if (others.isEmpty()) {
        auto* warning = new QWidget(m_moveControls);
        warning->setObjectName(QStringLiteral("noTargetsWarning"));
        auto* row = new QHBoxLayout(warning);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(6);
        row->addWidget(new SymbolLabel(QStringLiteral("exclamationmark.triangle"), 14, warning), 0, Qt::AlignTop);
        row->addWidget(ViewStyle::makeLabel(tr("No other display available for moving windows."),
                                            ViewStyle::captionFont(), warning, true, true),
                       1);
        m_moveControlsLayout->addWidget(warning);
        return;
    }

    QFont headingFont = ViewStyle::captionFont();
    headingFont.setWeight(QFont::DemiBold);
    m_moveControlsLayout->addWidget(
        ViewStyle::makeLabel(tr("Move visible windows to:"), headingFont, m_moveControls, false, true));
    for (const DisplaySnapshot& target : others) {
        auto* button =
            new QPushButton(SymbolIcons::icon(screenNumberSymbol(target.index)), target.name, m_moveControls);
        button->setObjectName(QStringLiteral("moveTargetButton"));
        button->setProperty("fullText", target.name);
        button->setProperty("targetDisplayID", target.id);
        button->setToolTip(target.name);
        button->setIconSize(QSize(kTargetIconSize, kTargetIconSize));
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, target] {
            const DisplaySnapshot source = m_display;
            m_controller.moveWindows(source, target);
        });
        m_moveControlsLayout->addWidget(button);
    }
    updateMoveButtonNames();
}

QIcon DisplayCardView::applicationIcon(pid_t pid) const {
    const QImage image = m_controller.applicationIcon(pid);
    if (image.isNull()) {
        return SymbolIcons::icon(QStringLiteral("app.fill"));
    }
    return QIcon(QPixmap::fromImage(image));
}

void DisplayCardView::rebuildAppMenu() {
    const QString key = appMenuReloadKey() + QLatin1Char('#') + m_builtTargetsKey;
    if (key == m_builtAppMenuKey && m_appMenu) {
        return;
    }
    m_builtAppMenuKey = key;
    ++m_appMenuBuildCount;

    // A new menu each time: the old one may be the menu whose item is being handled right now.
    QMenu* previous = m_appMenu;
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("appMenu"));
    menu->setProperty("reloadKey", appMenuReloadKey());
    m_appMenu = menu;
    m_appMenuButton->setMenu(menu);
    if (previous) {
        previous->deleteLater();
    }

    if (m_isLoadingPreview) {
        menu->addAction(tr("Loading applications..."))->setEnabled(false);
        return;
    }
    if (m_display.appGroups.isEmpty()) {
        menu->addAction(tr("No applications found on this screen"))->setEnabled(false);
        return;
    }
    const QList<DisplaySnapshot> others = targets();
    for (const DisplayAppGroup& group : m_display.appGroups) {
        const QString label = group.name + QStringLiteral(" (") + QString::number(group.windowCount) + QLatin1Char(')');
        QMenu* submenu = menu->addMenu(applicationIcon(group.pid), label);
        submenu->setProperty("pid", static_cast<qint64>(group.pid));
        for (const DisplaySnapshot& target : others) {
            QAction* action = submenu->addAction(SymbolIcons::icon(screenNumberSymbol(target.index)), target.name);
            action->setProperty("targetDisplayID", target.id);
            connect(action, &QAction::triggered, this, [this, group, target] {
                const DisplaySnapshot source = m_display;
                m_controller.moveWindows(group, source, target);
            });
        }
    }
}

QList<QWidget*> DisplayCardView::keyboardControls() const {
    QList<QWidget*> controls;
    for (int i = 0; i < m_moveControlsLayout->count(); ++i) {
        if (auto* button = qobject_cast<QPushButton*>(m_moveControlsLayout->itemAt(i)->widget())) {
            controls.append(button);
        }
    }
    controls.append(m_appMenuButton);
    return controls;
}

bool DisplayCardView::moveToDisplayIndex(int index) {
    for (const DisplaySnapshot& target : targets()) {
        if (target.index == index) {
            const DisplaySnapshot source = m_display;
            m_controller.moveWindows(source, target);
            return true;
        }
    }
    return false;
}

QRect DisplayCardView::previewRect() const {
    return m_previewArea->geometry();
}

void DisplayCardView::elideTexts() {
    const int nameWidth = m_nameLabel->width();
    if (nameWidth > 0) {
        m_nameLabel->setText(m_nameLabel->fontMetrics().elidedText(m_display.name, Qt::ElideRight, nameWidth));
    } else {
        m_nameLabel->setText(m_display.name);
    }
    for (QPushButton* button : m_moveControls->findChildren<QPushButton*>(QStringLiteral("moveTargetButton"))) {
        const QString full = button->property("fullText").toString();
        const int available = button->width() - button->iconSize().width() - 28;
        button->setText(available > 0 ? button->fontMetrics().elidedText(full, Qt::ElideRight, available) : full);
    }
    // A translation longer than the card breaks into lines rather than being cut. The text changes only
    // when its lines do, so that a resize does not lay the card out again for nothing.
    const QFontMetrics metrics = m_appMenuButton->fontMetrics();
    const int padding =
        m_appMenuButton->sizeHint().width() - metrics.size(Qt::TextShowMnemonic, m_appMenuButton->text()).width();
    const QString appMenuText = tr("Move app windows...");
    const QString lines = m_appMenuButton->width() > padding
                              ? wrappedToWidth(appMenuText, metrics, m_appMenuButton->width() - padding)
                              : appMenuText;
    if (lines != m_appMenuButton->text()) {
        m_appMenuButton->setText(lines);
    }
}

void DisplayCardView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    elideTexts();
}

bool DisplayCardView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        if (watched == m_previewArea) {
            const QRect area = m_previewArea->rect();
            m_loadingOverlay->adjustSize();
            m_loadingOverlay->move(area.center() - m_loadingOverlay->rect().center());
            m_unavailableLabel->adjustSize();
            m_unavailableLabel->move(area.center() - m_unavailableLabel->rect().center());
            m_indexBadge->move(kBadgeInset, kBadgeInset);
            updateScaledPreview();
        } else {
            elideTexts();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void DisplayCardView::paintEvent(QPaintEvent*) {
    updateScaledPreview();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    painter.setPen(QPen(colors.color(QPalette::Mid), 1));
    painter.setBrush(colors.color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCardCornerRadius, kCardCornerRadius);

    const QRectF area = previewRect();
    QPainterPath clip;
    clip.addRoundedRect(area, kPreviewCornerRadius, kPreviewCornerRadius);
    painter.setClipPath(clip);
    if (!m_scaledPreview.isNull()) {
        painter.drawPixmap(area.toRect(), m_scaledPreview);
    } else {
        painter.fillPath(clip, QColor(128, 128, 128, 56));
    }
    Q_EMIT painted(!m_scaledPreview.isNull());
}
