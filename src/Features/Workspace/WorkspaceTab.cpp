// SPDX-License-Identifier: MIT
#include "WorkspaceTab.h"

using namespace Qt::Literals::StringLiterals;

QString rawValue(WorkspaceTab tab)
{
    switch (tab) {
    case WorkspaceTab::capture:
        return u"Capture"_s;
    case WorkspaceTab::library:
        return u"Notes"_s;
    }
    Q_UNREACHABLE();
}

QString identifier(WorkspaceTab tab)
{
    switch (tab) {
    case WorkspaceTab::capture:
        return u"captureTab"_s;
    case WorkspaceTab::library:
        return u"libraryTab"_s;
    }
    Q_UNREACHABLE();
}
