// SPDX-License-Identifier: MIT
#include "RefusedStart.h"

#include "AppPreferences.h"

#include <QMessageBox>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A desktop gives its programs a journal, a file or nothing for their errors.
bool isStandardErrorRead()
{
    struct stat status {};
    return ::isatty(STDERR_FILENO) == 1 ||
           (::fstat(STDERR_FILENO, &status) == 0 && S_ISFIFO(status.st_mode));
}

} // namespace

void tellWhyNotStarted(const QString &sentence, const AppPreferences &preferences)
{
    const QString told = preferences.text(sentence);
    std::fprintf(stderr, "%s\n", told.toLocal8Bit().constData());
    if (isStandardErrorRead())
        return;
    QMessageBox alert;
    alert.setWindowTitle(u"Quillmark"_s);
    alert.setIcon(QMessageBox::Warning);
    alert.setText(told);
    alert.addButton(preferences.text(u"OK"_s), QMessageBox::AcceptRole);
    // Nothing else of the program is on screen that would show where it is.
    alert.setWindowFlag(Qt::WindowStaysOnTopHint);
    alert.exec();
}
