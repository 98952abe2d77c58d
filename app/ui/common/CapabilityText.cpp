#include "app/ui/common/CapabilityText.h"

#include "app/ui/common/ViewStyle.h"

QString CapabilityText::grantText(const CapabilityCheck& check) {
    switch (check.availability) {
        case Availability::Available:
            return QStringLiteral("Granted");
        case Availability::Limited:
            return QStringLiteral("Limited");
        case Availability::Unavailable:
            break;
    }
    return QStringLiteral("Missing");
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
