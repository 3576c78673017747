// SPDX-License-Identifier: MIT
#include "WellFormed.h"

#include <QList>

QString wellFormed(const QString &text)
{
    if (text.isValidUtf16())
        return text;
    const QList<uint> characters = text.toUcs4();
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.data()),
                             characters.size());
}
