// SPDX-License-Identifier: MIT
#include "StorageError.h"

using namespace Qt::Literals::StringLiterals;

/// Each names the place, says what is wrong there, and then what to do. Each is a translation key.
QString StorageError::sentence() const
{
    switch (m_reason) {
    case Reason::unsupportedVersion:
        return u"Unsupported note version: %d. Original files were left untouched."_s;
    case Reason::invalidMarkdown:
        return u"A Markdown file has invalid metadata. Original files were left untouched."_s;
    case Reason::externalChange:
        return u"Notes changed outside Quillmark. Copy your pending text and reopen the app to reload the files."_s;
    case Reason::recoveryRequired:
        return u"A recovery copy needs attention. Original files were preserved in the data folder."_s;
    case Reason::system:
        return {};
    case Reason::notUtf8:
        return u"“%@” is not UTF-8 text. Convert it or move it away, then reopen the app."_s;
    case Reason::notRegularFile:
        return u"“%@” is not an ordinary file. Move it away, then reopen the app."_s;
    case Reason::editorLock:
        return u"“%@” is the lock of an editor in which that note is open with changes. Save or close it there, then reopen the app."_s;
    case Reason::notFolder:
        return u"“%@” is not a folder of its own. Move it away, then reopen the app."_s;
    case Reason::lowerLayer:
        return u"“%@” cannot be replaced: it comes from a lower layer of an overlay file system. Move it away, put a copy in its place, then reopen the app."_s;
    case Reason::mountPoint:
        return u"“%@” belongs to another disk. Unmount it, then try again."_s;
    case Reason::tooLarge:
        return u"“%@” is too large for a note. Shorten it or move it away, then try again."_s;
    case Reason::tooManyNotes:
        return u"“%@” can hold no more than 100,000 notes. Delete some or move them away, then try again."_s;
    case Reason::tooMuchText:
        return u"“%@” can hold no more than 256 MiB of text. Delete notes or move them away, then try again."_s;
    case Reason::busy:
        return u"“%@” is being changed by another program again and again. Wait until that is done, then try again."_s;
    case Reason::inUse:
        return u"“%@” is in use by another Quillmark: go on there, or quit that one first."_s;
    case Reason::outOfReach:
        return u"“%@” is not the folder that was there when Quillmark started. Quit Quillmark, then start it again."_s;
    case Reason::tooDeep:
        return u"“%@” lies in too many folders. Move it further up or away, then try again."_s;
    case Reason::secondDraft:
        return u"“%@” is the second draft of one note. Move one of the two away, then reopen the app."_s;
    case Reason::notUnicode:
        return u"“%@” was not written: its text holds a broken character. Remove it, then try again."_s;
    case Reason::jsonSyntax:
        return u"The older notes file “notes.json” cannot be read: there is a mistake in line %d, column %d. Mend it or move the file away, then reopen the app."_s;
    case Reason::jsonMissing:
        return u"The older notes file “notes.json” cannot be read: “%@” is missing. Mend it or move the file away, then reopen the app."_s;
    case Reason::jsonTwice:
        return u"The older notes file “notes.json” cannot be read: “%@” comes twice. Mend it or move the file away, then reopen the app."_s;
    case Reason::jsonWrongValue:
        return u"The older notes file “notes.json” cannot be read: “%@” has a wrong value. Mend it or move the file away, then reopen the app."_s;
    case Reason::jsonTooDeep:
        return u"The older notes file “notes.json” cannot be read: “%@” is nested too deeply. Mend it or move the file away, then reopen the app."_s;
    case Reason::jsonOtherShape:
        return u"The older notes file “notes.json” has version %d and cannot be read: “%@” is not as in version 1. Mend it or move the file away, then reopen the app."_s;
    }
    Q_UNREACHABLE();
}
