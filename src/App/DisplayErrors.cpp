// SPDX-License-Identifier: MIT
#include "DisplayErrors.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

/// The only way from a message handler, which is a plain function, to the object.
QStringList heldBack;

void holdBack(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtFatalMsg) {
        heldBack << qFormatLogMessage(type, context, message);
        return;
    }
    std::fputs(
        "Quillmark cannot open a display. Start it in a graphical session, or set DISPLAY.\n",
        stderr);
    _exit(EXIT_FAILURE);
}

} // namespace

DisplayErrors::DisplayErrors()
{
    qInstallMessageHandler(&holdBack);
}

DisplayErrors::~DisplayErrors()
{
    qInstallMessageHandler(nullptr);
    for (const QString &message : std::as_const(heldBack))
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
    heldBack.clear();
}
