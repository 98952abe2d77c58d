// SPDX-License-Identifier: MIT
// Apart from the rest of the fixture: only tests that link the core's display snapshots use it.
#include "app/displays/ScreenSnapshotService.h"
#include "tests/platform/x11/X11DesktopFixture.h"

DisplaySnapshot X11DesktopFixture::display(int monitor) const {
    for (const DisplayDescriptor& descriptor : ScreenSnapshotService::currentDisplayDescriptors()) {
        if (descriptor.bounds == QRectF(monitors().value(monitor))) {
            return DisplaySnapshot::placeholder(descriptor);
        }
    }
    ADD_FAILURE() << "no display for monitor " << monitor;
    return {};
}
