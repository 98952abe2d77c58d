// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QList>
#include <QRectF>

#include "app/model/Models.h"

// What lay under the panel just before it was shown: an area of the global space and its picture. The
// previews captured while the panel is open show this picture in the panel's place, not the panel.
struct PreviewBackdrop {
    QRectF area;
    QImage picture;

    bool isEmpty() const { return area.isEmpty() || picture.isNull(); }
    // Paints the picture over the part of each preview that the area covers, scaled as the preview is
    // scaled from its display's bounds. Previews that the area misses are left as they are.
    void drawInto(QList<DisplaySnapshot>& snapshots) const;
};
