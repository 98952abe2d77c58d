// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/ui/settings/SettingsSection.h"

namespace {

using SettingsSections::allCases;

TEST(SettingsSectionTest, CasesAreInDeclaredOrderWithTheirRawValues) {
    QStringList rawValues;
    for (const SettingsSection section : allCases()) {
        rawValues.append(SettingsSections::rawValue(section));
    }
    EXPECT_EQ(rawValues,
              (QStringList{QStringLiteral("permissions"), QStringLiteral("behavior"), QStringLiteral("shortcuts"),
                           QStringLiteral("updates"), QStringLiteral("about"), QStringLiteral("debug")}));
}

TEST(SettingsSectionTest, RawValuesIdentifyTheirCase) {
    for (const SettingsSection section : allCases()) {
        EXPECT_EQ(SettingsSections::fromRawValue(SettingsSections::rawValue(section)), section);
    }
    EXPECT_FALSE(SettingsSections::fromRawValue(QStringLiteral("Permissions")).has_value());
    EXPECT_FALSE(SettingsSections::fromRawValue(QString()).has_value());
}

TEST(SettingsSectionTest, TitlesAndSymbols) {
    const QList<std::pair<QString, QString>> expected = {
        {QStringLiteral("Permissions"), QStringLiteral("hand.raised")},
        {QStringLiteral("Behavior"), QStringLiteral("slider.horizontal.3")},
        {QStringLiteral("Shortcuts"), QStringLiteral("keyboard")},
        {QStringLiteral("Updates"), QStringLiteral("arrow.triangle.2.circlepath")},
        {QStringLiteral("About"), QStringLiteral("info.circle")},
        {QStringLiteral("Debug"), QStringLiteral("ladybug")},
    };
    ASSERT_EQ(allCases().size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(SettingsSections::title(allCases()[i]), expected[i].first);
        EXPECT_EQ(SettingsSections::symbol(allCases()[i]), expected[i].second);
    }
}

TEST(SettingsSectionTest, Descriptions) {
    EXPECT_EQ(SettingsSections::description(SettingsSection::Permissions),
              QStringLiteral("Review what your session allows and open the help page that explains what is missing."));
    EXPECT_EQ(
        SettingsSections::description(SettingsSection::Behavior),
        QStringLiteral("Control how Lattica behaves at login, in the taskbar, and during cross-display window moves."));
    EXPECT_EQ(SettingsSections::description(SettingsSection::Shortcuts),
              QStringLiteral(
                  "Assign a global keyboard shortcut per connected display to move the currently focused window."));
    EXPECT_EQ(SettingsSections::description(SettingsSection::Updates),
              QStringLiteral("Choose how update checks run and manually trigger an update check at any time."));
    EXPECT_TRUE(SettingsSections::description(SettingsSection::About).isEmpty());
    EXPECT_EQ(SettingsSections::description(SettingsSection::Debug),
              QStringLiteral("Use developer-only tools for testing onboarding and permission-related flows."));
}

TEST(SettingsSectionTest, SidebarListsFiveSectionsWithoutDebug) {
    EXPECT_EQ(SettingsSections::sidebarSections(),
              (QList<SettingsSection>{SettingsSection::Permissions, SettingsSection::Behavior,
                                      SettingsSection::Shortcuts, SettingsSection::Updates, SettingsSection::About}));
    EXPECT_FALSE(SettingsSections::sidebarSections().contains(SettingsSection::Debug));
}

}  // namespace
