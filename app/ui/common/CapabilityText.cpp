// SPDX-License-Identifier: MIT
#include "app/ui/common/CapabilityText.h"

#include <QCoreApplication>

#include "app/ui/common/ViewStyle.h"

QString CapabilityText::grantText(const CapabilityCheck& check) {
    switch (check.availability) {
        case Availability::Available:
            return QCoreApplication::translate("CapabilityText", "Granted");
        case Availability::Limited:
            return QCoreApplication::translate("CapabilityText", "Limited");
        case Availability::Unavailable:
            break;
    }
    return QCoreApplication::translate("CapabilityText", "Missing");
}

QColor CapabilityText::grantColor(const CapabilityCheck& check) {
    switch (check.availability) {
        case Availability::Available:
            return ViewStyle::grantedColor();
        case Availability::Limited:
            return ViewStyle::limitedColor();
        case Availability::Unavailable:
            break;
    }
    return ViewStyle::missingColor();
}
