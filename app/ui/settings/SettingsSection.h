// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <optional>

// The sections of the settings window, in their declared order.
enum class SettingsSection { Permissions, Behavior, Shortcuts, Updates, About, Debug };

namespace SettingsSections {

// Every case this build has, in declared order (a build without update checks has no Updates).
QList<SettingsSection> allCases();
// The sections the sidebar lists; "debug" is deliberately not among them.
QList<SettingsSection> sidebarSections();

QString rawValue(SettingsSection section);
std::optional<SettingsSection> fromRawValue(const QString& rawValue);
QString title(SettingsSection section);
// The symbol name shown beside the title.
QString symbol(SettingsSection section);
// The line under the section header; empty when the section has none.
QString description(SettingsSection section);

}  // namespace SettingsSections
