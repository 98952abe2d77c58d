#include "platform/x11/X11Accessibility.h"

#include <QFileInfo>
#include <QHash>
#include <QPointF>
#include <QSizeF>
#include <cmath>

#include "platform/x11/X11Connection.h"

namespace {

// How long the answer to "is a window manager running" is trusted.
constexpr int kWmCheckMilliseconds = 1000;

const QString kWindows = QLatin1String(kAXWindowsAttribute);
const QString kAllWindows = QLatin1String(kAXAllWindowsAttribute);
const QString kRole = QLatin1String(kAXRoleAttribute);
const QString kWindowNumber = QLatin1String(kAXWindowNumberAttribute);
const QString kPosition = QLatin1String(kAXPositionAttribute);
const QString kSize = QLatin1String(kAXSizeAttribute);
const QString kMinimized = QLatin1String(kAXMinimizedAttribute);
const QString kHidden = QLatin1String(kAXHiddenAttribute);
const QString kFocusedWindow = QLatin1String(kAXFocusedWindowAttribute);
const QString kMainWindow = QLatin1String(kAXMainWindowAttribute);
const QString kFocusedApplication = QLatin1String(kAXFocusedApplicationAttribute);

bool isWindowNumber(qint64 identifier) {
    return identifier > 0 && identifier <= 0xFFFFFFFFll;
}

AXAttributeReply failure(AXError error) {
    return {error, {}};
}
AXAttributeReply success(QVariant value) {
    return {kAXErrorSuccess, std::move(value)};
}

}  // namespace

// Everything one batch of reads needs, fetched together.
struct X11Accessibility::Batch {
    X11RootFacts root;
    QHash<xcb_window_t, X11WindowFacts> windows;  // the elements asked about, and the active window
    QList<X11WindowFacts> managed;                // front to back, when an application's list was asked for
};

X11Accessibility::X11Accessibility(X11Connection& connection, X11WindowCache* cache)
    : m_connection(connection),
      m_cache(cache),
      m_reader(connection),
      m_batchReader(connection, cache),
      m_kinds(connection),
      m_placer(connection, m_reader, m_kinds) {
    qRegisterMetaType<AXUIElement>();
    qRegisterMetaType<AXUIElementList>();
}

bool X11Accessibility::windowManagerRunning() {
    QMutexLocker lock(&m_wmMutex);
    if (!m_wmCheckValidUntil.hasExpired()) {
        return m_wmRunning;
    }
    // The check window names itself; a stale property left by a window manager that died does not.
    const X11RootFacts root = m_reader.readRoot(X11WindowReader::WmCheck);
    m_wmRunning = false;
    if (root.connected && root.supportingWmCheck != XCB_NONE) {
        xcb_connection_t* xcb = m_connection.xcb();
        xcb_get_property_reply_t* reply = xcb_get_property_reply(
            xcb,
            xcb_get_property(xcb, 0, root.supportingWmCheck, m_connection.atom("_NET_SUPPORTING_WM_CHECK"),
                             XCB_ATOM_WINDOW, 0, 1),
            nullptr);
        m_wmRunning = reply != nullptr && reply->format == 32 && xcb_get_property_value_length(reply) >= 4 &&
                      *static_cast<uint32_t*>(xcb_get_property_value(reply)) == root.supportingWmCheck;
        std::free(reply);
    }
    m_wmCheckValidUntil = QDeadlineTimer(kWmCheckMilliseconds);
    return m_wmRunning;
}

bool X11Accessibility::isSupported(const AXUIElement& element, const QString& attribute) {
    switch (element.kind) {
        case AXUIElement::Kind::Window:
            return attribute == kRole || attribute == kWindowNumber || attribute == kPosition || attribute == kSize ||
                   attribute == kMinimized;
        case AXUIElement::Kind::Application:
            return attribute == kRole || attribute == kWindows || attribute == kAllWindows ||
                   attribute == kFocusedWindow || attribute == kMainWindow;
        case AXUIElement::Kind::SystemWide:
            return attribute == kRole || attribute == kFocusedWindow || attribute == kFocusedApplication;
    }
    return false;
}

AXError X11Accessibility::copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) {
    const AXAttributeReply reply = copyAttributeValues({{element, attribute}}).value(0);
    if (reply.error == kAXErrorSuccess && value != nullptr) {
        *value = reply.value;
    }
    return reply.error;
}

