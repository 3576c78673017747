// SPDX-License-Identifier: MIT
#include "XSettingsFormat.h"

#include <QtEndian>

namespace {

/// Reads numbers and texts one after the other. Once there are too few bytes it has failed, and
/// gives zeros and nothing from there on.
class Reader {
public:
    explicit Reader(QByteArrayView bytes)
        : m_rest(bytes)
    {
    }

    [[nodiscard]] bool failed() const { return m_failed; }

    void setMostSignificantFirst(bool isFirst) { m_isMostSignificantFirst = isFirst; }

    QByteArrayView take(qsizetype count)
    {
        if (m_failed || count > m_rest.size()) {
            m_failed = true;
            return {};
        }
        const QByteArrayView taken = m_rest.first(count);
        m_rest = m_rest.sliced(count);
        return taken;
    }

    template <class Number>
    Number number()
    {
        const QByteArrayView bytes = take(sizeof(Number));
        if (m_failed)
            return 0;
        return m_isMostSignificantFirst ? qFromBigEndian<Number>(bytes.data())
                                        : qFromLittleEndian<Number>(bytes.data());
    }

    /// With what fills it up to a multiple of four.
    QByteArrayView text(qsizetype length)
    {
        return take((length + 3) / 4 * 4).first(m_failed ? 0 : length);
    }

private:
    QByteArrayView m_rest;
    bool m_isMostSignificantFirst = false;
    bool m_failed = false;
};

enum class Type : uint8_t { integer = 0, text = 1, color = 2 };
constexpr qsizetype colorSize = 8;

/// Takes one setting. False when its kind is not known, and so neither its length.
bool take(Reader &reader, ToolkitSettings &settings)
{
    const auto type = Type(reader.number<uint8_t>());
    reader.take(1);
    const auto nameLength = reader.number<uint16_t>();
    const QByteArrayView name = reader.text(nameLength);
    reader.number<uint32_t>(); // When it last changed.
    switch (type) {
    case Type::integer: {
        const auto value = reader.number<uint32_t>();
        if (name == "Gtk/EnableAnimations" && !reader.failed())
            settings.animates = value != 0;
        return true;
    }
    case Type::text: {
        const QByteArrayView value = reader.text(reader.number<uint32_t>());
        if (name == "Net/ThemeName" && !reader.failed())
            settings.theme = QString::fromUtf8(value);
        return true;
    }
    case Type::color:
        reader.take(colorSize);
        return true;
    }
    return false;
}

} // namespace

ToolkitSettings XSettingsFormat::reading(QByteArrayView bytes)
{
    ToolkitSettings settings;
    Reader reader(bytes);
    reader.setMostSignificantFirst(reader.number<uint8_t>() == 1);
    reader.take(3);
    reader.number<uint32_t>(); // How often they have changed.
    const auto count = reader.number<uint32_t>();
    for (uint32_t i = 0; i < count && !reader.failed(); ++i) {
        if (!take(reader, settings))
            break;
    }
    return settings;
}
