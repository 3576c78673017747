// SPDX-License-Identifier: MIT
#include "PreferencesMenu.h"

#include "AccessibleRole.h"
#include "AppPreferences.h"
#include "FocusRing.h"
#include "Keys.h"
#include "Metrics.h"
#include "Named.h"
#include "Symbol.h"
#include "TextStyle.h"
#include "ThemedMenu.h"

#include <QActionGroup>
#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

/// One exclusive action per value, in their order. `choose` also hears of the value that is
/// already chosen.
template <typename Values, typename Choose>
void addChoices(QMenu *menu, const Values &values, Choose choose)
{
    auto *group = new QActionGroup(menu);
    for (const auto value : values) {
        QAction *action = menu->addAction(label(value));
        action->setObjectName(rawValue(value));
        action->setCheckable(true);
        group->addAction(action);
        QObject::connect(action, &QAction::triggered, menu, [=] { choose(value); });
    }
}

template <typename Values, typename Value>
void renderChoices(const QMenu *menu, const Values &values, Value chosen,
                   const AppPreferences &preferences)
{
    for (const auto value : values) {
        auto *action = menu->findChild<QAction *>(rawValue(value));
        action->setText(preferences.text(label(value)));
        action->setChecked(value == chosen);
    }
}

} // namespace

PreferencesMenu::PreferencesMenu(AppPreferences &preferences, NotesFolder notesFolder,
                                 QWidget *parent)
    : QPushButton(parent)
    , m_preferences(preferences)
    , m_notesFolder(std::move(notesFolder))
    , m_menu(named(u"preferencesMenuItems"_s, new ThemedMenu(this)))
    , m_languages(named(u"languageMenu"_s, new ThemedMenu(m_menu)))
    , m_appearances(named(u"appearanceMenu"_s, new ThemedMenu(m_menu)))
    , m_divider(new QAction(this))
    , m_showFolder(new QAction(this))
{
    setIdentifier(this, u"preferencesMenu"_s);
    setFocusPolicy(Qt::TabFocus);
    FocusRing::watch(this);
    setFixedSize(Metrics::preferencesButton);
    setMenu(m_menu);
    m_menu->addMenu(m_languages);
    m_menu->addMenu(m_appearances);
    m_divider->setSeparator(true);
    m_showFolder->setObjectName(u"showFolder"_s);
    addChoices(m_languages, allAppLanguages,
               [this](AppLanguage language) { m_preferences.setLanguage(language); });
    addChoices(m_appearances, allAppAppearances,
               [this](AppAppearance appearance) { m_preferences.setAppearance(appearance); });

    connect(m_menu, &QMenu::aboutToShow, this, &PreferencesMenu::render);
    connect(&m_preferences, &AppPreferences::didChange, this, &PreferencesMenu::render);
    connect(m_showFolder, &QAction::triggered, this, &PreferencesMenu::requestFolder);

    render();
}

QSize PreferencesMenu::sizeHint() const
{
    return Metrics::preferencesButton;
}

void PreferencesMenu::requestFolder()
{
    if (const std::optional<QUrl> folder = m_notesFolder())
        Q_EMIT showFolderRequested(*folder);
}

void PreferencesMenu::render()
{
    setToolTip(m_preferences.text(u"Preferences"_s));
    setAccessibleText(this, m_preferences.text(u"Preferences"_s));
    m_languages->setTitle(m_preferences.text(u"Language"_s));
    m_appearances->setTitle(m_preferences.text(u"Appearance"_s));
    renderChoices(m_languages, allAppLanguages, m_preferences.language(), m_preferences);
    renderChoices(m_appearances, allAppAppearances, m_preferences.appearance(), m_preferences);

    m_menu->removeAction(m_divider);
    m_menu->removeAction(m_showFolder);
    if (m_notesFolder()) {
        m_showFolder->setText(m_preferences.text(u"Show Markdown files"_s));
        m_menu->addActions({m_divider, m_showFolder});
    }
}

void PreferencesMenu::keyPressEvent(QKeyEvent *event)
{
    // Space opens the menu by itself; with Ctrl or Super the Return key saves the note.
    const bool isPlain = !Keys::modifiers(*event);
    if (isPlain && (Keys::isReturn(*event) || event->key() == Qt::Key_Down))
        showMenu();
    else
        QPushButton::keyPressEvent(event);
}

void PreferencesMenu::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Symbol::paint(painter, rect(), u"slider.horizontal.3"_s, TextStyles::preferencesIcon.pixelSize,
                  NoteTheme::color(palette(), TextStyles::preferencesIcon.tone),
                  TextStyles::preferencesIcon.weight);
    FocusRing::paint(painter, this, rect(), Metrics::focusRingRadius);
}