QList<AXAttributeReply> X11Accessibility::copyAttributeValues(const QList<AXAttributeRequest>& requests) {
    QList<AXAttributeReply> replies;
    if (requests.isEmpty()) {
        return replies;
    }
    if (m_connection.hasError() || !windowManagerRunning()) {
        return QList<AXAttributeReply>(requests.size(), failure(kAXErrorAPIDisabled));
    }

    // Stage 1: what the root window says, as far as the batch needs it.
    unsigned rootFields = 0;
    QHash<xcb_window_t, unsigned> windowFields;
    for (const AXAttributeRequest& request : requests) {
        if (!isSupported(request.element, request.attribute)) {
            continue;
        }
        const QString& a = request.attribute;
        if (request.element.kind == AXUIElement::Kind::Window) {
            if (!isWindowNumber(request.element.identifier)) {
                continue;
            }
            unsigned fields = X11WindowFacts::Attributes;
            if (a == kRole) {
                fields |= X11WindowFacts::Type | X11WindowFacts::Transient | X11WindowFacts::State;
            } else if (a == kPosition || a == kSize) {
                fields |= X11WindowFacts::Geometry;
                rootFields |= X11WindowReader::GlobalOrigin;
            } else if (a == kMinimized) {
                fields |= X11WindowFacts::State;
            }
            windowFields[static_cast<xcb_window_t>(request.element.identifier)] |= fields;
        } else if (a == kWindows || a == kAllWindows) {
            rootFields |= X11WindowReader::ClientList | X11WindowReader::CurrentDesktop;
        } else if (a == kFocusedWindow || a == kMainWindow || a == kFocusedApplication) {
            rootFields |= X11WindowReader::ActiveWindow;
        }
    }
    Batch batch;
    if (rootFields != 0) {
        batch.root = m_batchReader.readRoot(rootFields);
    }

    // Stage 2: the windows asked about, the active window's owner, and every managed window's owner,
    // desktop and state when an application's list is wanted.
    if (batch.root.activeWindow != XCB_NONE) {
        windowFields[batch.root.activeWindow] |= X11WindowFacts::Attributes | X11WindowFacts::Pid;
    }
    QList<X11WindowReader::Request> windowRequests;
    for (auto it = windowFields.cbegin(); it != windowFields.cend(); ++it) {
        windowRequests.append({it.key(), it.value()});
    }
    const qsizetype ownCount = windowRequests.size();
    for (auto it = batch.root.clientListStacking.crbegin(); it != batch.root.clientListStacking.crend(); ++it) {
        windowRequests.append({*it, X11WindowFacts::Pid | X11WindowFacts::Desktop | X11WindowFacts::State});
    }
    QList<X11WindowFacts> facts = m_batchReader.readWindows(windowRequests);

    // Stage 3: owners of windows without _NET_WM_PID.
    m_batchReader.resolveMissingPids(facts);
    for (qsizetype i = 0; i < facts.size(); ++i) {
        if (i < ownCount) {
            batch.windows.insert(facts[i].window, facts[i]);
        } else if (facts[i].exists) {
            facts[i].managed = true;
            batch.managed.append(facts[i]);
        }
    }

    replies.reserve(requests.size());
    for (const AXAttributeRequest& request : requests) {
        replies.append(answer(request, batch));
    }
    return replies;
}

AXAttributeReply X11Accessibility::answer(const AXAttributeRequest& request, const Batch& batch) const {
    if (!isSupported(request.element, request.attribute)) {
        return failure(kAXErrorAttributeUnsupported);
    }
    switch (request.element.kind) {
        case AXUIElement::Kind::Window:
            return answerWindow(request.element, request.attribute, batch);
        case AXUIElement::Kind::Application:
            return answerApplication(request.element, request.attribute, batch);
        case AXUIElement::Kind::SystemWide:
            return answerSystemWide(request.attribute, batch);
    }
    return failure(kAXErrorFailure);
}

AXAttributeReply X11Accessibility::answerWindow(const AXUIElement& element, const QString& attribute,
                                                const Batch& batch) const {
    if (!isWindowNumber(element.identifier)) {
        return failure(kAXErrorInvalidUIElement);
    }
    const auto found = batch.windows.constFind(static_cast<xcb_window_t>(element.identifier));
    if (found == batch.windows.constEnd() || !found->exists) {
        return failure(kAXErrorInvalidUIElement);
    }
    const X11WindowFacts& window = *found;
    if (attribute == kRole) {
        return success(m_kinds.role(window));
    }
    if (attribute == kWindowNumber) {
        return success(QVariant::fromValue(static_cast<qint64>(window.window)));
    }
    if (attribute == kPosition) {
        return success(QPointF(window.outerFrame().topLeft() - batch.root.globalOriginInRoot));
    }
    if (attribute == kSize) {
        return success(QSizeF(window.outerFrame().size()));
    }
    if (attribute == kMinimized) {
        return success(m_kinds.isHidden(window));
    }
    return failure(kAXErrorAttributeUnsupported);
}

