// SPDX-License-Identifier: MIT
#include "AppAppearance.h"

using namespace Qt::Literals::StringLiterals;

QString rawValue(AppAppearance appearance)
{
    switch (appearance) {
    case AppAppearance::system:
        return u"system"_s;
    case AppAppearance::light:
        return u"light"_s;
    case AppAppearance::dark:
        return u"dark"_s;
    }
    return {};
}

std::optional<AppAppearance> appAppearance(QStringView stored)
{
    for (const AppAppearance appearance : allAppAppearances) {
        if (rawValue(appearance) == stored)
            return appearance;
    }
    return std::nullopt;
}

QString label(AppAppearance appearance)
{
    switch (appearance) {
    case AppAppearance::system:
        return u"Follow system"_s;
    case AppAppearance::light:
        return u"Light"_s;
    case AppAppearance::dark:
        return u"Dark"_s;
    }
    return {};
}

ColorScheme colorScheme(AppAppearance appearance, ColorScheme ofSystem)
{
    switch (appearance) {
    case AppAppearance::system:
        return ofSystem;
    case AppAppearance::light:
        return ColorScheme::light;
    case AppAppearance::dark:
        return ColorScheme::dark;
    }
    return ofSystem;
}
