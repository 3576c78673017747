// SPDX-License-Identifier: MIT
#pragma once

#include "AppAppearance.h"
#include "AppLanguage.h"
#include "Message.h"

#include <QHash>
#include <QLocale>
#include <QObject>
#include <QStringList>
#include <QTranslator>
#include <map>
#include <optional>

class QSettings;

/// The user's two choices, and the translation of every text of the program.
///
/// The English text is the key. A text without a translation is shown as written. The tables are
/// "en.lproj/Localizable.qm" and "zh-Hans.lproj/Localizable.qm" in the resources folder; each is
/// read when its first text is asked for. What was translated is remembered while the language
/// stays the same, and the system is asked for its languages once, until they change.
class AppPreferences final : public QObject {
    Q_OBJECT

public:
    static constexpr auto languageKey = "ui.language";
    static constexpr auto appearanceKey = "ui.appearance";

    /// Without defaults the choices are kept in memory only. A given language or appearance is
    /// used instead of the stored one and is not stored. Nothing is written here.
    explicit AppPreferences(QSettings *defaults, std::optional<AppLanguage> language = std::nullopt,
                            std::optional<AppAppearance> appearance = std::nullopt,
                            QObject *parent = nullptr,
                            const QString &resourcesFolder = defaultResourcesFolder());

    /// "share/quillmark" beside the folder of the program, so that an installed tree can be moved.
    [[nodiscard]] static QString defaultResourcesFolder();

    [[nodiscard]] AppLanguage language() const noexcept { return m_language; }
    [[nodiscard]] AppAppearance appearance() const noexcept { return m_appearance; }

    /// "en" or "zh-Hans".
    [[nodiscard]] QString resolvedLanguage() const;

    /// The locale of resolvedLanguage(), for dates, numbers and right marks.
    [[nodiscard]] QLocale locale() const;

    [[nodiscard]] QString text(const QString &key) const;
    [[nodiscard]] QString format(const QString &key, const QList<FormatArgument> &arguments) const;
    [[nodiscard]] QString text(const Message &message) const
    {
        return format(message.key, message.arguments);
    }

    /// In place of what systemLanguages() gave when it was first needed.
    void setSystemLanguages(const QStringList &languages);

    /// Both store both choices, unless the settings are locked, and emit didChange(), also when the
    /// value stays the same.
    void setLanguage(AppLanguage language);
    void setAppearance(AppAppearance appearance);

Q_SIGNALS:
    /// Also when the system's languages are others and the user follows the system.
    void languageChanged();
    void appearanceChanged();

    /// "QuillmarkPreferencesChanged": a choice was made, whether or not it differs.
    void didChange();

private:
    void persist();
    [[nodiscard]] QString resolved(AppLanguage language) const;
    [[nodiscard]] QString translated(const QString &key) const;
    [[nodiscard]] const QTranslator &table(const QString &language) const;

    QSettings *const m_defaults;
    const QString m_resourcesFolder;
    mutable std::map<QString, QTranslator> m_tables;
    mutable std::optional<QStringList> m_systemLanguages; ///< Once they were asked for.
    mutable QHash<QString, QString> m_texts;              ///< By key, in resolvedLanguage().
    AppLanguage m_language;
    AppAppearance m_appearance;
};