AXAttributeReply X11Accessibility::answerApplication(const AXUIElement& element, const QString& attribute,
                                                     const Batch& batch) const {
    const qint64 pid = element.identifier;
    if (pid <= 0 || pid > 0x7fffffff) {
        return failure(kAXErrorIllegalArgument);
    }
    if (attribute == kRole) {
        return success(QStringLiteral("AXApplication"));
    }
    if (attribute == kWindows || attribute == kAllWindows) {
        if (!batch.root.connected) {
            return failure(kAXErrorCannotComplete);
        }
        AXUIElementList windows;
        for (const X11WindowFacts& window : batch.managed) {
            if (window.pid != pid) {
                continue;
            }
            // Windows on other workspaces are never listed, so no command moves or restores them.
            if (!m_kinds.isOnDesktop(window, batch.root.currentDesktop) ||
                (attribute == kWindows && m_kinds.isHidden(window))) {
                continue;
            }
            windows.append(AXUIElement::window(window.window));
        }
        // An application that owns no window any more and whose process is gone is no element at all.
        if (windows.isEmpty() && !QFileInfo::exists(QStringLiteral("/proc/%1").arg(pid))) {
            return failure(kAXErrorInvalidUIElement);
        }
        return success(QVariant::fromValue(windows));
    }
    // The focused and the main window: the active window when this application owns it.
    const auto active = batch.windows.constFind(batch.root.activeWindow);
    if (batch.root.activeWindow == XCB_NONE || active == batch.windows.constEnd() || !active->exists ||
        active->pid != pid) {
        return failure(kAXErrorNoValue);
    }
    return success(QVariant::fromValue(AXUIElement::window(active->window)));
}

AXAttributeReply X11Accessibility::answerSystemWide(const QString& attribute, const Batch& batch) const {
    if (attribute == kRole) {
        return success(QStringLiteral("AXSystemWide"));
    }
    const auto active = batch.windows.constFind(batch.root.activeWindow);
    if (batch.root.activeWindow == XCB_NONE || active == batch.windows.constEnd() || !active->exists) {
        return failure(kAXErrorNoValue);
    }
    if (attribute == kFocusedWindow) {
        return success(QVariant::fromValue(AXUIElement::window(active->window)));
    }
    if (!active->pid) {
        return failure(kAXErrorNoValue);
    }
    return success(QVariant::fromValue(AXUIElement::application(*active->pid)));
}

AXError X11Accessibility::setAttributeValue(const AXUIElement& element, const QString& attribute,
                                            const QVariant& value) {
    if (element.kind == AXUIElement::Kind::Application && attribute == kHidden) {
        return kAXErrorAttributeUnsupported;  // X11 has no hidden applications
    }
    const bool writable = element.kind == AXUIElement::Kind::Window &&
                          (attribute == kPosition || attribute == kSize || attribute == kMinimized);
    if (!writable) {
        return kAXErrorAttributeUnsupported;
    }
    if (m_connection.hasError() || !windowManagerRunning()) {
        return kAXErrorAPIDisabled;
    }
    if (!isWindowNumber(element.identifier)) {
        return kAXErrorInvalidUIElement;
    }
    const auto window = static_cast<xcb_window_t>(element.identifier);
    // Reads that follow a write must see it, even when the window manager's news of it is late.
    const auto written = [this, window](AXError error) {
        if (m_cache != nullptr) {
            m_cache->forget(window);
        }
        return error;
    };
    if (attribute == kMinimized) {
        if (value.typeId() != QMetaType::Bool) {
            return kAXErrorIllegalArgument;
        }
        return written(m_placer.setMinimized(window, value.toBool()));
    }
    if (attribute == kPosition) {
        if (value.typeId() != QMetaType::QPointF && value.typeId() != QMetaType::QPoint) {
            return kAXErrorIllegalArgument;
        }
        const QPointF point = value.toPointF();
        if (!std::isfinite(point.x()) || !std::isfinite(point.y())) {
            return kAXErrorIllegalArgument;
        }
        const QPoint origin = m_reader.readRoot(X11WindowReader::GlobalOrigin).globalOriginInRoot;
        return written(m_placer.moveFrame(window, point.toPoint() + origin));
    }
    if (value.typeId() != QMetaType::QSizeF && value.typeId() != QMetaType::QSize) {
        return kAXErrorIllegalArgument;
    }
    const QSizeF size = value.toSizeF();
    if (!std::isfinite(size.width()) || !std::isfinite(size.height()) || size.width() < 1 || size.height() < 1) {
        return kAXErrorIllegalArgument;
    }
    return written(m_placer.resizeFrame(window, size.toSize()));
}
