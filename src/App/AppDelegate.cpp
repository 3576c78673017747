// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "AccessibleIdentifiers.h"
#include "AppPreferences.h"
#include "ApplicationFocus.h"
#include "DesktopAppearance.h"
#include "FileError.h"
#include "FloatingPanelController.h"
#include "LocalNoteRepository.h"
#include "MemoryNoteRepository.h"
#include "NoteStore.h"
#include "NoteTheme.h"
#include "NotesService.h"
#include "PanelHints.h"
#include "RestingMemory.h"
#include "Screens.h"
#include "StandardDefaults.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QSettings>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The command line has the notes for milliseconds; another instance has them for good.
constexpr std::chrono::milliseconds longestClaim{500};

/// Null when another program has the notes for itself.
std::unique_ptr<NoteRepository> makeRepository(bool isInterfaceTest)
{
    if (isInterfaceTest)
        return std::make_unique<MemoryNoteRepository>();
    auto repository = std::make_unique<LocalNoteRepository>();
    if (!repository->claim(longestClaim))
        return nullptr;
    return repository;
}

std::filesystem::path dataFolder()
{
    return LocalNoteRepository::defaultFileURL().parent_path();
}

Message notesInUse()
{
    return FileError(dataFolder(), Reason::inUse).message();
}

} // namespace

AppDelegate::AppDelegate(QuitQuestion quitQuestion, QObject *parent)
    : QObject(parent)
    , m_quitQuestion(std::move(quitQuestion))
{
}

AppDelegate::~AppDelegate() = default;

std::optional<Message> AppDelegate::applicationDidFinishLaunching(const LaunchOptions &options)
{
    if (options.mode == LaunchOptions::Mode::hostOnly)
        return std::nullopt;
    const bool isInterfaceTest = options.mode == LaunchOptions::Mode::interfaceTest;

    m_defaults = standardDefaults();
    m_preferences = std::make_unique<AppPreferences>(isInterfaceTest ? nullptr : m_defaults.get(),
                                                     options.language, options.appearance);
    m_repository = makeRepository(isInterfaceTest);
    if (!m_repository)
        return notesInUse();
    // Before the program gives itself a palette, that of the platform tells light from dark.
    m_system = std::make_unique<DesktopAppearance>(NoteTheme::colorScheme(QApplication::palette()));
    m_screens = std::make_unique<DesktopScreens>();
    m_focus = std::make_unique<X11ApplicationFocus>();
    m_panels = std::make_unique<FloatingPanelController>(
        [this]() -> NoteStore & { return *store(); }, *m_preferences, *m_defaults, !isInterfaceTest,
        *m_system, *m_screens, *m_focus);
    connect(m_panels.get(), &FloatingPanelController::quitRequested, this,
            &AppDelegate::quitRequested);

    if (!isInterfaceTest)
        m_notes = std::make_unique<NotesService>(
            dataFolder(), [this](const QList<Note> &notes) { return store()->addNotes(notes); });

    m_identifiers = std::make_unique<AccessibleIdentifiers>();

    m_panels->launcher().show();
    m_panels->launcher().windowHandle()->installEventFilter(this);
    if (options.showsNotes)
        showNotes();
    else if (options.showsEditor)
        m_panels->expand();
    return std::nullopt;
}

NoteStore *AppDelegate::store()
{
    if (m_repository)
        m_store = std::make_unique<NoteStore>(std::move(m_repository));
    return m_store.get();
}

bool AppDelegate::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() == QEvent::Expose) {
        receiver->removeEventFilter(this);
        // Queued: the launcher is painted while it is exposed.
        QMetaObject::invokeMethod(this, &AppDelegate::comeToRest, Qt::QueuedConnection);
    }
    return QObject::eventFilter(receiver, event);
}

void AppDelegate::comeToRest()
{
    static_cast<void>(store());
    giveMemoryBack();
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/)
{
    if (QWidget *const question = QApplication::activeModalWidget()) {
        PanelHints::activate(*question);
        return false;
    }
    // An open menu would keep the keys.
    while (QWidget *const menu = QApplication::activePopupWidget())
        menu->close();
    if (m_panels)
        m_panels->expand();
    return false;
}

void AppDelegate::showNotes()
{
    applicationShouldHandleReopen(true);
    if (m_panels)
        m_panels->showNotes();
}

void AppDelegate::open(const QStringList &addresses)
{
    if (m_panels)
        m_panels->take(DroppedText::fromAddresses(addresses));
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate()
{
    if (applicationWillTerminate())
        return TerminateReply::now;
    return m_quitQuestion(m_preferences.get()) ? TerminateReply::now : TerminateReply::cancel;
}

bool AppDelegate::applicationWillTerminate()
{
    // What another program changed meanwhile is none of what the user would lose.
    return !m_panels || m_panels->write() || !store()->hasPendingChanges();
}

QString AppDelegate::keepForNextStart()
{
    const std::optional<Message> reason = store()->failure();
    const std::optional<std::filesystem::path> path = store()->keepForNextStart();
    const Message told =
        path
            ? Message{u"What was typed could not be saved, and is kept in “%@” for the next start."_s,
                      {QFile::decodeName(path->c_str())}}
            : Message{u"What was typed could not be saved."_s, {}};
    return m_preferences->text(told) + u' ' + (reason ? m_preferences->text(*reason) : QString());
}
