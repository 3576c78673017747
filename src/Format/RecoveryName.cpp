// SPDX-License-Identifier: MIT
#include "RecoveryName.h"

#include "FileNames.h"
#include "NoteId.h"
#include "Sha256.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>

namespace {

constexpr unsigned short version = 8;
constexpr unsigned short versionBits = 12;
constexpr unsigned short belowVersion = 0x0FFF;
constexpr unsigned char variant = 0x80;
constexpr unsigned char belowVariant = 0x3F;

using Mark = std::array<unsigned char, 8>;

/// In hexadecimal digits; machine-id(5).
constexpr int lengthOfId = 32;

/// Empty where there is none.
const std::string &computer()
{
    static const std::string id = [] {
        // A stream would try an interrupted read again without end.
        const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
            std::fopen("/etc/machine-id", "re"), &std::fclose);
        std::array<char, lengthOfId + 1> line{};
        if (!file || !std::fgets(line.data(), line.size(), file.get()))
            return std::string();
        const std::string_view read(line.data());
        return std::string(read.substr(0, read.find('\n')));
    }();
    return id;
}

std::optional<Mark> markOf(const std::filesystem::path &dataFolder)
{
    if (computer().empty())
        return std::nullopt;
    const Sha256Digest digest =
        sha256("Quillmark\n" + computer() + '\n' + dataFolder.lexically_normal().native());
    Mark mark;
    std::copy_n(digest.begin(), mark.size(), mark.begin());
    mark[0] = static_cast<unsigned char>((mark[0] & belowVariant) | variant);
    return mark;
}

bool isMarked(const QUuid &id)
{
    return id.data3 >> versionBits == version;
}

} // namespace

std::string RecoveryName::fresh(const std::filesystem::path &dataFolder)
{
    const std::optional<Mark> mark = markOf(dataFolder);
    if (!mark)
        return FileNames::fresh(FileNames::recoveryPrefix);
    QUuid id = QUuid::createUuid();
    id.data3 = static_cast<ushort>((id.data3 & belowVersion) | (version << versionBits));
    std::ranges::copy(*mark, id.data4);
    return std::string(FileNames::recoveryPrefix) + canonicalText(id).toStdString();
}

RecoveryName::Origin RecoveryName::originOf(std::string_view name,
                                            const std::filesystem::path &dataFolder)
{
    constexpr std::size_t length = 36;
    const std::string_view text =
        name.substr(std::min(name.size(), FileNames::recoveryPrefix.size()));
    const std::optional<QUuid> id = parseId(text.substr(0, length));
    const std::optional<Mark> mark = markOf(dataFolder);
    if (!id || !isMarked(*id) || !mark)
        return Origin::unknown;
    return std::ranges::equal(*mark, id->data4) ? Origin::here : Origin::elsewhere;
}
