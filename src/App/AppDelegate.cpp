// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "AppPreferences.h"
#include "ApplicationFocus.h"
#include "DesktopAppearance.h"
#include "FloatingPanelController.h"
#include "LocalNoteRepository.h"
#include "MemoryNoteRepository.h"
#include "NoteStore.h"
#include "NoteTheme.h"
#include "Screens.h"
#include "StandardDefaults.h"

#include <QFile>
#include <QGuiApplication>
#include <QInputMethod>
#include <QPalette>
#include <QSettings>

namespace {

std::unique_ptr<NoteRepository> makeRepository(bool isInterfaceTest)
{
    if (isInterfaceTest)
        return std::make_unique<MemoryNoteRepository>();
    return std::make_unique<LocalNoteRepository>();
}

} // namespace

AppDelegate::AppDelegate(QuitQuestion quitQuestion, QObject *parent)
    : QObject(parent)
    , m_quitQuestion(std::move(quitQuestion))
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(const LaunchOptions &options)
{
    if (options.mode == LaunchOptions::Mode::hostOnly)
        return;
    const bool isInterfaceTest = options.mode == LaunchOptions::Mode::interfaceTest;

    m_defaults = standardDefaults();
    m_preferences = std::make_unique<AppPreferences>(isInterfaceTest ? nullptr : m_defaults.get(),
                                                     options.language, options.appearance);
    m_store = std::make_unique<NoteStore>(makeRepository(isInterfaceTest));
    // Before the program gives itself a palette, that of the platform tells light from dark.
    m_system =
        std::make_unique<DesktopAppearance>(NoteTheme::colorScheme(QGuiApplication::palette()));
    m_screens = std::make_unique<DesktopScreens>();
    m_focus = std::make_unique<X11ApplicationFocus>();
    m_panels = std::make_unique<FloatingPanelController>(
        *m_store, *m_preferences, *m_defaults, !isInterfaceTest, *m_system, *m_screens, *m_focus);
    connect(m_panels.get(), &FloatingPanelController::quitRequested, this,
            &AppDelegate::quitRequested);

    m_panels->launcher().show();
    if (options.showsEditor)
        m_panels->expand();
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/)
{
    if (m_panels)
        m_panels->expand();
    return false;
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate()
{
    if (applicationWillTerminate())
        return TerminateReply::now;
    return m_quitQuestion(m_preferences.get()) ? TerminateReply::now : TerminateReply::cancel;
}

bool AppDelegate::applicationWillTerminate()
{
    return !m_store || m_store->isReadOnly() || writeNow();
}

QString AppDelegate::keepForNextStart()
{
    const QString reason = m_store->errorMessage().value_or(QString());
    const std::optional<std::filesystem::path> path = m_store->keepForNextStart();
    if (!path)
        return u"What was typed could not be saved. "_s + reason;
    return u"What was typed could not be saved, and is kept in “%1” for the next start. "_s.arg(
               QFile::decodeName(path->c_str())) +
           reason;
}

bool AppDelegate::writeNow()
{
    // What an input method is still composing belongs to the text.
    QGuiApplication::inputMethod()->commit();
    return m_store->flush();
}
