// SPDX-License-Identifier: MIT
#include "RefusedStart.h"

#include "AppAppearance.h"
#include "AppPreferences.h"
#include "NoteTheme.h"

#include <QApplication>
#include <QPushButton>
#include <QTimer>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

RefusedStart::RefusedStart(const Message &reason, const AppPreferences *preferences)
    : ProgramAlert(preferences)
{
    setText(preferences ? preferences->text(reason) : reason.english());
    // A path is no rich text, whatever it holds.
    setTextFormat(Qt::PlainText);
    addButton(preferences ? preferences->text(u"OK"_s) : u"OK"_s, AcceptRole);
    QTimer::singleShot(longestTime, this, &QDialog::accept);
}

void RefusedStart::tell(const Message &reason, const AppPreferences *preferences)
{
    const QString told = preferences ? preferences->text(reason) : reason.english();
    std::fprintf(stderr, "%s\n", told.toLocal8Bit().constData());
    if (isRead(STDERR_FILENO))
        return;
    const ColorScheme system = NoteTheme::colorScheme(QApplication::palette());
    QApplication::setPalette(
        NoteTheme::palette(preferences ? colorScheme(preferences->appearance(), system) : system));
    RefusedStart(reason, preferences).ask();
}

bool RefusedStart::isRead(int descriptor) noexcept
{
    struct stat status {};
    return ::isatty(descriptor) == 1 ||
           (::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode));
}
