// SPDX-License-Identifier: MIT
#include "DropReader.h"

#include "SelectionTransfer.h"
#include "X11Session.h"

#include <QDropEvent>
#include <QMimeData>

using namespace Qt::Literals::StringLiterals;

namespace {

using Kind = SelectionTransfer::Kind;

constexpr int longestWait = 1000;

/// What may be asked for, the best one first: files are dragged with addresses and with names.
/// Qt calls several kinds of plain text by one name.
QList<Kind> kindsOf(const QMimeData &offered)
{
    QList<Kind> kinds;
    if (offered.hasFormat(u"text/uri-list"_s))
        kinds << Kind::addresses;
    if (offered.hasFormat(u"text/plain;charset=utf-8"_s))
        kinds << Kind::utf8ByName;
    if (offered.hasFormat(u"text/plain"_s))
        kinds << Kind::utf8 << Kind::plain << Kind::latin1 << Kind::ownersChoice;
    if (offered.hasFormat(u"text/html"_s))
        kinds << Kind::html;
    return kinds;
}

} // namespace

DropReader::DropReader(const QDropEvent &event)
{
    if (event.source() || !X11Session::current()) {
        m_data = event.mimeData();
        return;
    }
    SelectionTransfer transfer(kindsOf(*event.mimeData()));
    transfer.wait(longestWait);
    m_received = transfer.data();
    m_data = m_received.get();
}

DropReader::~DropReader() = default;

void DropReader::handOver(QDropEvent &event, const std::function<void(QDropEvent &read)> &widget)
{
    const DropReader reader(event);
    if (!reader.data()) {
        event.ignore();
        return;
    }
    QDropEvent read(event.position(), event.possibleActions(), reader.data(), event.buttons(),
                    event.modifiers());
    read.setDropAction(event.dropAction());
    widget(read);
    event.setDropAction(read.dropAction());
    event.setAccepted(read.isAccepted());
}
