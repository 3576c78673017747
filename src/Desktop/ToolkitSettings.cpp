// SPDX-License-Identifier: MIT
#include "ToolkitSettings.h"

using namespace Qt::Literals::StringLiterals;

namespace {

bool isDark(const QString &theme)
{
    return theme.contains("dark"_L1, Qt::CaseInsensitive) ||
           theme.endsWith("Inverse"_L1, Qt::CaseInsensitive);
}

bool isOfHighContrast(const QString &theme)
{
    return theme.startsWith("HighContrast"_L1, Qt::CaseInsensitive) ||
           theme.startsWith("ContrastHigh"_L1, Qt::CaseInsensitive);
}

} // namespace

ToolkitSettings ToolkitSettings::completedBy(const ToolkitSettings &other) const
{
    return {.theme = theme.isEmpty() ? other.theme : theme,
            .prefersDark = prefersDark ? prefersDark : other.prefersDark,
            .animates = animates ? animates : other.animates};
}

AppearanceWishes ToolkitSettings::wishes() const
{
    AppearanceWishes wishes;
    if (prefersDark == true || isDark(theme))
        wishes.colorScheme = ColorScheme::dark;
    else if (prefersDark || !theme.isEmpty())
        wishes.colorScheme = ColorScheme::light;
    wishes.reduceMotion = animates == false;
    wishes.highContrast = isOfHighContrast(theme);
    return wishes;
}
