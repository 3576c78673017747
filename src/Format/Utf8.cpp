// SPDX-License-Identifier: MIT
#include "Utf8.h"

#include <QStringConverter>
#include <algorithm>

namespace {

/// Stateless: what is cut off at the end is an error, not the beginning of more.
constexpr auto exact =
    QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom;

bool isAscii(std::string_view bytes)
{
    unsigned char all = 0;
    for (const char c : bytes)
        all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

} // namespace

std::optional<QStringView> Utf8Decoder::decode(std::string_view bytes)
{
    if (m_buffer.size() < bytes.size())
        m_buffer.resize(bytes.size());
    // Two loops that a compiler turns into vector instructions; most texts need no more.
    if (isAscii(bytes)) {
        std::ranges::transform(bytes, m_buffer.begin(), [](char c) { return QLatin1Char(c); });
        return QStringView(m_buffer.data(), static_cast<qsizetype>(bytes.size()));
    }
    QStringDecoder decoder(QStringConverter::Utf8, exact);
    const auto size = static_cast<qsizetype>(bytes.size());
    const auto space = static_cast<std::size_t>(decoder.requiredSpace(size));
    if (m_buffer.size() < space)
        m_buffer.resize(space);
    const QChar *end = decoder.appendToBuffer(m_buffer.data(), QByteArrayView(bytes.data(), size));
    if (decoder.hasError())
        return std::nullopt;
    return QStringView(m_buffer.data(), end);
}

bool encodeUtf8(QStringView text, std::string &bytes)
{
    QStringEncoder encoder(QStringConverter::Utf8, exact);
    bytes.resize(static_cast<std::size_t>(encoder.requiredSpace(text.size())));
    const char *end = encoder.appendToBuffer(bytes.data(), text);
    bytes.resize(static_cast<std::size_t>(end - bytes.data()));
    return !encoder.hasError();
}
