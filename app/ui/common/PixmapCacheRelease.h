// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

// Qt's shared pixmap cache, which the style and the icons fill as windows paint, wakes the program every
// 10-30 s for as long as it holds anything. Lattica spends most of its time with no window shown, so the
// cache is emptied whenever one of its windows hides, and after the panel is prepared unseen at start:
// the program then sleeps until something happens. The next painting fills the cache again.
class PixmapCacheRelease : public QObject {
public:
    // Watches every window of the application from now on.
    explicit PixmapCacheRelease(QObject* parent);

    // Empties the cache once the events already queued are handled, so that a painting under way keeps
    // what it uses.
    static void releaseSoon();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
