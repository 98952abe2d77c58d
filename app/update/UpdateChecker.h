// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <optional>

#include "app/update/Appcast.h"

class QNetworkAccessManager;
class QNetworkReply;

// What one check for updates found.
struct UpdateCheckResult {
    enum class Outcome { UpdateAvailable, UpToDate, Failed };

    Outcome outcome = Outcome::Failed;
    std::optional<AppcastItem> item;  // the newer release, when there is one
    QString errorMessage;             // why the check failed
};

// Fetches an update feed and decides whether it offers a newer release than the running one.
// Only HTTPS feeds are read, and plain HTTP to this machine's loopback address.
class UpdateChecker : public QObject {
    Q_OBJECT
public:
    struct Request {
        QUrl feedURL;
        QString currentVersion;  // compared with each item's machine version
        QString systemVersion;   // compared with each item's minimum system version
    };

    static constexpr std::chrono::milliseconds kDefaultTimeout{15000};
    // A feed larger than this is not an update feed.
    static constexpr qint64 kMaximumFeedSize = 8 * 1024 * 1024;
    // Redirects followed before a check gives up.
    static constexpr int kMaximumRedirects = 5;

    explicit UpdateChecker(QObject* parent = nullptr);
    ~UpdateChecker() override;

    // Starts a check; a check already running is abandoned. finished() follows exactly once.
    void start(const Request& request);
    // Stops a running check without reporting it.
    void cancel();
    bool isRunning() const;

    // The bound on one whole check, from request to last byte.
    void setTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    std::chrono::milliseconds timeout() const { return m_timeout; }

    // Whether a feed may be fetched from this address; the reason in message when not.
    static bool isAllowedFeedURL(const QUrl& url, QString* message = nullptr);
    // Decides the outcome for a downloaded feed.
    static UpdateCheckResult evaluateFeed(const QByteArray& document, const Request& request);

Q_SIGNALS:
    void finished(const UpdateCheckResult& result);

private:
    void fetch(const QUrl& url);
    // Follows the redirect a reply answered with, or ends the check saying why not. False when the
    // reply names no target.
    bool followRedirect(QNetworkReply* reply);
    void finishWith(const UpdateCheckResult& result);
    void handleReplyFinished();
    void handleTimeout();

    QNetworkAccessManager* m_network = nullptr;
    QPointer<QNetworkReply> m_reply;
    QList<QUrl> m_visited;  // the addresses this check has asked, in order
    QTimer m_deadline;
    Request m_request;
    std::chrono::milliseconds m_timeout = kDefaultTimeout;
};
