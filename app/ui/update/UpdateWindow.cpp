// SPDX-License-Identifier: MIT
#include "app/ui/update/UpdateWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "platform/DesktopLauncher.h"
#include "platform/Platform.h"

namespace {

// Addresses from a feed are opened only when they lead to a web page.
bool isWebURL(const QUrl& url) {
    const QString scheme = url.scheme().toLower();
    return url.isValid() && !url.host().isEmpty() && (scheme == u"https" || scheme == u"http");
}

}  // namespace

UpdateWindow::UpdateWindow(QWidget* parent) : QWidget(parent, Qt::Dialog) {
    setWindowTitle(tr("Software Update"));
    setMinimumWidth(460);

    m_titleLabel = new QLabel(this);
    QFont titleFont = m_titleLabel->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.2);
    m_titleLabel->setFont(titleFont);
    m_titleLabel->setWordWrap(true);

    m_messageLabel = new QLabel(this);
    m_messageLabel->setWordWrap(true);
    m_messageLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 0);  // no measure of progress: a busy bar
    m_progress->setTextVisible(false);

    m_releaseNotes = new QTextBrowser(this);
    m_releaseNotes->setOpenLinks(false);
    m_releaseNotes->setMinimumHeight(180);
    connect(m_releaseNotes, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) { openLink(url); });

    m_releaseNotesLink = new QLabel(this);
    m_releaseNotesLink->setTextFormat(Qt::RichText);
    m_releaseNotesLink->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(m_releaseNotesLink, &QLabel::linkActivated, this, [this] { openLink(m_releaseNotesURL); });

    m_primaryButton = new QPushButton(this);
    m_primaryButton->setDefault(true);
    m_secondaryButton = new QPushButton(this);
    connect(m_primaryButton, &QPushButton::clicked, this, [this] { handlePrimary(); });
    connect(m_secondaryButton, &QPushButton::clicked, this, [this] { handleSecondary(); });

    auto* buttons = new QHBoxLayout();
    buttons->addStretch();
    buttons->addWidget(m_secondaryButton);
    buttons->addWidget(m_primaryButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(10);
    layout->addWidget(m_titleLabel);
    layout->addWidget(m_messageLabel);
    layout->addWidget(m_progress);
    layout->addWidget(m_releaseNotes, 1);
    layout->addWidget(m_releaseNotesLink);
    layout->addLayout(buttons);
}

QString UpdateWindow::titleText() const {
    return m_titleLabel->text();
}

QString UpdateWindow::messageText() const {
    return m_messageLabel->text();
}

QString UpdateWindow::releaseNotesText() const {
    return m_releaseNotes->toPlainText();
}

void UpdateWindow::setTexts(const QString& title, const QString& message) {
    m_titleLabel->setText(title);
    m_messageLabel->setText(message);
    m_messageLabel->setVisible(!message.isEmpty());
}

void UpdateWindow::showChecking() {
    m_state = State::Checking;
    m_downloadURL.clear();
    setTexts(tr("Checking for updates…"), QString());
    m_progress->setVisible(true);
    m_releaseNotes->setVisible(false);
    m_releaseNotesLink->setVisible(false);
    m_primaryButton->setText(tr("Cancel"));
    m_primaryButton->setEnabled(true);
    m_secondaryButton->setVisible(false);
    adjustSize();
}

void UpdateWindow::showUpToDate(const QString& currentVersion) {
    showMessage(State::UpToDate, tr("You're up to date!"),
                tr("Lattica %1 is currently the newest version available.").arg(currentVersion));
}

void UpdateWindow::showUpdateFound(const AppcastItem& item, const QString& currentVersion) {
    m_state = State::UpdateFound;
    m_downloadURL = isWebURL(item.downloadURL) ? item.downloadURL : (isWebURL(item.infoURL) ? item.infoURL : QUrl());
    m_releaseNotesURL = isWebURL(item.releaseNotesURL) ? item.releaseNotesURL : QUrl();
    setTexts(tr("A new version of Lattica is available!"),
             tr("Lattica %1 is now available (you have %2). Would you like to download it now?")
                 .arg(item.displayVersion(), currentVersion));
    m_progress->setVisible(false);
    if (item.itemDescription.isEmpty()) {
        m_releaseNotes->clear();
        m_releaseNotes->setVisible(false);
    } else {
        m_releaseNotes->setHtml(item.itemDescription);
        m_releaseNotes->setVisible(true);
    }
    m_releaseNotesLink->setText(QStringLiteral("<a href=\"notes\">Release notes</a>"));
    m_releaseNotesLink->setVisible(!m_releaseNotesURL.isEmpty());
    m_primaryButton->setText(tr("Download"));
    m_primaryButton->setEnabled(!m_downloadURL.isEmpty());
    m_secondaryButton->setText(tr("Remind Me Later"));
    m_secondaryButton->setVisible(true);
    adjustSize();
}

void UpdateWindow::showError(const QString& message) {
    showMessage(State::Error, tr("Update Error!"), message);
}

void UpdateWindow::showMessage(State state, const QString& title, const QString& message) {
    m_state = state;
    m_downloadURL.clear();
    setTexts(title, message);
    m_progress->setVisible(false);
    m_releaseNotes->setVisible(false);
    m_releaseNotesLink->setVisible(false);
    m_primaryButton->setText(QStringLiteral("OK"));
    m_primaryButton->setEnabled(true);
    m_secondaryButton->setVisible(false);
    adjustSize();
}

void UpdateWindow::present() {
    show();
    raise();
    activateWindow();
}

void UpdateWindow::closeEvent(QCloseEvent* event) {
    if (m_state == State::Checking) {
        Q_EMIT cancelRequested();
    }
    m_state = State::Idle;
    event->accept();
}

void UpdateWindow::handlePrimary() {
    if (m_state == State::UpdateFound && !m_downloadURL.isEmpty()) {
        Q_EMIT downloadRequested(m_downloadURL);
    }
    close();
}

void UpdateWindow::handleSecondary() {
    close();
}

void UpdateWindow::openLink(const QUrl& url) {
    if (!isWebURL(url)) {
        return;
    }
    if (DesktopLauncher* launcher = Platform::services().desktopLauncher) {
        launcher->openUrl(url);
    }
}
