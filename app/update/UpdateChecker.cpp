#include "app/update/UpdateChecker.h"

#include <QHostAddress>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

// Debug lines only when asked for with QT_LOGGING_RULES="lattica.updates*.debug=true".
Q_LOGGING_CATEGORY(lcUpdateChecker, "lattica.updates.checker", QtInfoMsg)

namespace {

UpdateCheckResult failure(const QString& message) {
    UpdateCheckResult result;
    result.outcome = UpdateCheckResult::Outcome::Failed;
    result.errorMessage = message;
    return result;
}

bool isLoopbackHost(const QString& host) {
    if (host.compare(QStringLiteral("localhost"), Qt::CaseInsensitive) == 0) {
        return true;
    }
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

}  // namespace

UpdateChecker::UpdateChecker(QObject* parent) : QObject(parent), m_network(new QNetworkAccessManager(this)) {
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, [this] { handleTimeout(); });
}

UpdateChecker::~UpdateChecker() {
    cancel();
}

bool UpdateChecker::isRunning() const {
    return !m_reply.isNull();
}

bool UpdateChecker::isAllowedFeedURL(const QUrl& url, QString* message) {
    auto refuse = [message](const QString& reason) {
        if (message) {
            *message = reason;
        }
        return false;
    };
    if (!url.isValid() || url.host().isEmpty()) {
        return refuse(QStringLiteral("The update feed address \"%1\" is not valid.").arg(url.toString()));
    }
    const QString scheme = url.scheme().toLower();
    if (scheme == u"https") {
        return true;
    }
    if (scheme == u"http" && isLoopbackHost(url.host())) {
        return true;
    }
    if (scheme == u"http") {
        return refuse(QStringLiteral("The update feed must be fetched over HTTPS."));
    }
    return refuse(QStringLiteral("The update feed address \"%1\" does not use HTTPS.").arg(url.toString()));
}

UpdateCheckResult UpdateChecker::evaluateFeed(const QByteArray& document, const Request& request) {
    const AppcastParseResult parsed = Appcast::parse(document);
    if (!parsed.ok()) {
        return failure(QStringLiteral("The update feed could not be read: %1").arg(parsed.error));
    }
    const std::optional<AppcastItem> newest = Appcast::newestApplicableItem(parsed.items, request.systemVersion);
    UpdateCheckResult result;
    if (newest && Appcast::compareVersions(newest->version, request.currentVersion) > 0) {
        result.outcome = UpdateCheckResult::Outcome::UpdateAvailable;
        result.item = newest;
    } else {
        result.outcome = UpdateCheckResult::Outcome::UpToDate;
    }
    return result;
}

void UpdateChecker::start(const Request& request) {
    cancel();
    m_request = request;
    QString refusal;
    if (!isAllowedFeedURL(request.feedURL, &refusal)) {
        qCDebug(lcUpdateChecker) << "refused feed" << request.feedURL << refusal;
        // Reported from the event loop, as every other outcome is.
        QMetaObject::invokeMethod(
            this, [this, refusal] { Q_EMIT finished(failure(refusal)); }, Qt::QueuedConnection);
        return;
    }

    QNetworkRequest networkRequest(request.feedURL);
    // A redirect is followed only to an address the feed itself could have had.
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    networkRequest.setMaximumRedirectsAllowed(5);
    networkRequest.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    networkRequest.setHeader(QNetworkRequest::UserAgentHeader,
                             QStringLiteral("Lattica/%1").arg(request.currentVersion));
    qCDebug(lcUpdateChecker) << "fetching" << request.feedURL;
    m_reply = m_network->get(networkRequest);
    QNetworkReply* reply = m_reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        if (reply == m_reply) {
            handleReplyFinished();
        }
    });
    connect(reply, &QNetworkReply::redirected, this, [this, reply](const QUrl& target) {
        if (reply != m_reply) {
            return;
        }
        QString redirectRefusal;
        if (isAllowedFeedURL(target, &redirectRefusal)) {
            Q_EMIT reply->redirectAllowed();
            return;
        }
        qCDebug(lcUpdateChecker) << "refused redirect to" << target << redirectRefusal;
        cancel();
        finishWith(failure(
            QStringLiteral("The update feed moved to an address that is not allowed: %1").arg(redirectRefusal)));
    });
    connect(reply, &QNetworkReply::downloadProgress, this, [this, reply](qint64 received, qint64) {
        if (reply == m_reply && received > kMaximumFeedSize) {
            m_deadline.stop();
            m_reply = nullptr;
            reply->abort();
            reply->deleteLater();
            finishWith(failure(QStringLiteral("The update feed is larger than an update feed can be.")));
        }
    });
    m_deadline.start(m_timeout);
}

void UpdateChecker::cancel() {
    m_deadline.stop();
    if (QNetworkReply* reply = m_reply) {
        m_reply = nullptr;
        reply->abort();
        reply->deleteLater();
    }
}

void UpdateChecker::finishWith(const UpdateCheckResult& result) {
    qCDebug(lcUpdateChecker) << "check finished with outcome" << static_cast<int>(result.outcome)
                             << result.errorMessage;
    Q_EMIT finished(result);
}

void UpdateChecker::handleReplyFinished() {
    m_deadline.stop();
    QNetworkReply* reply = m_reply;
    m_reply = nullptr;
    reply->deleteLater();

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError) {
        if (status >= 400) {
            finishWith(failure(QStringLiteral("The update server answered with HTTP status %1.").arg(status)));
        } else {
            finishWith(failure(QStringLiteral("The update feed could not be loaded: %1").arg(reply->errorString())));
        }
        return;
    }
    if (status != 0 && status != 200) {
        finishWith(failure(QStringLiteral("The update server answered with HTTP status %1.").arg(status)));
        return;
    }
    finishWith(evaluateFeed(reply->readAll(), m_request));
}

void UpdateChecker::handleTimeout() {
    if (!m_reply) {
        return;
    }
    cancel();
    finishWith(failure(QStringLiteral("The update server did not answer within %1 seconds.")
                           .arg(QString::number(m_timeout.count() / 1000.0, 'g', 3))));
}
