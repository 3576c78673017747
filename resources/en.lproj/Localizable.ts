<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: MIT -->
<!DOCTYPE TS>
<TS version="2.1" sourcelanguage="en" language="en">
<context>
    <name>Localizable</name>
    <!-- The preferences menu -->
    <message>
        <source>Preferences</source>
        <translation>Preferences</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Appearance</source>
        <translation>Appearance</translation>
    </message>
    <message>
        <source>Follow system</source>
        <translation>Follow system</translation>
    </message>
    <message>
        <source>English</source>
        <translation>English</translation>
    </message>
    <message>
        <source>简体中文</source>
        <translation>简体中文</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Light</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dark</translation>
    </message>
    <message>
        <source>Show Markdown files</source>
        <translation>Show Markdown files</translation>
    </message>
    <!-- The launcher -->
    <message>
        <source>New note</source>
        <translation>New note</translation>
    </message>
    <message>
        <source>Quit Quillmark</source>
        <translation>Quit Quillmark</translation>
    </message>
    <message>
        <source>Quillmark · Quick capture</source>
        <translation>Quillmark · Quick capture</translation>
    </message>
    <message>
        <source>Click to capture · Drag to move · Right-click to quit</source>
        <translation>Click to capture · Drag to move · Right-click to quit</translation>
    </message>
    <!-- The workspace -->
    <message>
        <source>Capture</source>
        <translation>Capture</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notes</translation>
    </message>
    <message>
        <source>Close · Esc</source>
        <translation>Close · Esc</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Reload</translation>
    </message>
    <message>
        <source>Show file</source>
        <translation>Show file</translation>
    </message>
    <message>
        <source>To quit all the same, press Ctrl+Q.</source>
        <translation>To quit all the same, press Ctrl+Q.</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>Retry</translation>
    </message>
    <message>
        <source>Markdown · local</source>
        <translation>Markdown · local</translation>
    </message>
    <message>
        <source>1 note</source>
        <translation>1 note</translation>
    </message>
    <message>
        <source>%d notes</source>
        <translation>%d notes</translation>
    </message>
    <message>
        <source>Capture now. Think later.</source>
        <translation>Capture now. Think later.</translation>
    </message>
    <!-- The capture screen -->
    <message>
        <source>· NOW</source>
        <translation>· NOW</translation>
    </message>
    <message>
        <source>What’s on your mind?</source>
        <translation>What’s on your mind?</translation>
    </message>
    <message>
        <source>Catch the idea. Keep your flow.</source>
        <translation>Catch the idea. Keep your flow.</translation>
    </message>
    <message>
        <source>A sentence. A thought.
Get it down before it goes.</source>
        <translation>A sentence. A thought.
Get it down before it goes.</translation>
    </message>
    <message>
        <source>1 character</source>
        <translation>1 character</translation>
    </message>
    <message>
        <source>%d characters</source>
        <translation>%d characters</translation>
    </message>
    <message>
        <source>⌘ ↵ Save &amp; close</source>
        <translation>⌘ ↵ Save &amp; close</translation>
    </message>
    <message>
        <source>Save this thought</source>
        <translation>Save this thought</translation>
    </message>
    <!-- The library -->
    <message>
        <source>Thoughts, kept.</source>
        <translation>Thoughts, kept.</translation>
    </message>
    <message>
        <source>Find a thought…</source>
        <translation>Find a thought…</translation>
    </message>
    <message>
        <source>Clear search</source>
        <translation>Clear search</translation>
    </message>
    <message>
        <source>No matching thoughts yet.</source>
        <translation>No matching thoughts yet.</translation>
    </message>
    <message>
        <source>Try another keyword.</source>
        <translation>Try another keyword.</translation>
    </message>
    <message>
        <source>Every good idea starts
with a quick note.</source>
        <translation>Every good idea starts
