// SPDX-License-Identifier: MIT
#include "QuitAlert.h"

#include "AppPreferences.h"

#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

QuitAlert::QuitAlert(const AppPreferences *preferences)
    : ProgramAlert(preferences)
{
    const auto text = [preferences](const QString &key) {
        return preferences ? preferences->text(key) : key;
    };

    setText(text(u"Some changes could not be saved"_s));
    setInformativeText(text(u"Return and retry, or copy your text first. Quitting now will lose "
                            u"changes that could not be written."_s));
    auto *const returnToNotes = addButton(text(u"Return to notes"_s), AcceptRole);
    m_quitAnyway = addButton(text(u"Quit anyway"_s), DestructiveRole);
    setDefaultButton(returnToNotes);
    setEscapeButton(returnToNotes);
}

bool QuitAlert::confirmsQuitting()
{
    ask();
    return clickedButton() == m_quitAnyway;
}

bool QuitAlert::isConfirmed(const AppPreferences *preferences)
{
    return QuitAlert(preferences).confirmsQuitting();
}
