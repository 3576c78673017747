// SPDX-License-Identifier: MIT
#include "AppLanguage.h"

#include <QLocale>

using namespace Qt::Literals::StringLiterals;

QString rawValue(AppLanguage language)
{
    switch (language) {
    case AppLanguage::system:
        return u"system"_s;
    case AppLanguage::english:
        return u"en"_s;
    case AppLanguage::chinese:
        return u"zh-Hans"_s;
    }
    return {};
}

std::optional<AppLanguage> appLanguage(QStringView stored)
{
    for (const AppLanguage language : allAppLanguages) {
        if (rawValue(language) == stored)
            return language;
    }
    return std::nullopt;
}

QString label(AppLanguage language)
{
    switch (language) {
    case AppLanguage::system:
        return u"Follow system"_s;
    case AppLanguage::english:
        return u"English"_s;
    case AppLanguage::chinese:
        return u"简体中文"_s;
    }
    return {};
}

QString resolvedLanguage(AppLanguage language, const QStringList &systemLanguages)
{
    if (language != AppLanguage::system)
        return rawValue(language);
    const bool isChinese =
        !systemLanguages.isEmpty() && systemLanguages.first().startsWith(u"zh"_s);
    return rawValue(isChinese ? AppLanguage::chinese : AppLanguage::english);
}

QStringList systemLanguages()
{
    for (const char *const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QByteArray locale = qgetenv(variable);
        if (!locale.isEmpty())
            return locale == "C" || locale == "POSIX" ? QStringList()
                                                      : QLocale::system().uiLanguages();
    }
    return {};
}
