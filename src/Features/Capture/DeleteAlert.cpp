// SPDX-License-Identifier: MIT
#include "DeleteAlert.h"

#include "AppPreferences.h"
#include "Metrics.h"
#include "TextStyle.h"

using namespace Qt::Literals::StringLiterals;

DeleteAlert::DeleteAlert(const AppPreferences &preferences, QWidget *window)
    : AlertCard(preferences, TextStyles::alertDelete, Metrics::alertMostLines, window)
{
    nameParts(u"deleteAlert"_s, u"cancelDelete"_s, u"confirmDelete"_s);
    connect(&preferences, &AppPreferences::languageChanged, this, &DeleteAlert::render);
    render();
}

void DeleteAlert::render()
{
    present(
        {preferences().text(u"Delete this note?"_s),
         preferences().text(
             u"This removes the note and its editing draft from this Mac. You cannot undo this in the app."_s),
         preferences().text(u"Cancel"_s), preferences().text(u"Delete"_s)});
}
