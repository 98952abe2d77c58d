// SPDX-License-Identifier: MIT
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
        return refuse(tr("The update feed address \"%1\" is not valid.").arg(url.toString()));
    }
    const QString scheme = url.scheme().toLower();
    if (scheme == u"https") {
        return true;
    }
    if (scheme == u"http" && isLoopbackHost(url.host())) {
        return true;
    }
    if (scheme == u"http") {
        return refuse(tr("The update feed must be fetched over HTTPS."));
    }
    return refuse(tr("The update feed address \"%1\" does not use HTTPS.").arg(url.toString()));
}

UpdateCheckResult UpdateChecker::evaluateFeed(const QByteArray& document, const Request& request) {
    const AppcastParseResult parsed = Appcast::parse(document);
    if (!parsed.ok()) {
        return failure(tr("The update feed could not be read: %1").arg(parsed.error));
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

    m_visited.clear();
    fetch(request.feedURL);
    m_deadline.start(m_timeout);
}

void UpdateChecker::fetch(const QUrl& url) {
    QNetworkRequest networkRequest(url);
    // Redirects are followed here rather than by the network layer: each target must be an address the
    // feed itself could have had, a loop is seen as one, and a chain ends after kMaximumRedirects.
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    networkRequest.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    networkRequest.setHeader(QNetworkRequest::UserAgentHeader,
                             QStringLiteral("Lattica/%1").arg(m_request.currentVersion));
    qCDebug(lcUpdateChecker) << "fetching" << url;
    m_visited.append(url.adjusted(QUrl::NormalizePathSegments));
    m_reply = m_network->get(networkRequest);
    QNetworkReply* reply = m_reply;
    // The body is read when the reply has finished. Without a bound, the network layer reads ahead of the
    // size check below as fast as the server sends; with this one it stops just past the largest feed.
    reply->setReadBufferSize(kMaximumFeedSize + 1024 * 1024);
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        if (reply == m_reply) {
            handleReplyFinished();
        }
    });
    const auto refuseIfTooLarge = [this, reply](qint64 size) {
        if (reply == m_reply && size > kMaximumFeedSize) {
            m_deadline.stop();
            m_reply = nullptr;
            reply->abort();
            reply->deleteLater();
            finishWith(failure(tr("The update feed is larger than an update feed can be.")));
        }
    };
    connect(reply, &QNetworkReply::downloadProgress, this,
            [refuseIfTooLarge](qint64 received, qint64) { refuseIfTooLarge(received); });
    // With the read buffer full the progress may stop short of the limit; what waits in it counts too.
    connect(reply, &QNetworkReply::readyRead, this,
            [refuseIfTooLarge, reply] { refuseIfTooLarge(reply->bytesAvailable()); });
}

bool UpdateChecker::followRedirect(QNetworkReply* reply) {
    const QUrl location = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (location.isEmpty()) {
        return false;
    }
    const QUrl target = reply->url().resolved(location);
    QString refusal;
    if (!isAllowedFeedURL(target, &refusal)) {
        qCDebug(lcUpdateChecker) << "refused redirect to" << target << refusal;
        finishWith(failure(tr("The update feed moved to an address that is not allowed: %1").arg(refusal)));
    } else if (m_visited.contains(target.adjusted(QUrl::NormalizePathSegments))) {
        qCDebug(lcUpdateChecker) << "redirect loop at" << target;
        finishWith(failure(tr("The update feed redirects in a loop.")));
    } else if (m_visited.size() > kMaximumRedirects) {
        finishWith(failure(tr("The update feed was redirected too many times.")));
    } else {
        fetch(target);
    }
    return true;
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
    QNetworkReply* reply = m_reply;
    m_reply = nullptr;
    reply->deleteLater();

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() == QNetworkReply::NoError && status >= 300 && status < 400 && followRedirect(reply)) {
        if (!m_reply) {
            m_deadline.stop();  // the redirect ended the check
        }
        return;
    }
    m_deadline.stop();
    if (reply->error() != QNetworkReply::NoError) {
        if (status >= 400) {
            finishWith(failure(tr("The update server answered with HTTP status %1.").arg(status)));
        } else {
            finishWith(failure(tr("The update feed could not be loaded: %1").arg(reply->errorString())));
        }
        return;
    }
    if (status != 0 && status != 200) {
        finishWith(failure(tr("The update server answered with HTTP status %1.").arg(status)));
        return;
    }
    finishWith(evaluateFeed(reply->readAll(), m_request));
}

void UpdateChecker::handleTimeout() {
    if (!m_reply) {
        return;
    }
    cancel();
    finishWith(failure(tr("The update server did not answer within %1 seconds.")
                           .arg(QString::number(m_timeout.count() / 1000.0, 'g', 3))));
}
