// SPDX-License-Identifier: MIT
#pragma once

/// While it lives, a display that cannot be opened is one sentence on the standard error and exit
/// status 1, where Qt would abort with a core dump and a page about plugins. Other messages are
/// held back until it is gone, and are lost in that sentence.
class DisplayErrors {
public:
    DisplayErrors();
    DisplayErrors(const DisplayErrors &) = delete;
    DisplayErrors &operator=(const DisplayErrors &) = delete;
    ~DisplayErrors();
};
