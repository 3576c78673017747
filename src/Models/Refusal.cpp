// SPDX-License-Identifier: MIT
#include "Refusal.h"

#include <QtGlobal>
#include <cerrno>

namespace {

Refusal::Kind kindOf(Reason reason, int systemError)
{
    using Kind = Refusal::Kind;
    switch (reason) {
    case Reason::recoveryRequired:
        return Kind::recoveryCopy;
    case Reason::system:
        return systemError == ENOSPC || systemError == EDQUOT ? Kind::diskFull : Kind::disk;
    case Reason::tooLarge:
    case Reason::tooManyNotes:
    case Reason::tooMuchText:
    case Reason::tooDeep:
    case Reason::notUnicode:
        return Kind::limits;
    case Reason::inUse:
        return Kind::inUse;
    case Reason::unsupportedVersion:
    case Reason::invalidMarkdown:
    case Reason::externalChange:
    case Reason::notUtf8:
    case Reason::notRegularFile:
    case Reason::editorLock:
    case Reason::notFolder:
    case Reason::lowerLayer:
    case Reason::mountPoint:
    case Reason::busy:
    case Reason::outOfReach:
    case Reason::secondDraft:
    case Reason::jsonSyntax:
    case Reason::jsonMissing:
    case Reason::jsonTwice:
    case Reason::jsonWrongValue:
    case Reason::jsonTooDeep:
    case Reason::jsonOtherShape:
        return Kind::folder;
    }
    Q_UNREACHABLE();
}

} // namespace

Refusal Refusal::of(const StorageError &error)
{
    return {kindOf(error.reason(), error.systemError()), error.message()};
}
