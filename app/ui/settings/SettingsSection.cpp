// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsSection.h"

#include <QCoreApplication>

#include "BuildConfig.h"

namespace {

// A build without update checks has no updates section.
QList<SettingsSection> withoutLeftOut(QList<SettingsSection> sections) {
    if (!BuildConfig::kUpdateCheck) {
        sections.removeAll(SettingsSection::Updates);
    }
    return sections;
}

}  // namespace

namespace SettingsSections {

QList<SettingsSection> allCases() {
    return withoutLeftOut({SettingsSection::Permissions, SettingsSection::Behavior, SettingsSection::Shortcuts,
                           SettingsSection::Updates, SettingsSection::About, SettingsSection::Debug});
}

QList<SettingsSection> sidebarSections() {
    return withoutLeftOut({SettingsSection::Permissions, SettingsSection::Behavior, SettingsSection::Shortcuts,
                           SettingsSection::Updates, SettingsSection::About});
}

QString rawValue(SettingsSection section) {
    switch (section) {
        case SettingsSection::Permissions:
            return QStringLiteral("permissions");
        case SettingsSection::Behavior:
            return QStringLiteral("behavior");
        case SettingsSection::Shortcuts:
            return QStringLiteral("shortcuts");
        case SettingsSection::Updates:
            return QStringLiteral("updates");
        case SettingsSection::About:
            return QStringLiteral("about");
        case SettingsSection::Debug:
            return QStringLiteral("debug");
    }
    return {};
}

std::optional<SettingsSection> fromRawValue(const QString& value) {
    for (const SettingsSection section : allCases()) {
        if (rawValue(section) == value) {
            return section;
        }
    }
    return std::nullopt;
}

QString title(SettingsSection section) {
    switch (section) {
        case SettingsSection::Permissions:
            return QCoreApplication::translate("SettingsSection", "Permissions");
        case SettingsSection::Behavior:
            return QCoreApplication::translate("SettingsSection", "Behavior");
        case SettingsSection::Shortcuts:
            return QCoreApplication::translate("SettingsSection", "Shortcuts");
        case SettingsSection::Updates:
            return QCoreApplication::translate("SettingsSection", "Updates");
        case SettingsSection::About:
            return QCoreApplication::translate("SettingsSection", "About");
        case SettingsSection::Debug:
            return QCoreApplication::translate("SettingsSection", "Debug");
    }
    return {};
}

QString symbol(SettingsSection section) {
    switch (section) {
        case SettingsSection::Permissions:
            return QStringLiteral("hand.raised");
        case SettingsSection::Behavior:
            return QStringLiteral("slider.horizontal.3");
        case SettingsSection::Shortcuts:
            return QStringLiteral("keyboard");
        case SettingsSection::Updates:
            return QStringLiteral("arrow.triangle.2.circlepath");
        case SettingsSection::About:
            return QStringLiteral("info.circle");
        case SettingsSection::Debug:
            return QStringLiteral("ladybug");
    }
    return {};
}

QString description(SettingsSection section) {
    switch (section) {
        case SettingsSection::Permissions:
            return QCoreApplication::translate(
                "SettingsSection",
                "Review what your session allows and open the help page that explains what is missing.");
        case SettingsSection::Behavior:
            return QCoreApplication::translate(
                "SettingsSection",
                "Control how Lattica behaves at login, in the taskbar, and during cross-display window moves.");
        case SettingsSection::Shortcuts:
            return QCoreApplication::translate(
                "SettingsSection",
                "Assign a global keyboard shortcut per connected display to move the currently focused window.");
        case SettingsSection::Updates:
            return QCoreApplication::translate(
                "SettingsSection", "Choose how update checks run and manually trigger an update check at any time.");
        case SettingsSection::About:
            return {};
        case SettingsSection::Debug:
            return QCoreApplication::translate(
                "SettingsSection", "Use developer-only tools for testing onboarding and permission-related flows.");
    }
    return {};
}

}  // namespace SettingsSections
