// SPDX-License-Identifier: MIT
#include "app/ui/common/PixmapCacheRelease.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPixmapCache>
#include <QWidget>

PixmapCacheRelease::PixmapCacheRelease(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
}

void PixmapCacheRelease::releaseSoon() {
    // Clearing also stops the cache's own timer.
    QMetaObject::invokeMethod(
        qApp, [] { QPixmapCache::clear(); }, Qt::QueuedConnection);
}

bool PixmapCacheRelease::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && watched->isWidgetType() && static_cast<QWidget*>(watched)->isWindow()) {
        releaseSoon();
    }
    return false;
}
