// SPDX-License-Identifier: MIT
#include "app/controller/PreviewBackdrop.h"

#include <QPainter>

void PreviewBackdrop::drawInto(QList<DisplaySnapshot>& snapshots) const {
    if (isEmpty()) {
        return;
    }
    for (DisplaySnapshot& snapshot : snapshots) {
        if (!snapshot.previewImage || snapshot.previewImage->isNull() || !snapshot.bounds.intersects(area)) {
            continue;
        }
        QImage& preview = *snapshot.previewImage;
        const double scaleX = preview.width() / snapshot.bounds.width();
        const double scaleY = preview.height() / snapshot.bounds.height();
        const QRectF target((area.x() - snapshot.bounds.x()) * scaleX, (area.y() - snapshot.bounds.y()) * scaleY,
                            area.width() * scaleX, area.height() * scaleY);
        // In place: the preview is usually the capture's own buffer, which nothing else reads yet.
        QPainter painter(&preview);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, scaleX != 1.0 || scaleY != 1.0);
        painter.drawImage(target, picture);
    }
}
