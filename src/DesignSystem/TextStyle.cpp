// SPDX-License-Identifier: MIT
#include "TextStyle.h"

QFont TextStyle::font(const QLocale &locale) const
{
    return isSerif ? NoteTheme::serifFont(pixelSize, weight)
                   : NoteTheme::font(pixelSize, weight, locale);
}
