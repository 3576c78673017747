// SPDX-License-Identifier: MIT
#include "ClipboardReader.h"

#include "SelectionTransfer.h"
#include "X11Session.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QSocketNotifier>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

using Question = SelectionTransfer::Question;

/// As long as it takes a program that is not held up. Shorter than what feels like a hitch.
constexpr int quickAnswer = 100;
constexpr int longestWait = 1000;

/// It is read without asking another program.
bool isAtHand(QClipboard::Mode mode)
{
    const QClipboard &clipboard = *QGuiApplication::clipboard();
    return !X11Session::current() ||
           (mode == QClipboard::Selection ? clipboard.ownsSelection() : clipboard.ownsClipboard());
}

bool isText(const QMimeData &data)
{
    return data.hasText() || data.hasHtml();
}

} // namespace

ClipboardReader::ClipboardReader(QObject *parent)
    : QObject(parent)
{
    m_givingUp.setSingleShot(true);
    connect(&m_givingUp, &QTimer::timeout, this, &ClipboardReader::goOn);
    connect(QGuiApplication::clipboard(), &QClipboard::changed, this,
            [this](QClipboard::Mode mode) { m_isOutdated = m_isOutdated || mode == m_mode; });
}

ClipboardReader::~ClipboardReader() = default;

bool ClipboardReader::mayHaveText(QClipboard::Mode mode)
{
    if (isAtHand(mode)) {
        const QMimeData *const data = QGuiApplication::clipboard()->mimeData(mode);
        return data && isText(*data);
    }
    SelectionTransfer transfer(mode, Question::kinds);
    transfer.wait(quickAnswer);
    return !transfer.hasKinds() || !transfer.kinds().isEmpty();
}

bool ClipboardReader::holdsOwn(const QString &text)
{
    return isAtHand(QClipboard::Clipboard) && QGuiApplication::clipboard()->text() == text;
}

bool ClipboardReader::isReading(QClipboard::Mode mode) const noexcept
{
    return m_transfer && m_mode == mode && !m_isOutdated;
}

void ClipboardReader::read(QClipboard::Mode mode)
{
    cancel();
    m_mode = mode;
    m_isOutdated = false;
    if (isAtHand(mode)) {
        const QMimeData *const data = QGuiApplication::clipboard()->mimeData(mode);
        if (data && isText(*data))
            Q_EMIT arrived(*data);
        return;
    }
    m_transfer = std::make_unique<SelectionTransfer>(mode, Question::text);
    m_transfer->wait(quickAnswer);
    if (m_transfer->isOver()) {
        deliver();
        return;
    }
    m_arrival = std::make_unique<QSocketNotifier>(m_transfer->descriptor(), QSocketNotifier::Read);
    connect(m_arrival.get(), &QSocketNotifier::activated, this, &ClipboardReader::goOn);
    m_givingUp.start(m_transfer->remainingTime());
}

void ClipboardReader::finish()
{
    if (!m_transfer)
        return;
    m_transfer->wait(longestWait);
    deliver();
}

void ClipboardReader::cancel()
{
    m_givingUp.stop();
    if (m_arrival) {
        m_arrival->setEnabled(false);
        m_arrival.release()->deleteLater(); // It may be the one that is being heard.
    }
    m_transfer.reset();
}

void ClipboardReader::goOn()
{
    m_transfer->advance();
    if (m_transfer->isOver())
        deliver();
    else
        m_givingUp.start(m_transfer->remainingTime());
}

void ClipboardReader::deliver()
{
    const auto transfer = std::move(m_transfer);
    cancel();
    if (const auto data = transfer->data())
        Q_EMIT arrived(*data);
}
