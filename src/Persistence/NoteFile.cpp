// SPDX-License-Identifier: MIT
#include "NoteFile.h"

#include "NoteId.h"

#include <QVarLengthArray>
#include <algorithm>

NoteFileName::NoteFileName(std::string_view name)
{
    Q_ASSERT(fits(name));
    std::ranges::copy(name, m_text.begin());
}

bool NoteFileName::fits(std::string_view name) noexcept
{
    return name.size() < sizeof(NoteFileName);
}

ContentDigest contentDigest(Sha256 &sha256, std::string_view bytes)
{
    sha256.add(bytes);
    const Sha256::Digest whole = sha256.finish();
    ContentDigest half;
    std::copy_n(whole.begin(), half.size(), half.begin());
    return half;
}

bool isMarkdownName(std::string_view name) noexcept
{
    if (name.size() < 4)
        return false;
    const std::string_view end = name.substr(name.size() - 3);
    return end[0] == '.' && (end[1] == 'm' || end[1] == 'M') && (end[2] == 'd' || end[2] == 'D');
}

std::string_view stem(std::string_view name) noexcept
{
    return name.substr(0, name.rfind('.'));
}

std::optional<QUuid> parseId(std::string_view bytes)
{
    QVarLengthArray<char16_t, 40> text;
    for (const char c : bytes)
        text.append(static_cast<unsigned char>(c));
    return parseId(QStringView(text.data(), text.size()));
}
