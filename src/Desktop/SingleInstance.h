// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

class QDBusMessage;

/// One running program per session, found by its name on the session bus, where it offers
/// org.freedesktop.Application.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    static constexpr auto busName = "org.quillmark.Quillmark";
    static constexpr auto objectPath = "/org/quillmark/Quillmark";

    /// The action of the desktop entry that opens the list of notes.
    static constexpr auto showNotes = "show-notes";

    /// Construct it before the application object, which takes from the environment what the
    /// desktop says about this start.
    explicit SingleInstance(QObject *parent = nullptr);

    /// What a call is refused with that comes from another display than the program's.
    static constexpr auto otherDisplayError = "org.quillmark.Quillmark.Error.OtherDisplay";

    /// What to ask of another one that runs.
    enum class Wish {
        open,
        /// That it shows the list of notes.
        showNotes,
        /// Nothing: no user wants anything.
        none,
    };

    enum class Claim {
        /// This process is the one: it owns the name from here on, or there is no session bus.
        granted,
        /// Another one runs, and does what was wished.
        passedOn,
        /// Another one runs, where this user does not see it.
        onOtherDisplay,
        /// Another one has the name and does not answer within 1.5 seconds.
        unanswered,
        /// A program that is not this one has the name.
        taken,
    };

    [[nodiscard]] Claim claim(Wish wish = Wish::open);

    /// What is told now was sent before the name was claimed: by who had the bus start this program
    /// for it.
    [[nodiscard]] bool isHearingWhoStartedIt() const noexcept { return m_isHearingWhoStartedIt; }

    /// Whether a second start was made on another display than this one's.
    [[nodiscard]] bool isForOtherDisplay(const QVariantMap &startupData) const;

Q_SIGNALS:
    /// A second start, or the desktop, asks for the program.
    void activated();

    /// These are to become a note, even if the desktop had to start the program for it.
    void addressesOpened(const QStringList &addresses);

    /// The desktop's menu asks for a new note, even if it had to start the program for it.
    void newNoteRequested();

    /// The desktop's menu or a second start asks for the list of notes.
    void notesRequested();

private:
    [[nodiscard]] QDBusMessage callFor(Wish wish) const;
    [[nodiscard]] bool takeName();
    void hearWhoStartedIt();

    const QVariantMap m_startupData;
    bool m_isHearingWhoStartedIt = false;
};
