// SPDX-License-Identifier: MIT
#include "AppPreferences.h"

#include "SettingsLock.h"

#include <QCoreApplication>
#include <QSettings>

using namespace Qt::Literals::StringLiterals;

namespace {

QString stored(const QSettings *defaults, const char *key)
{
    return defaults ? defaults->value(QLatin1StringView(key)).toString() : QString();
}

} // namespace

AppPreferences::AppPreferences(QSettings *defaults, std::optional<AppLanguage> language,
                               std::optional<AppAppearance> appearance, QObject *parent,
                               const QString &resourcesFolder)
    : QObject(parent)
    , m_defaults(defaults)
    , m_resourcesFolder(resourcesFolder)
    , m_language(language
                     ? *language
                     : appLanguage(stored(defaults, languageKey)).value_or(AppLanguage::system))
    , m_appearance(
          appearance
              ? *appearance
              : appAppearance(stored(defaults, appearanceKey)).value_or(AppAppearance::system))
{
}

QString AppPreferences::defaultResourcesFolder()
{
    return QCoreApplication::applicationDirPath() + u"/../share/quillmark"_s;
}

QString AppPreferences::resolvedLanguage() const
{
    return resolved(m_language);
}

QString AppPreferences::resolved(AppLanguage language) const
{
    if (!m_systemLanguages)
        m_systemLanguages = systemLanguages();
    return ::resolvedLanguage(language, *m_systemLanguages);
}

QLocale AppPreferences::locale() const
{
    return QLocale(resolvedLanguage());
}

QString AppPreferences::text(const QString &key) const
{
    auto known = m_texts.constFind(key);
    if (known == m_texts.constEnd())
        known = m_texts.insert(key, translated(key));
    return *known;
}

QString AppPreferences::translated(const QString &key) const
{
    const QTranslator *translations = &table(resolvedLanguage());
    if (translations->isEmpty())
        translations = &table(resolved(AppLanguage::system));
    const QString translation = translations->translate("Localizable", key.toUtf8().constData());
    return translation.isNull() ? key : translation;
}

QString AppPreferences::format(const QString &key, const QList<FormatArgument> &arguments) const
{
    QList<FormatArgument> translated = arguments;
    for (FormatArgument &argument : translated) {
        if (const auto *phrase = std::get_if<Phrase>(&argument))
            argument = text(phrase->key);
    }
    return formatted(text(key), translated, locale());
}

void AppPreferences::setSystemLanguages(const QStringList &languages)
{
    const QString before = resolvedLanguage();
    m_systemLanguages = languages;
    m_texts.clear();
    if (resolvedLanguage() != before)
        Q_EMIT languageChanged();
}

void AppPreferences::setLanguage(AppLanguage language)
{
    if (m_language != language) {
        m_language = language;
        m_texts.clear();
        Q_EMIT languageChanged();
    }
    persist();
}

void AppPreferences::setAppearance(AppAppearance appearance)
{
    if (m_appearance != appearance) {
        m_appearance = appearance;
        Q_EMIT appearanceChanged();
    }
    persist();
}

void AppPreferences::persist()
{
    if (m_defaults && isLockFree(*m_defaults)) {
        m_defaults->setValue(QLatin1StringView(languageKey), rawValue(m_language));
        m_defaults->setValue(QLatin1StringView(appearanceKey), rawValue(m_appearance));
        m_defaults->sync();
    }
    Q_EMIT didChange();
}

const QTranslator &AppPreferences::table(const QString &language) const
{
    const auto known = m_tables.find(language);
    if (known != m_tables.end())
        return known->second;
    QTranslator &table = m_tables[language];
    // A missing table stays empty, and every text is then shown as written.
    [[maybe_unused]] const bool isRead =
        table.load(m_resourcesFolder + u'/' + language + u".lproj/Localizable.qm"_s);
    return table;
}