with a quick note.</translation>
    </message>
    <message>
        <source>Open Capture to write your first one.</source>
        <translation>Open Capture to write your first one.</translation>
    </message>
    <message>
        <source>Untitled idea</source>
        <translation>Untitled idea</translation>
    </message>
    <message>
        <source>· Editing draft</source>
        <translation>· Editing draft</translation>
    </message>
    <message>
        <source>Open note: %@</source>
        <translation>Open note: %@</translation>
    </message>
    <!-- The edit screen -->
    <message>
        <source>All notes</source>
        <translation>All notes</translation>
    </message>
    <message>
        <source>Copy text</source>
        <translation>Copy text</translation>
    </message>
    <message>
        <source>Delete note</source>
        <translation>Delete note</translation>
    </message>
    <message>
        <source>Note text</source>
        <translation>Note text</translation>
    </message>
    <message>
        <source>Save changes</source>
        <translation>Save changes</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Cut</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>Copied</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>Delete this note?</source>
        <translation>Delete this note?</translation>
    </message>
    <message>
        <source>This removes the note and its editing draft from this Mac. You cannot undo this in the app.</source>
        <translation>This removes the note and its editing draft from this Mac. You cannot undo this in the app.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <!-- The state of the saving -->
    <message>
        <source>Saved on this Mac</source>
        <translation>Saved on this Mac</translation>
    </message>
    <message>
        <source>Saving draft…</source>
        <translation>Saving draft…</translation>
    </message>
    <message>
        <source>Not saved · Retry</source>
        <translation>Not saved · Retry</translation>
    </message>
    <message>
        <source>Could not read your notes. Original files were protected.</source>
        <translation>Could not read your notes. Original files were protected.</translation>
    </message>
    <message>
        <source>What was typed last could not be read. It was left as it is.</source>
        <translation>What was typed last could not be read. It was left as it is.</translation>
    </message>
    <message>
        <source>Could not save. Your text is still in this window.</source>
        <translation>Could not save. Your text is still in this window.</translation>
    </message>
    <!-- A start that is not to be -->
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>What was typed could not be saved, and is kept in “%@” for the next start.</source>
        <translation>What was typed could not be saved, and is kept in “%@” for the next start.</translation>
    </message>
    <message>
        <source>Not kept: the other program did not hand over what was dropped.</source>
        <translation>Not kept: the other program did not hand over what was dropped.</translation>
    </message>
    <message>
        <source>Not kept: what was dropped is no UTF-8 text.</source>
        <translation>Not kept: what was dropped is no UTF-8 text.</translation>
    </message>
    <message>
        <source>Not kept: there is no text in what was dropped.</source>
        <translation>Not kept: there is no text in what was dropped.</translation>
    </message>
    <message>
        <source>Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters.</source>
        <translation>Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters.</translation>
    </message>
    <message>
        <source>Shown for reading: a note has room for %@ characters and %@ lines, a paragraph for %@ characters.</source>
        <translation>Shown for reading: a note has room for %@ characters and %@ lines, a paragraph for %@ characters.</translation>
    </message>
    <message>
        <source>What was typed could not be saved.</source>
        <translation>What was typed could not be saved.</translation>
    </message>
    <!-- Quitting -->
    <message>
        <source>Some changes could not be saved</source>
        <translation>Some changes could not be saved</translation>
    </message>
    <message>
        <source>Return and retry, or copy your text first. Quitting now will lose changes that could not be written.</source>
        <translation>Return and retry, or copy your text first. Quitting now will lose changes that could not be written.</translation>
    </message>
    <message>
        <source>Return to notes</source>
        <translation>Return to notes</translation>
    </message>
    <message>
        <source>Quit anyway</source>
        <translation>Quit anyway</translation>
    </message>
    <!-- A start that comes to nothing -->
    <message>
        <source>Quillmark is running on another display already. Go on there, or quit it first.</source>
        <translation>Quillmark is running on another display already. Go on there, or quit it first.</translation>
    </message>
    <message>
        <source>Quillmark is running already but does not answer. End it, then start it again.</source>
        <translation>Quillmark is running already but does not answer. End it, then start it again.</translation>
    </message>
    <message>
        <source>Another program has taken Quillmark’s name on the session bus. End that program, then start Quillmark again.</source>
        <translation>Another program has taken Quillmark’s name on the session bus. End that program, then start Quillmark again.</translation>
    </message>
    <!-- Why the notes folder was refused -->
    <message>
        <source>Unsupported note version: %d. Original files were left untouched.</source>
        <translation>Unsupported note version: %d. Original files were left untouched.</translation>
    </message>
    <message>
        <source>A Markdown file has invalid metadata. Original files were left untouched.</source>
        <translation>A Markdown file has invalid metadata. Original files were left untouched.</translation>
    </message>
    <message>
        <source>Notes changed outside Quillmark. Copy your pending text and reopen the app to reload the files.</source>
        <translation>Notes changed outside Quillmark. Copy your pending text and reopen the app to reload the files.</translation>
    </message>
    <message>
        <source>A recovery copy needs attention. Original files were preserved in the data folder.</source>
        <translation>A recovery copy needs attention. Original files were preserved in the data folder.</translation>
    </message>
    <!-- Why a file could not be read or written -->
    <message>
        <source>“%@” is not UTF-8 text. Convert it or move it away, then reopen the app.</source>
        <translation>“%@” is not UTF-8 text. Convert it or move it away, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” is not an ordinary file. Move it away, then reopen the app.</source>
        <translation>“%@” is not an ordinary file. Move it away, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” is not a folder of its own. Move it away, then reopen the app.</source>
        <translation>“%@” is not a folder of its own. Move it away, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” belongs to another disk. Unmount it, then try again.</source>
        <translation>“%@” belongs to another disk. Unmount it, then try again.</translation>
    </message>
    <message>
        <source>“%@” is too large for a note. Shorten it or move it away, then try again.</source>
        <translation>“%@” is too large for a note. Shorten it or move it away, then try again.</translation>
    </message>
    <message>
        <source>“%@” can hold no more than 100,000 notes. Delete some or move them away, then try again.</source>
        <translation>“%@” can hold no more than 100,000 notes. Delete some or move them away, then try again.</translation>
    </message>
    <message>
        <source>“%@” can hold no more than 256 MiB of text. Delete notes or move them away, then try again.</source>
        <translation>“%@” can hold no more than 256 MiB of text. Delete notes or move them away, then try again.</translation>
    </message>
    <message>
        <source>“%@” is the lock of an editor in which that note is open with changes. Save or close it there, then reopen the app.</source>
        <translation>“%@” is the lock of an editor in which that note is open with changes. Save or close it there, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” cannot be replaced: it comes from a lower layer of an overlay file system. Move it away, put a copy in its place, then reopen the app.</source>
        <translation>“%@” cannot be replaced: it comes from a lower layer of an overlay file system. Move it away, put a copy in its place, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” is being changed by another program again and again. Wait until that is done, then try again.</source>
        <translation>“%@” is being changed by another program again and again. Wait until that is done, then try again.</translation>
    </message>
    <message>
        <source>“%@” is in use by another Quillmark: go on there, or quit that one first.</source>
        <translation>“%@” is in use by another Quillmark: go on there, or quit that one first.</translation>
    </message>
    <message>
        <source>“%@” is not the folder that was there when Quillmark started. Quit Quillmark, then start it again.</source>
        <translation>“%@” is not the folder that was there when Quillmark started. Quit Quillmark, then start it again.</translation>
    </message>
    <message>
        <source>“%@” lies in too many folders. Move it further up or away, then try again.</source>
        <translation>“%@” lies in too many folders. Move it further up or away, then try again.</translation>
    </message>
    <message>
        <source>“%@” is the second draft of one note. Move one of the two away, then reopen the app.</source>
        <translation>“%@” is the second draft of one note. Move one of the two away, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” has too long a path. Move your data to a folder with a shorter one, then reopen the app.</source>
        <translation>“%@” has too long a path. Move your data to a folder with a shorter one, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” was not written: its text holds a broken character. Remove it, then try again.</source>
        <translation>“%@” was not written: its text holds a broken character. Remove it, then try again.</translation>
    </message>
    <message>
        <source>“%@” was not written: the disk is full. Free some space, then try again.</source>
        <translation>“%@” was not written: the disk is full. Free some space, then try again.</translation>
    </message>
    <message>
        <source>“%@” was not written: your disk quota is used up. Delete other files, then try again.</source>
        <translation>“%@” was not written: your disk quota is used up. Delete other files, then try again.</translation>
    </message>
    <message>
        <source>“%@” was not written: it would be larger than a file may be. Raise the limit, then try again.</source>
        <translation>“%@” was not written: it would be larger than a file may be. Raise the limit, then try again.</translation>
    </message>
    <message>
        <source>“%@” may not be used. Check its permissions and its owner, then try again.</source>
        <translation>“%@” may not be used. Check its permissions and its owner, then try again.</translation>
    </message>
    <message>
        <source>“%@” is on a read-only disk. Make the disk writable, then try again.</source>
        <translation>“%@” is on a read-only disk. Make the disk writable, then try again.</translation>
    </message>
    <message>
        <source>“%@” was not opened: too many files are open. Close some programs, then try again.</source>
        <translation>“%@” was not opened: too many files are open. Close some programs, then try again.</translation>
    </message>
    <message>
        <source>“%@” is missing. Put it back, then reopen the app.</source>
        <translation>“%@” is missing. Put it back, then reopen the app.</translation>
    </message>
    <message>
        <source>“%@” could not be used: the disk reports an error. Check the disk, then try again.</source>
        <translation>“%@” could not be used: the disk reports an error. Check the disk, then try again.</translation>
    </message>
    <message>
        <source>“%@” could not be used: %@. Mend that, then try again.</source>
        <translation>“%@” could not be used: %@. Mend that, then try again.</translation>
    </message>
    <message>
        <source>“%@” could not be used: the system reports error %d. Mend that, then try again.</source>
        <translation>“%@” could not be used: the system reports error %d. Mend that, then try again.</translation>
    </message>
    <message>
        <source>Argument list too long</source>
        <translation>Argument list too long</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>Cannot allocate memory</translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation>Device or resource busy</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>Invalid argument</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>Too many levels of symbolic links</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>Not a directory</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>Is a directory</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>File exists</translation>
    </message>
    <message>
        <source>Directory not empty</source>
        <translation>Directory not empty</translation>
    </message>
    <message>
        <source>Invalid cross-device link</source>
        <translation>Invalid cross-device link</translation>
    </message>
    <message>
        <source>Too many links</source>
        <translation>Too many links</translation>
    </message>
    <message>
        <source>No such device or address</source>
        <translation>No such device or address</translation>
    </message>
    <message>
        <source>No such device</source>
        <translation>No such device</translation>
    </message>
    <message>
        <source>Text file busy</source>
        <translation>Text file busy</translation>
    </message>
    <message>
        <source>Resource temporarily unavailable</source>
        <translation>Resource temporarily unavailable</translation>
    </message>
    <message>
        <source>Interrupted system call</source>
        <translation>Interrupted system call</translation>
    </message>
    <message>
        <source>Bad file descriptor</source>
        <translation>Bad file descriptor</translation>
    </message>
    <message>
        <source>Function not implemented</source>
        <translation>Function not implemented</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>Operation not supported</translation>
    </message>
    <message>
        <source>Value too large for defined data type</source>
        <translation>Value too large for defined data type</translation>
    </message>
    <message>
        <source>No locks available</source>
        <translation>No locks available</translation>
    </message>
    <message>
        <source>Resource deadlock avoided</source>
        <translation>Resource deadlock avoided</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>Stale file handle</translation>
    </message>
    <message>
        <source>Broken pipe</source>
        <translation>Broken pipe</translation>
    </message>
    <message>
        <source>No data available</source>
        <translation>No data available</translation>
    </message>
    <message>
        <source>Protocol error</source>
        <translation>Protocol error</translation>
    </message>
    <message>
        <source>Invalid or incomplete multibyte or wide character</source>
        <translation>Invalid or incomplete multibyte or wide character</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>Connection timed out</translation>
    </message>
    <message>
        <source>Transport endpoint is not connected</source>
        <translation>Transport endpoint is not connected</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Connection refused</translation>
    </message>
    <message>
        <source>Connection reset by peer</source>
        <translation>Connection reset by peer</translation>
    </message>
    <message>
        <source>Software caused connection abort</source>
        <translation>Software caused connection abort</translation>
    </message>
    <message>
        <source>Cannot send after transport endpoint shutdown</source>
        <translation>Cannot send after transport endpoint shutdown</translation>
    </message>
    <message>
        <source>Host is down</source>
        <translation>Host is down</translation>
    </message>
    <message>
        <source>No route to host</source>
        <translation>No route to host</translation>
    </message>
    <message>
        <source>Network is down</source>
        <translation>Network is down</translation>
    </message>
    <message>
        <source>Network is unreachable</source>
        <translation>Network is unreachable</translation>
    </message>
    <message>
        <source>Remote I/O error</source>
        <translation>Remote I/O error</translation>
    </message>
    <message>
        <source>Structure needs cleaning</source>
        <translation>Structure needs cleaning</translation>
    </message>
    <message>
        <source>No medium found</source>
        <translation>No medium found</translation>
    </message>
    <message>
        <source>Wrong medium type</source>
        <translation>Wrong medium type</translation>
    </message>
    <message>
        <source>Required key not available</source>
        <translation>Required key not available</translation>
    </message>
    <message>
        <source>Key has expired</source>
        <translation>Key has expired</translation>
    </message>
    <message>
        <source>Key has been revoked</source>
        <translation>Key has been revoked</translation>
    </message>
    <message>
        <source>Key was rejected by service</source>
        <translation>Key was rejected by service</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: there is a mistake in line %d, column %d. Mend it or move the file away, then reopen the app.</source>
        <translation>The older notes file “notes.json” cannot be read: there is a mistake in line %d, column %d. Mend it or move the file away, then reopen the app.</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” is missing. Mend it or move the file away, then reopen the app.</source>
        <translation>The older notes file “notes.json” cannot be read: “%@” is missing. Mend it or move the file away, then reopen the app.</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” comes twice. Mend it or move the file away, then reopen the app.</source>
        <translation>The older notes file “notes.json” cannot be read: “%@” comes twice. Mend it or move the file away, then reopen the app.</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” has a wrong value. Mend it or move the file away, then reopen the app.</source>
        <translation>The older notes file “notes.json” cannot be read: “%@” has a wrong value. Mend it or move the file away, then reopen the app.</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” is nested too deeply. Mend it or move the file away, then reopen the app.</source>
        <translation>The older notes file “notes.json” cannot be read: “%@” is nested too deeply. Mend it or move the file away, then reopen the app.</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” has version %d and cannot be read: “%@” is not as in version 1. Mend it or move the file away, then reopen the app.</source>
        <translation>The older notes file “notes.json” has version %d and cannot be read: “%@” is not as in version 1. Mend it or move the file away, then reopen the app.</translation>
    </message>
    <!-- The command line -->
    <message>
        <source>Usage: quillmark-notes COMMAND [ARGUMENT]…

