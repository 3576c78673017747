// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

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

    enum class Claim {
        /// This process is the one: it owns the name from here on, or there is no session bus.
        granted,
        /// Another one runs, and shows its editor.
        passedOn,
        /// Another one has the name and does not answer within 1.5 seconds.
        unanswered,
        /// A program that is not this one has the name.
        taken,
    };

    /// The one that runs already is asked for that action of the desktop entry; without a name, to
    /// show itself.
    [[nodiscard]] Claim claim(const QString &action = {});

Q_SIGNALS:
    /// A second start, or the desktop, asks for the program.
    void activated();

    /// The desktop's menu asks for a new note, even if it had to start the program for it.
    void newNoteRequested();

    /// The desktop's menu or a second start asks for the list of notes.
    void notesRequested();

private:
    const QVariantMap m_startupData;
};
