// SPDX-License-Identifier: MIT
#pragma once

#include <QClipboard>
#include <QObject>
#include <QTimer>
#include <memory>

class QMimeData;
class QSocketNotifier;
class SelectionTransfer;

/// Reads what is to be pasted, and lets nobody wait for it.
///
/// The clipboard is another program's memory. Qt asks that program whenever it is to tell what is
/// on the clipboard, and until it answers the window stands still, for 5 seconds a question. Here
/// an answer is waited for 0.1 seconds; what takes longer arrives later, and what makes no progress
/// for a second never does. What this program has copied itself is read at once.
class ClipboardReader final : public QObject {
    Q_OBJECT

public:
    explicit ClipboardReader(QObject *parent);
    ~ClipboardReader() override;

    /// False when what is there is no text; true also when its owner does not say so in time.
    [[nodiscard]] static bool mayHaveText(QClipboard::Mode mode);

    /// Whether just this text is there, copied by this program.
    [[nodiscard]] static bool holdsOwn(const QString &text);

    /// Asks for the text. What was asked for before is given up.
    void read(QClipboard::Mode mode);

    /// What is there now has been asked for and not arrived yet.
    [[nodiscard]] bool isReading(QClipboard::Mode mode) const noexcept;

    /// Waits for what is under way, at most a second, and gives it up then.
    void finish();

    void cancel();

Q_SIGNALS:
    /// Text, HTML or addresses: what there was of these. Comes from within read() when the owner is
    /// quick, and not at all when there is no text.
    void arrived(const QMimeData &data);

private:
    void goOn();
    void deliver();

    std::unique_ptr<SelectionTransfer> m_transfer;
    QClipboard::Mode m_mode = QClipboard::Clipboard;
    /// There is something else by now.
    bool m_isOutdated = false;
    std::unique_ptr<QSocketNotifier> m_arrival;
    QTimer m_givingUp;
};
