// SPDX-License-Identifier: MIT
#include "RefusedStart.h"

#include "AppPreferences.h"
#include "PanelHints.h"

#include <QPushButton>
#include <QTimer>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

RefusedStart::RefusedStart(const Message &reason, const AppPreferences *preferences)
{
    setWindowTitle(u"Quillmark"_s);
    setIcon(Information);
    setText(preferences ? preferences->text(reason) : reason.english());
    // A path is no rich text, whatever it holds.
    setTextFormat(Qt::PlainText);
    addButton(preferences ? preferences->text(u"OK"_s) : u"OK"_s, AcceptRole);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    QTimer::singleShot(longestTime, this, &QDialog::accept);
}

void RefusedStart::tell(const Message &reason, const AppPreferences *preferences)
{
    const QString told = preferences ? preferences->text(reason) : reason.english();
    std::fprintf(stderr, "%s\n", told.toLocal8Bit().constData());
    if (isRead(STDERR_FILENO))
        return;
    RefusedStart alert(reason, preferences);
    alert.show();
    PanelHints::activate(alert);
    alert.exec();
}

bool RefusedStart::isRead(int descriptor) noexcept
{
    struct stat status {};
    return ::isatty(descriptor) == 1 ||
           (::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode));
}
