// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QList>
#include <memory>
#include <xcb/xcb.h>

class QMimeData;

/// A question to the owner of a selection, and its answer: ICCCM 2.0, "Peer-to-Peer Communication
/// by Means of Selections". Internal to Desktop.
///
/// It has a connection to the X server of its own, so that what arrives there is nobody else's. An
/// owner that does nothing for a second is given up, and so is one that sends more than 256 MiB.
class SelectionTransfer {
public:
    enum class Question {
        kinds, ///< Whether there is text.
        text,  ///< The text.
    };

    /// What is offered, as far as it is text or can be shown as text.
    enum class Kind { utf8, utf8ByName, latin1, ownersChoice, plain, addresses, html };

    SelectionTransfer(QClipboard::Mode selection, Question question);

    /// For what is dropped, which is offered as these kinds, perhaps, the best one first: the
    /// selection "XdndSelection" (freedesktop.org/wiki/Specifications/XDND).
    explicit SelectionTransfer(const QList<Kind> &dropped);
    SelectionTransfer(const SelectionTransfer &) = delete;
    SelectionTransfer &operator=(const SelectionTransfer &) = delete;
    ~SelectionTransfer();

    /// Becomes readable when there is something for advance().
    [[nodiscard]] int descriptor() const;

    /// Takes in what has arrived, without waiting.
    void advance();

    /// Takes in what arrives until it is over, for so many milliseconds at most.
    void wait(int longest);

    /// Nothing more will be taken in.
    [[nodiscard]] bool isOver() const { return m_isOver || m_deadline.hasExpired(); }

    /// Milliseconds until the owner is given up unless it does something.
    [[nodiscard]] int remainingTime() const { return static_cast<int>(m_deadline.remainingTime()); }

    /// The owner has told what it has.
    [[nodiscard]] bool hasKinds() const { return m_hasKinds; }

    /// The kinds that it has, the best one first.
    [[nodiscard]] const QList<Kind> &kinds() const { return m_kinds; }

    /// The text; null when not all of it was sent.
    [[nodiscard]] std::unique_ptr<QMimeData> data() const;

private:
    explicit SelectionTransfer(Question question);
    [[nodiscard]] bool hasOwner();
    [[nodiscard]] xcb_atom_t atom(qsizetype number) const { return m_atoms[number]; }
    [[nodiscard]] xcb_atom_t atomOf(Kind kind) const;
    void askFor(xcb_atom_t target);
    void askForText();
    void take(const xcb_generic_event_t &event);
    void takeAnswer();
    void takePart();
    void takeKinds(const xcb_get_property_reply_t &property);

    const Question m_question;
    xcb_connection_t *const m_connection;
    QDeadlineTimer m_deadline;
    QList<xcb_atom_t> m_atoms;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    /// Of a text that was sent, the first is its kind.
    QList<Kind> m_kinds;
    QByteArray m_text;
    bool m_hasKinds = false;
    bool m_isInParts = false;
    bool m_hasText = false;
    bool m_isOver = false;
};
