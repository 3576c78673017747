// SPDX-License-Identifier: MIT
#include "SelectionTransfer.h"

#include "XcbReply.h"

#include <QMimeData>
#include <QStringDecoder>
#include <algorithm>
#include <iterator>
#include <poll.h>
#include <string_view>

using namespace Qt::Literals::StringLiterals;

namespace {

using PropertyReply = XcbReply<xcb_get_property_reply_t>;

constexpr int patience = 1000;
constexpr qsizetype largestText = qsizetype(256) * 1024 * 1024;

/// In the units of four bytes in which properties are read: all that there can be.
constexpr uint32_t wholeProperty = UINT32_MAX / 4;

/// The order in which kinds are preferred, and that of their names.
constexpr SelectionTransfer::Kind allKinds[] = {
    SelectionTransfer::Kind::utf8,   SelectionTransfer::Kind::utf8ByName,
    SelectionTransfer::Kind::latin1, SelectionTransfer::Kind::ownersChoice,
    SelectionTransfer::Kind::plain,  SelectionTransfer::Kind::addresses,
    SelectionTransfer::Kind::html,
};

constexpr std::string_view names[] = {
    "UTF8_STRING",    "text/plain;charset=utf-8",
    "STRING",         "TEXT",
    "text/plain",     "text/uri-list",
    "text/html",

    "TARGETS",        "INCR",
    "QUILLMARK_TEXT", "CLIPBOARD",
    "XdndSelection",
};
constexpr qsizetype targets = 7;
constexpr qsizetype inParts = 8;
constexpr qsizetype place = 9;
constexpr qsizetype clipboard = 10;
constexpr qsizetype drag = 11;

QList<xcb_atom_t> internAtoms(xcb_connection_t *connection)
{
    QList<xcb_intern_atom_cookie_t> requests;
    for (const std::string_view name : names)
        requests << xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data());
    QList<xcb_atom_t> atoms;
    for (const xcb_intern_atom_cookie_t request : std::as_const(requests)) {
        const auto reply = owned(xcb_intern_atom_reply(connection, request, nullptr));
        atoms << (reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE));
    }
    return atoms;
}

/// Reads the property and removes it, which tells the owner to send the next part.
PropertyReply takeProperty(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property)
{
    const auto request =
        xcb_get_property(connection, 1, window, property, XCB_ATOM_ANY, 0, wholeProperty);
    return owned(xcb_get_property_reply(connection, request, nullptr));
}

QByteArray bytes(const xcb_get_property_reply_t &property)
{
    return {static_cast<const char *>(xcb_get_property_value(&property)),
            xcb_get_property_value_length(&property)};
}

/// Browsers send UTF-16, with or without a mark.
QString decodedHtml(const QByteArray &bytes)
{
    auto encoding = QStringConverter::encodingForData(bytes);
    if (!encoding && bytes.size() > 1 && bytes[0] != '\0' && bytes[1] == '\0')
        encoding = QStringConverter::Utf16LE;
    return QStringDecoder(encoding.value_or(QStringConverter::Utf8)).decode(bytes);
}

std::unique_ptr<QMimeData> decoded(SelectionTransfer::Kind kind, const QByteArray &bytes)
{
    auto data = std::make_unique<QMimeData>();
    using Kind = SelectionTransfer::Kind;
    switch (kind) {
    case Kind::utf8:
    case Kind::utf8ByName:
        data->setData(u"text/plain;charset=utf-8"_s, bytes);
        data->setText(QString::fromUtf8(bytes));
        break;
    case Kind::plain:
        data->setText(QString::fromUtf8(bytes));
        break;
    case Kind::latin1:
    case Kind::ownersChoice:
        data->setText(QString::fromLatin1(bytes));
        break;
    case Kind::addresses:
        data->setData(u"text/uri-list"_s, bytes);
        break;
    case Kind::html:
        data->setHtml(decodedHtml(bytes));
        break;
    }
    return data;
}

} // namespace

SelectionTransfer::SelectionTransfer(QClipboard::Mode selection, Question question)
    : SelectionTransfer(question)
{
    if (m_isOver)
        return;
    m_selection =
        selection == QClipboard::Selection ? xcb_atom_t(XCB_ATOM_PRIMARY) : atom(clipboard);
    if (hasOwner())
        askFor(atom(targets));
    else
        m_hasKinds = true; // None.
}

SelectionTransfer::SelectionTransfer(const QList<Kind> &dropped)
    : SelectionTransfer(Question::text)
{
    m_kinds = dropped;
    m_hasKinds = true;
    if (m_isOver)
        return;
    m_selection = atom(drag);
    if (hasOwner())
        askForText();
}

