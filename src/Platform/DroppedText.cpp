// SPDX-License-Identifier: MIT
#include "DroppedText.h"

#include "TextExtent.h"

#include <QLocale>
#include <QMimeData>
#include <QStringDecoder>
#include <QTextDocumentFragment>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The one kind whose bytes are known to be meant as what they are.
constexpr auto exact = "text/plain;charset=utf-8"_L1;

/// Where a byte would have to be replaced to make text of it, it is no text of ours.
std::optional<QString> decoded(const QByteArray &bytes)
{
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decode(bytes);
    return decode.hasError() ? std::nullopt : std::optional(text);
}

QString addresses(const QList<QUrl> &urls)
{
    QStringList lines;
    for (const QUrl &url : urls)
        lines.append(url.toString(QUrl::FullyEncoded));
    return lines.join(u'\n');
}

/// Nothing when it is no text.
std::optional<QString> textOf(const QMimeData &data)
{
    if (data.hasUrls())
        return addresses(data.urls());
    if (data.hasFormat(exact))
        return decoded(data.data(exact));
    if (data.hasText() || !data.hasHtml())
        return data.text();
    return QTextDocumentFragment::fromHtml(data.html()).toPlainText();
}

DroppedText checked(const std::optional<QString> &text)
{
    if (!text)
        return {{}, Message{u"Not kept: what was dropped is no UTF-8 text."_s, {}}};
    if (text->trimmed().isEmpty())
        return {{}, Message{u"Not kept: there is no text in what was dropped."_s, {}}};
    if (!TextExtent::of(*text).hasRoom()) {
        const QLocale plain = QLocale::c();
        return {
            {},
            Message{
                u"Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters."_s,
                {plain.toString(TextExtent::mostCharacters),
                 plain.toString(TextExtent::mostLineEnds),
                 plain.toString(TextExtent::mostInParagraph)}}};
    }
    return {*text, std::nullopt};
}

} // namespace

bool DroppedText::isOffered(const QMimeData &data)
{
    return data.hasUrls() || data.hasFormat(exact) || data.hasText() || data.hasHtml();
}

DroppedText DroppedText::from(const QMimeData *data)
{
    if (!data)
        return {{},
                Message{u"Not kept: the other program did not hand over what was dropped."_s, {}}};
    return checked(textOf(*data));
}

DroppedText DroppedText::fromAddresses(const QStringList &addresses)
{
    return checked(addresses.join(u'\n'));
}