Adds to Quillmark’s notes, finds and copies them, beside its window or without.

  add [TEXT]…          saves a note, without TEXT from the standard input
  list                 lists the notes, newest first
  search WORD…         lists the notes that hold the words
  show ID              prints one note; the beginning of ID is enough
  export FOLDER        copies every note into FOLDER
  import FILE…         saves each text file as a note
  check                says what is wrong with the notes; changes nothing

  --json               with list, search and show: as JSON
  --repair             with check: takes copies of notes in as notes; asks first
  --yes                with check --repair: does not ask
  --version            prints the version and ends
  --help               prints this and ends
</source>
        <translation>Usage: quillmark-notes COMMAND [ARGUMENT]…

Adds to Quillmark’s notes, finds and copies them, beside its window or without.

  add [TEXT]…          saves a note, without TEXT from the standard input
  list                 lists the notes, newest first
  search WORD…         lists the notes that hold the words
  show ID              prints one note; the beginning of ID is enough
  export FOLDER        copies every note into FOLDER
  import FILE…         saves each text file as a note
  check                says what is wrong with the notes; changes nothing

  --json               with list, search and show: as JSON
  --repair             with check: takes copies of notes in as notes; asks first
  --yes                with check --repair: does not ask
  --version            prints the version and ends
  --help               prints this and ends