SelectionTransfer::SelectionTransfer(Question question)
    : m_question(question)
    , m_connection(xcb_connect(nullptr, nullptr))
    , m_deadline(patience)
{
    if (xcb_connection_has_error(m_connection) != 0) {
        m_isOver = true;
        return;
    }
    m_atoms = internAtoms(m_connection);
    m_window = xcb_generate_id(m_connection);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window,
                      xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root, 0, 0, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
}

bool SelectionTransfer::hasOwner()
{
    const auto owner = owned(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, m_selection), nullptr));
    m_isOver = !owner || owner->owner == XCB_WINDOW_NONE;
    return !m_isOver;
}

SelectionTransfer::~SelectionTransfer()
{
    xcb_disconnect(m_connection);
}

int SelectionTransfer::descriptor() const
{
    return xcb_get_file_descriptor(m_connection);
}

void SelectionTransfer::advance()
{
    while (!isOver()) {
        const auto event = owned(xcb_poll_for_event(m_connection));
        if (!event)
            break;
        take(*event);
    }
    if (xcb_connection_has_error(m_connection) != 0)
        m_isOver = true;
}

void SelectionTransfer::wait(int longest)
{
    const QDeadlineTimer end(longest);
    for (advance(); !isOver() && !end.hasExpired(); advance()) {
        pollfd arrival{descriptor(), POLLIN, 0};
        ::poll(&arrival, 1,
               static_cast<int>(std::min<qint64>(end.remainingTime(), remainingTime())));
    }
}

std::unique_ptr<QMimeData> SelectionTransfer::data() const
{
    return m_hasText ? decoded(m_kinds.constFirst(), m_text) : nullptr;
}

xcb_atom_t SelectionTransfer::atomOf(Kind kind) const
{
    return atom(static_cast<qsizetype>(kind));
}

void SelectionTransfer::askFor(xcb_atom_t target)
{
    xcb_convert_selection(m_connection, m_window, m_selection, target, atom(place),
                          XCB_CURRENT_TIME);
    xcb_flush(m_connection);
}

void SelectionTransfer::askForText()
{
    if (m_kinds.isEmpty())
        m_isOver = true;
    else
        askFor(atomOf(m_kinds.constFirst()));
}

void SelectionTransfer::take(const xcb_generic_event_t &event)
{
    constexpr uint8_t sentByAnother = 0x80;
    switch (event.response_type & static_cast<uint8_t>(~sentByAnother)) {
    case XCB_SELECTION_NOTIFY:
        m_deadline.setRemainingTime(patience);
        if (reinterpret_cast<const xcb_selection_notify_event_t &>(event).property !=
            XCB_ATOM_NONE) {
            takeAnswer();
        } else if (m_hasKinds) { // It does not have what it has told.
            m_kinds.removeFirst();
            askForText();
        } else {
            m_isOver = true;
        }
        break;
    case XCB_PROPERTY_NOTIFY:
        if (m_isInParts && reinterpret_cast<const xcb_property_notify_event_t &>(event).state ==
                               XCB_PROPERTY_NEW_VALUE) {
            m_deadline.setRemainingTime(patience);
            takePart();
        }
        break;
    default:
        break;
    }
}

void SelectionTransfer::takeAnswer()
{
    const PropertyReply property = takeProperty(m_connection, m_window, atom(place));
    if (!property) {
        m_isOver = true;
    } else if (!m_hasKinds) {
        takeKinds(*property);
    } else if (property->type == atom(inParts)) {
        m_isInParts = true;
        xcb_flush(m_connection);
    } else {
        m_text = bytes(*property);
        m_hasText = true;
        m_isOver = true;
    }
}

void SelectionTransfer::takeKinds(const xcb_get_property_reply_t &property)
{
    m_hasKinds = true;
    constexpr uint8_t bitsOfAnAtom = 32;
    if (property.format == bitsOfAnAtom) {
        const auto *const first =
            static_cast<const xcb_atom_t *>(xcb_get_property_value(&property));
        const auto *const end =
            first + xcb_get_property_value_length(&property) / static_cast<int>(sizeof(xcb_atom_t));
        std::copy_if(std::begin(allKinds), std::end(allKinds), std::back_inserter(m_kinds),
                     [&](Kind kind) { return std::find(first, end, atomOf(kind)) != end; });
    }
    if (m_question == Question::text)
        askForText();
    else
        m_isOver = true;
}

void SelectionTransfer::takePart()
{
    const PropertyReply property = takeProperty(m_connection, m_window, atom(place));
    xcb_flush(m_connection);
    const QByteArray part = property ? bytes(*property) : QByteArray();
    // An empty part is the end.
    m_hasText = property && part.isEmpty();
    m_isOver = part.isEmpty() || m_text.size() + part.size() > largestText;
    if (!m_isOver)
        m_text += part;
}
