// SPDX-License-Identifier: MIT
#pragma once

class AppPreferences;
class QString;

/// Tells the user why a start comes to nothing, as a sentence on the standard error. Where neither
/// a terminal nor a pipe takes that, as when the desktop started the program, an alert says it, and
/// is waited for.
///
/// The sentence is a text of the program, before translation.
void tellWhyNotStarted(const QString &sentence, const AppPreferences &preferences);
