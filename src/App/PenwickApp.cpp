// SPDX-License-Identifier: MIT
#include "PenwickApp.h"

#include "AccessibilityBus.h"
#include "AppPreferences.h"
#include "DisplayErrors.h"
#include "ProgramStyle.h"
#include "QuitAlert.h"
#include "RefusedStart.h"
#include "StandardDefaults.h"

#include <QEvent>
#include <QSessionManager>
#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {

std::unique_ptr<QApplication> makeApplication(int &argc, char **argv)
{
    QCoreApplication::setOrganizationName("Penwick"_L1);
    QCoreApplication::setApplicationName("Quillmark"_L1);
    QCoreApplication::setApplicationVersion(QLatin1StringView(QUILLMARK_VERSION));
    QGuiApplication::setDesktopFileName(QLatin1StringView(SingleInstance::busName));
    QApplication::setStyle(new ProgramStyle);

    const DisplayErrors untilItStands;
    return std::make_unique<QApplication>(argc, argv);
}

/// A text of the program; none where there is nothing to say.
QString whyRefused(SingleInstance::Claim claim)
{
    switch (claim) {
    case SingleInstance::Claim::granted:
    case SingleInstance::Claim::passedOn:
        return {};
    case SingleInstance::Claim::onOtherDisplay:
        return u"Quillmark is running on another display already. Go on there, or quit it first."_s;
    case SingleInstance::Claim::unanswered:
        return u"Quillmark is running already but does not answer. End it, then start it again."_s;
    case SingleInstance::Claim::taken:
        return u"Another program has taken Quillmark’s name on the session bus. End that program, then start Quillmark again."_s;
    }
    Q_UNREACHABLE();
}

} // namespace

PenwickApp::PenwickApp(int &argc, char **argv)
    : m_application(makeApplication(argc, argv))
    , m_delegate(&QuitAlert::isConfirmed)
{
    m_application->setQuitOnLastWindowClosed(
        m_delegate.applicationShouldTerminateAfterLastWindowClosed());
    m_application->installEventFilter(this);

    connect(&m_quitSignals, &QuitSignals::quitRequested, this, &PenwickApp::end);
    connect(&m_instance, &SingleInstance::activated, this, &PenwickApp::reopen);
    connect(&m_instance, &SingleInstance::newNoteRequested, this, &PenwickApp::showEditor);
    connect(&m_instance, &SingleInstance::notesRequested, &m_delegate, &AppDelegate::showNotes);
    connect(&m_instance, &SingleInstance::addressesOpened, &m_delegate, &AppDelegate::open);
    connect(&m_delegate, &AppDelegate::quitRequested, this, &PenwickApp::quit);
    // Direct: the session waits for this to return, and may yet go on afterwards.
    connect(m_application.get(), &QGuiApplication::commitDataRequest, this,
            &PenwickApp::commitSession, Qt::DirectConnection);
}

PenwickApp::~PenwickApp() = default;

int PenwickApp::run()
{
    const LaunchOptions options = LaunchOptions::ofThisProcess();
    m_isStartedByBus = options.isStartedByBus;
    if (!options.unknown.isEmpty())
        std::fprintf(stderr, "quillmark: unknown: %s (see quillmark --help)\n",
                     qUtf8Printable(options.unknown.join(u' ')));
    // A session that is restored and what starts with it, in either order, open nothing.
    const bool isOfSession = m_application->isSessionRestored() || options.isAutostart;
    const auto wish = isOfSession          ? SingleInstance::Wish::none
                      : options.showsNotes ? SingleInstance::Wish::showNotes
                                           : SingleInstance::Wish::open;
    // Interface tests and hosts of other code run beside the user's own program.
    const auto claim = options.mode == LaunchOptions::Mode::normal ? m_instance.claim(wish)
                                                                   : SingleInstance::Claim::granted;
    if (claim == SingleInstance::Claim::passedOn)
        return EXIT_SUCCESS;
    doWithoutSilentAccessibility();
    if (const QString why = whyRefused(claim); !why.isEmpty()) {
        const auto defaults = standardDefaults();
        const AppPreferences preferences(defaults.get());
        RefusedStart::tell({why, {}}, &preferences);
        return EXIT_FAILURE;
    }
    if (const auto refusal = m_delegate.applicationDidFinishLaunching(options)) {
        RefusedStart::tell(*refusal, m_delegate.preferences());
        return EXIT_FAILURE;
    }
    return QApplication::exec();
}

bool PenwickApp::eventFilter(QObject *receiver, QEvent *event)
{
    // The session manager ends the program this way; the panels have no say in it.
    if (receiver == m_application.get() && event->type() == QEvent::Quit) {
        end();
        return true;
    }
    return QObject::eventFilter(receiver, event);
}

void PenwickApp::reopen()
{
    if (!m_isStartedByBus || !m_instance.isHearingWhoStartedIt())
        showEditor();
}

void PenwickApp::showEditor()
{
    m_delegate.applicationShouldHandleReopen(true);
}

void PenwickApp::commitSession(QSessionManager &session)
{
    // The session is asked for leave to ask only when there is something to ask.
    if (m_delegate.applicationWillTerminate() || !session.allowsErrorInteraction())
        return;
    if (m_delegate.applicationShouldTerminate() == AppDelegate::TerminateReply::cancel)
        session.cancel();
    session.release();
}

void PenwickApp::quit()
{
    if (m_delegate.applicationShouldTerminate() == AppDelegate::TerminateReply::now)
        QCoreApplication::exit();
}

void PenwickApp::end()
{
    if (m_delegate.applicationWillTerminate()) {
        QCoreApplication::exit();
        return;
    }
    std::fprintf(stderr, "quillmark: %s\n", qUtf8Printable(m_delegate.keepForNextStart()));
    QCoreApplication::exit(EXIT_FAILURE);
}
