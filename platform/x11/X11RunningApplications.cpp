// SPDX-License-Identifier: MIT
#include "platform/x11/X11RunningApplications.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowOwners.h"
#include "platform/x11/X11WindowTable.h"
#include "platform/x11/XcbReply.h"

namespace {
constexpr int kIconSize = 64;
constexpr uint32_t kMaxIconLongs = 1u << 20;  // four megabytes of icon data is plenty
}  // namespace

X11RunningApplications::X11RunningApplications(X11Connection& connection, X11WindowDesktopEntries& entries,
                                               X11WindowCache* cache)
    : m_connection(connection), m_reader(connection, cache), m_kinds(connection), m_entries(entries) {
    connection.internAtoms({"_NET_WM_ICON"});
}

QList<X11WindowOwner> X11RunningApplications::owners(std::optional<pid_t>* activeOwner) {
    const X11WindowTable table =
        X11WindowTable::read(m_reader, X11WindowFacts::Type | X11WindowFacts::State | X11WindowFacts::Class);
    if (activeOwner != nullptr) {
        *activeOwner = std::nullopt;
        for (const X11WindowFacts& facts : table.windows) {
            if (facts.window == table.root.activeWindow && table.root.activeWindow != XCB_NONE) {
                *activeOwner = facts.pid;
            }
        }
    }
    return X11WindowOwners::fromTable(table, m_kinds, m_entries);
}

QList<RunningApplication> X11RunningApplications::runningApplications() {
    QList<RunningApplication> applications;
    for (const X11WindowOwner& owner : owners()) {
        applications.append(owner.runningApplication());
    }
    return applications;
}

std::optional<RunningApplication> X11RunningApplications::frontmostApplication() {
    std::optional<pid_t> active;
    const QList<X11WindowOwner> all = owners(&active);
    if (!active) {
        return std::nullopt;
    }
    for (const X11WindowOwner& owner : all) {
        if (owner.pid == *active) {
            return owner.runningApplication();
        }
    }
    return std::nullopt;
}

QImage X11RunningApplications::iconForApplication(pid_t pid) {
    const X11WindowTable table = X11WindowTable::read(m_reader, X11WindowFacts::Class);
    const X11WindowFacts* first = nullptr;
    for (const X11WindowFacts& facts : table.windows) {
        if (facts.pid == pid && (first == nullptr || (facts.managed && !first->managed))) {
            first = &facts;
        }
    }
    if (first == nullptr) {
        return {};
    }
    if (const auto entry = m_entries.find(first->classInstance, first->className); entry && !entry->icon.isEmpty()) {
        if (QFileInfo(entry->icon).isAbsolute()) {
            const QImage image(entry->icon);
            if (!image.isNull()) {
                return image;
            }
        } else if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
            const QIcon icon = QIcon::fromTheme(entry->icon);
            if (!icon.isNull()) {
                return icon.pixmap(kIconSize, kIconSize).toImage();
            }
        }
    }
    for (const X11WindowFacts& facts : table.windows) {
        if (facts.pid == pid) {
            if (QImage image = windowIcon(facts.window); !image.isNull()) {
                return image;
            }
        }
    }
    return {};
}

// The largest picture in the window's _NET_WM_ICON: width, height, then ARGB pixels, repeated.
QImage X11RunningApplications::windowIcon(xcb_window_t window) {
    xcb_connection_t* xcb = m_connection.xcb();
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        xcb, xcb_get_property(xcb, 0, window, m_connection.atom("_NET_WM_ICON"), XCB_ATOM_CARDINAL, 0, kMaxIconLongs),
        nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* data = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    const qsizetype count = xcb_get_property_value_length(reply.get()) / 4;
    const uint32_t* best = nullptr;
    uint32_t bestWidth = 0;
    uint32_t bestHeight = 0;
    for (qsizetype i = 0; i + 2 <= count;) {
        const uint32_t width = data[i];
        const uint32_t height = data[i + 1];
        const quint64 pixels = quint64(width) * height;
        if (width == 0 || height == 0 || pixels > quint64(count - i - 2)) {
            break;
        }
        if (quint64(width) * height > quint64(bestWidth) * bestHeight) {
            best = data + i + 2;
            bestWidth = width;
            bestHeight = height;
        }
        i += 2 + static_cast<qsizetype>(pixels);
    }
    if (best == nullptr) {
        return {};
    }
    QImage image(static_cast<int>(bestWidth), static_cast<int>(bestHeight), QImage::Format_ARGB32);
    for (uint32_t y = 0; y < bestHeight; ++y) {
        std::memcpy(image.scanLine(static_cast<int>(y)), best + y * bestWidth, bestWidth * 4);
    }
    return image;
}
