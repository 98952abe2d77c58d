// SPDX-License-Identifier: MIT
#pragma once

#include <QUrl>
#include <QWidget>

#include "app/update/Appcast.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QTextBrowser;

// The window of update checks: progress, "up to date", a found release with its notes, or an error.
// It is created once and reused; closing it only hides it.
class UpdateWindow : public QWidget {
    Q_OBJECT
public:
    enum class State { Idle, Checking, UpToDate, UpdateFound, Error };

    explicit UpdateWindow(QWidget* parent = nullptr);

    void showChecking();
    void showUpToDate(const QString& currentVersion);
    void showUpdateFound(const AppcastItem& item, const QString& currentVersion);
    void showError(const QString& message);
    // Shows the window in front.
    void present();

    State state() const { return m_state; }
    QString titleText() const;
    QString messageText() const;
    QString releaseNotesText() const;
    // Where "Download" leads; empty unless a release was found.
    QUrl downloadURL() const { return m_downloadURL; }
    QPushButton* primaryButton() const { return m_primaryButton; }
    QPushButton* secondaryButton() const { return m_secondaryButton; }

Q_SIGNALS:
    // The user gave up waiting for a check.
    void cancelRequested();
    void downloadRequested(const QUrl& url);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // A message that only needs acknowledging: the texts and an OK button.
    void showMessage(State state, const QString& title, const QString& message);
    void setTexts(const QString& title, const QString& message);
    void handlePrimary();
    void handleSecondary();
    void openLink(const QUrl& url);

    State m_state = State::Idle;
    QUrl m_downloadURL;
    QUrl m_releaseNotesURL;
    QLabel* m_titleLabel = nullptr;
    QLabel* m_messageLabel = nullptr;
    QProgressBar* m_progress = nullptr;
    QTextBrowser* m_releaseNotes = nullptr;
    QLabel* m_releaseNotesLink = nullptr;
    QPushButton* m_primaryButton = nullptr;
    QPushButton* m_secondaryButton = nullptr;
};
