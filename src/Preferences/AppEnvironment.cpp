// SPDX-License-Identifier: MIT
#include "AppEnvironment.h"

#include "AppPreferences.h"
#include "NoteTheme.h"
#include "SystemAppearance.h"
#include "TextStyle.h"

#include <QEvent>
#include <QToolTip>
#include <QVBoxLayout>

AppEnvironment::AppEnvironment(AppPreferences &preferences, SystemAppearance &system,
                               QWidget *parent)
    : ViewEnvironment(parent)
    , m_preferences(preferences)
    , m_system(system)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});

    connect(&m_preferences, &AppPreferences::languageChanged, this, &AppEnvironment::announce);
    connect(&m_preferences, &AppPreferences::appearanceChanged, this, &AppEnvironment::announce);
    connect(&m_system, &SystemAppearance::changed, this, &AppEnvironment::announce);

    apply();
}

void AppEnvironment::setContent(QWidget *content)
{
    layout()->addWidget(content);
}

ColorScheme AppEnvironment::colorScheme() const
{
    return ::colorScheme(m_preferences.appearance(), m_system.colorScheme());
}

bool AppEnvironment::reduceMotion() const
{
    return m_system.reduceMotion();
}

bool AppEnvironment::reduceTransparency() const
{
    return m_system.reduceTransparency();
}

bool AppEnvironment::event(QEvent *event)
{
    // Sent to every window when the desktop's language changes.
    if (event->type() == QEvent::LanguageChange)
        m_preferences.setSystemLanguages(systemLanguages());
    return ViewEnvironment::event(event);
}

void AppEnvironment::apply()
{
    const QPalette palette = NoteTheme::palette(
        colorScheme(), m_system.highContrast() ? Contrast::high : Contrast::normal);
    setLocale(m_preferences.locale());
    // Whatever shows a text takes the font of its style. To look for families here would load the
    // fonts for a launcher that shows none.
    QFont font = this->font();
    font.setPixelSize(TextStyles::environment.pixelSize);
    setFont(font);
    setPalette(palette);
    // Tooltips are windows of their own, with one palette for the whole program.
    QToolTip::setPalette(palette);
    // Surfaces also look at what no palette carries.
    update();
}

void AppEnvironment::announce()
{
    apply();
    Q_EMIT changed();
}
