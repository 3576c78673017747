// SPDX-License-Identifier: MIT
#include "FileNames.h"

#include "NoteId.h"

#include <algorithm>
#include <cstring>

const char *FileNames::ofSection(Section section) noexcept
{
    switch (section) {
    case Section::marker:
        return "";
    case Section::notes:
        return "Notes";
    case Section::drafts:
        return "Drafts";
    }
    Q_UNREACHABLE();
}

std::string FileNames::fresh(std::string_view prefix)
{
    return std::string(prefix) + canonicalText(QUuid::createUuid()).toStdString();
}

bool FileNames::isMarkdown(std::string_view name) noexcept
{
    if (name.size() < 4)
        return false;
    const std::string_view end = name.substr(name.size() - 3);
    return end[0] == '.' && (end[1] == 'm' || end[1] == 'M') && (end[2] == 'd' || end[2] == 'D');
}

bool FileNames::isEditorLock(std::string_view name) noexcept
{
    return name.starts_with(".#");
}

std::string_view FileNames::stem(std::string_view name) noexcept
{
    return name.substr(0, name.rfind('.'));
}

FileNames::Owner FileNames::parse(std::string_view name) noexcept
{
    if (!isMarkdown(name))
        return {};
    return {.isCapture = stem(name) == captureStem, .note = parseId(stem(name))};
}

NoteFileName::NoteFileName(std::string_view name)
{
    Q_ASSERT(fits(name));
    std::ranges::copy(name, m_text.begin());
}

NoteFileName NoteFileName::ofNote(const QUuid &id)
{
    return NoteFileName((canonicalText(id).toLatin1() + ".md").toStdString());
}

bool NoteFileName::fits(std::string_view name) noexcept
{
    return name.size() < sizeof(NoteFileName);
}

std::strong_ordering operator<=>(const NoteFileName &a, const NoteFileName &b) noexcept
{
    return std::memcmp(a.m_text.data(), b.m_text.data(), a.m_text.size()) <=> 0;
}
