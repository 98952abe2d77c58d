#pragma once

#include <QDeadlineTimer>
#include <QMutex>

#include "platform/Accessibility.h"
#include "platform/x11/X11WindowKinds.h"
#include "platform/x11/X11WindowPlacer.h"
#include "platform/x11/X11WindowReader.h"

class X11Connection;

// The Accessibility facade on an X11 desktop with an EWMH window manager: applications are processes
// that own managed windows, windows are client XIDs, and the focus is _NET_ACTIVE_WINDOW. Reads are
// safe on any thread and a batch costs at most three round trips; writes belong to the main thread.
class X11Accessibility : public Accessibility {
public:
    // With a cache, batches of reads go through it; writes and their confirmations never do.
    explicit X11Accessibility(X11Connection& connection, X11WindowCache* cache = nullptr);

    AXError copyAttributeValue(const AXUIElement& element, const QString& attribute, QVariant* value) override;
    AXError setAttributeValue(const AXUIElement& element, const QString& attribute, const QVariant& value) override;
    QList<AXAttributeReply> copyAttributeValues(const QList<AXAttributeRequest>& requests) override;

private:
    struct Batch;
    bool windowManagerRunning();
    static bool isSupported(const AXUIElement& element, const QString& attribute);
    AXAttributeReply answer(const AXAttributeRequest& request, const Batch& batch) const;
    AXAttributeReply answerWindow(const AXUIElement& element, const QString& attribute, const Batch& batch) const;
    AXAttributeReply answerApplication(const AXUIElement& element, const QString& attribute, const Batch& batch) const;
    AXAttributeReply answerSystemWide(const QString& attribute, const Batch& batch) const;

    X11Connection& m_connection;
    X11WindowCache* m_cache = nullptr;
    X11WindowReader m_reader;       // always the main connection, never cached
    X11WindowReader m_batchReader;  // through the cache, when there is one
    X11WindowKinds m_kinds;
    X11WindowPlacer m_placer;
    QMutex m_wmMutex;
    bool m_wmRunning = false;
    QDeadlineTimer m_wmCheckValidUntil;
};
