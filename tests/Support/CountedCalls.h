// SPDX-License-Identifier: MIT
#pragma once

#include "AppPreferences.h"
#include "DateText.h"

#include <QStringList>
#include <utility>

/// What the views of a program ask for while they are at work.
///
/// The linker hands over what they call, so that nothing in the program has to count: what includes
/// this, once in a program, is linked with count_calls(target).
namespace CountedCalls {

struct Counts {
    QStringList texts; ///< Keys that were to be translated.
    int dates = 0;
    int systemLanguages = 0;
};

inline Counts &counts()
{
    static Counts counts;
    return counts;
}

inline Counts take()
{
    return std::exchange(counts(), {});
}

} // namespace CountedCalls

using CountedArguments = QList<FormatArgument>;

QString realText(const AppPreferences *self,
                 const QString &key) __asm__("__real__ZNK14AppPreferences4textERK7QString");
QString countedText(const AppPreferences *self,
                    const QString &key) __asm__("__wrap__ZNK14AppPreferences4textERK7QString");
QString realFormat(
    const AppPreferences *self, const QString &key,
    const CountedArguments
        &arguments) __asm__("__real__ZNK14AppPreferences6formatERK7QStringRK5QListISt7variantIJxS0_"
                            "6PhraseEEE");
QString countedFormat(
    const AppPreferences *self, const QString &key,
    const CountedArguments
        &arguments) __asm__("__wrap__ZNK14AppPreferences6formatERK7QStringRK5QListISt7variantIJxS0_"
                            "6PhraseEEE");
QString
realDate(Timestamp time, DateStyle style,
         const QString &language) __asm__("__real__Z8dateText9Timestamp9DateStyleRK7QString");
QString
countedDate(Timestamp time, DateStyle style,
            const QString &language) __asm__("__wrap__Z8dateText9Timestamp9DateStyleRK7QString");
QStringList realSystemLanguages() __asm__("__real__Z15systemLanguagesv");
QStringList countedSystemLanguages() __asm__("__wrap__Z15systemLanguagesv");

QString countedText(const AppPreferences *self, const QString &key)
{
    CountedCalls::counts().texts.append(key);
    return realText(self, key);
}

QString countedFormat(const AppPreferences *self, const QString &key,
                      const CountedArguments &arguments)
{
    CountedCalls::counts().texts.append(key);
    return realFormat(self, key, arguments);
}

QString countedDate(Timestamp time, DateStyle style, const QString &language)
{
    ++CountedCalls::counts().dates;
    return realDate(time, style, language);
}

QStringList countedSystemLanguages()
{
    ++CountedCalls::counts().systemLanguages;
    return realSystemLanguages();
}
