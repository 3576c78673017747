// SPDX-License-Identifier: MIT
#include "JsonError.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

JsonError::JsonError(QString detail)
    : m_detail(std::move(detail))
{
}

Message JsonError::message() const
{
    return {u"The older notes file “notes.json” cannot be read: %@. Mend it or move it away, then "
            u"reopen the app."_s,
            {m_detail}};
}
