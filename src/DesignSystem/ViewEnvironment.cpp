// SPDX-License-Identifier: MIT
#include "ViewEnvironment.h"

ViewEnvironment *ViewEnvironment::of(const QWidget *view)
{
    for (QWidget *above = view ? view->parentWidget() : nullptr; above;
         above = above->parentWidget()) {
        if (auto *environment = qobject_cast<ViewEnvironment *>(above))
            return environment;
    }
    return nullptr;
}