</translation>
    </message>
    <message>
        <source>That is not how it is called. See: quillmark-notes --help</source>
        <translation>That is not how it is called. See: quillmark-notes --help</translation>
    </message>
    <message>
        <source>Type the note, then press Ctrl+D.</source>
        <translation>Type the note, then press Ctrl+D.</translation>
    </message>
    <message>
        <source>The standard input could not be read.</source>
        <translation>The standard input could not be read.</translation>
    </message>
    <message>
        <source>The text is too large for a note.</source>
        <translation>The text is too large for a note.</translation>
    </message>
    <message>
        <source>The text is not UTF-8.</source>
        <translation>The text is not UTF-8.</translation>
    </message>
    <message>
        <source>There is no text to save.</source>
        <translation>There is no text to save.</translation>
    </message>
    <message>
        <source>The output could not be written: %@</source>
        <translation>The output could not be written: %@</translation>
    </message>
    <message>
        <source>Saving the note…</source>
        <translation>Saving the note…</translation>
    </message>
    <message>
        <source>Reading notes…</source>
        <translation>Reading notes…</translation>
    </message>
    <message>
        <source>There is no note “%@”.</source>
        <translation>There is no note “%@”.</translation>
    </message>
    <message>
        <source>“%@” is the beginning of more than one note.</source>
        <translation>“%@” is the beginning of more than one note.</translation>
    </message>
    <message>
        <source>Exporting notes…</source>
        <translation>Exporting notes…</translation>
    </message>
    <message>
        <source>Importing notes…</source>
        <translation>Importing notes…</translation>
    </message>
    <message>
        <source>“%@” is too large for a note.</source>
        <translation>“%@” is too large for a note.</translation>
    </message>
    <message>
        <source>“%@” is not an ordinary file.</source>
        <translation>“%@” is not an ordinary file.</translation>
    </message>
    <message>
        <source>“%@” cannot be read: %@</source>
        <translation>“%@” cannot be read: %@</translation>
    </message>
    <message>
        <source>“%@” is not UTF-8 text.</source>
        <translation>“%@” is not UTF-8 text.</translation>
    </message>
    <message>
        <source>“%@” holds no text.</source>
        <translation>“%@” holds no text.</translation>
    </message>
    <message>
        <source>“%@” has a time that no note can have.</source>
        <translation>“%@” has a time that no note can have.</translation>
    </message>
    <message>
        <source>These files are more than the notes may hold.</source>
        <translation>These files are more than the notes may hold.</translation>
    </message>
    <message>
        <source>“%@” is in use by another Quillmark that cannot be asked to add notes. Quit that one, then try again.</source>
        <translation>“%@” is in use by another Quillmark that cannot be asked to add notes. Quit that one, then try again.</translation>
    </message>
    <message>
        <source>Quillmark runs but does not answer. Look whether it has saved the text before you try again.</source>
        <translation>Quillmark runs but does not answer. Look whether it has saved the text before you try again.</translation>
    </message>
    <message>
        <source>Looking through the notes…</source>
        <translation>Looking through the notes…</translation>
    </message>
    <message>
        <source>Nothing is wrong with the notes.</source>
        <translation>Nothing is wrong with the notes.</translation>
    </message>
    <message>
        <source>A file of another program. Quillmark leaves it alone.</source>
        <translation>A file of another program. Quillmark leaves it alone.</translation>
    </message>
    <message>
        <source>The lock of an editor that has a note open, or ended while it had.</source>
        <translation>The lock of an editor that has a note open, or ended while it had.</translation>
    </message>
    <message>
        <source>A conflict copy: a program that synchronises folders found two versions of a file. “quillmark-notes check --repair” makes notes of copies of notes; compare others and move them away.</source>
        <translation>A conflict copy: a program that synchronises folders found two versions of a file. “quillmark-notes check --repair” makes notes of copies of notes; compare others and move them away.</translation>
    </message>
    <message>
        <source>A program that synchronises folders shares this one. Quillmark exchanges it with a new one: share “Penwick” instead.</source>
        <translation>A program that synchronises folders shares this one. Quillmark exchanges it with a new one: share “Penwick” instead.</translation>
    </message>
    <message>
        <source>A conflict copy of a note, by %@.</source>
        <translation>A conflict copy of a note, by %@.</translation>
    </message>
    <message>
        <source>A conflict copy of a draft, by %@.</source>
        <translation>A conflict copy of a draft, by %@.</translation>
    </message>
    <message>
        <source>A recovery copy that another computer made.</source>
        <translation>A recovery copy that another computer made.</translation>
    </message>
    <message>
        <source>A recovery copy.</source>
        <translation>A recovery copy.</translation>
    </message>
    <message>
        <source>It becomes a note of its own.</source>
        <translation>It becomes a note of its own.</translation>
    </message>
    <message>
        <source>It becomes the note that is missing.</source>
        <translation>It becomes the note that is missing.</translation>
    </message>
    <message>
        <source>The notes hold its text already. It is put away.</source>
        <translation>The notes hold its text already. It is put away.</translation>
    </message>
    <message>
        <source>It is empty. It is put away.</source>
        <translation>It is empty. It is put away.</translation>
    </message>
    <message>
        <source>It is no text. It is put away.</source>
        <translation>It is no text. It is put away.</translation>
    </message>
    <message>
        <source>Texts that only it has become notes: %d.</source>
        <translation>Texts that only it has become notes: %d.</translation>
    </message>
    <message>
        <source>The notes hold all of its texts. It is put away.</source>
        <translation>The notes hold all of its texts. It is put away.</translation>
    </message>
    <message>
        <source>It is all there is of the notes, and gets their place.</source>
        <translation>It is all there is of the notes, and gets their place.</translation>
    </message>
    <message>
        <source>Another computer made this recovery copy.</source>
        <translation>Another computer made this recovery copy.</translation>
    </message>
    <message>
        <source>The swap file of an editor that has a note open, or ended while it had. It may hold text that is not saved.</source>
        <translation>The swap file of an editor that has a note open, or ended while it had. It may hold text that is not saved.</translation>
    </message>
    <message>
        <source>“%@” is in use by another Quillmark. Choose “Take in copies…” in its window, or quit it, then try again.</source>
        <translation>“%@” is in use by another Quillmark. Choose “Take in copies…” in its window, or quit it, then try again.</translation>
    </message>
    <message>
        <source>New notes: %d. The files listed are then kept in “%@”. Take them in? [y/N] </source>
        <translation>New notes: %d. The files listed are then kept in “%@”. Take them in? [y/N] </translation>
    </message>
    <message>
        <source>There is nothing that could be taken in.</source>
        <translation>There is nothing that could be taken in.</translation>
    </message>
    <message>
        <source>Nothing was changed. With --yes the files listed are taken in.</source>
        <translation>Nothing was changed. With --yes the files listed are taken in.</translation>
    </message>
    <message>
        <source>Taking in copies…</source>
        <translation>Taking in copies…</translation>
    </message>
    <message>
        <source>The files themselves are kept in “%@”.</source>
        <translation>The files themselves are kept in “%@”.</translation>
    </message>
    <message>
        <source>A synchronising program left copies of notes here. They are not among your notes yet.</source>
        <translation>A synchronising program left copies of notes here. They are not among your notes yet.</translation>
    </message>
    <message>
        <source>Take in copies…</source>
        <translation>Take in copies…</translation>
    </message>
    <message>
        <source>Take in copies?</source>
        <translation>Take in copies?</translation>
    </message>
    <message>
        <source>Take in</source>
        <translation>Take in</translation>
    </message>
    <message>
        <source>And %d more.</source>
        <translation>And %d more.</translation>
    </message>
    <message>
        <source>It keeps the notes from being loaded.</source>
        <translation>It keeps the notes from being loaded.</translation>
    </message>
    <message>
        <source>A backup file, as editors make them.</source>
        <translation>A backup file, as editors make them.</translation>
    </message>
    <message>
        <source>A copy of the folder “Markdown”.</source>
        <translation>A copy of the folder “Markdown”.</translation>
    </message>
    <message>
        <source>A copy of the folder “Drafts”.</source>
        <translation>A copy of the folder “Drafts”.</translation>
    </message>
    <message>
        <source>A copy of one note.</source>
        <translation>A copy of one note.</translation>
    </message>
    <message>
        <source>A copy of a draft, most often “capture.md”.</source>
        <translation>A copy of a draft, most often “capture.md”.</translation>
    </message>
    <message>
        <source>It cannot be read.</source>
        <translation>It cannot be read.</translation>
    </message>
    <message>
        <source>Only in the copy.</source>
        <translation>Only in the copy.</translation>
    </message>
    <message>
        <source>Not in the copy.</source>
        <translation>Not in the copy.</translation>
    </message>
    <message>
        <source>Different from that in the notes.</source>
        <translation>Different from that in the notes.</translation>
    </message>
    <message>
        <source>Not in the notes.</source>
        <translation>Not in the notes.</translation>
    </message>
    <message>
        <source>The same as the copy.</source>
        <translation>The same as the copy.</translation>
    </message>
    <message>
        <source>Different from the copy.</source>
        <translation>Different from the copy.</translation>
    </message>
    <message>
        <source>It names another format.</source>
        <translation>It names another format.</translation>
    </message>
    <message>
        <source>It is a draft of a note that is not there.</source>
        <translation>It is a draft of a note that is not there.</translation>
    </message>
    <message>
        <source>Its name is that of no draft.</source>
        <translation>Its name is that of no draft.</translation>
    </message>
    <message>
        <source>Its header is not that of a note.</source>
        <translation>Its header is not that of a note.</translation>
    </message>
    <message>
        <source>Its name is not the identifier in its header.</source>
        <translation>Its name is not the identifier in its header.</translation>
    </message>
    <message>
        <source>Another file is the same note.</source>
        <translation>Another file is the same note.</translation>
    </message>
    <!-- The keys -->
    <message>
        <source>Keys</source>
        <translation>Keys</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Fold the editor</source>
        <translation>Fold the editor</translation>
    </message>
    <message>
        <source>Search the notes</source>
        <translation>Search the notes</translation>
    </message>
    <message>
        <source>Write a new thought</source>
        <translation>Write a new thought</translation>
    </message>
    <message>
        <source>Go to the other tab</source>
        <translation>Go to the other tab</translation>
    </message>
    <message>
        <source>Go back to all notes</source>
        <translation>Go back to all notes</translation>
    </message>
    <message>
        <source>Delete the chosen note</source>
        <translation>Delete the chosen note</translation>
    </message>
    <message>
        <source>Show the keys</source>
        <translation>Show the keys</translation>
    </message>
</context>
</TS>
