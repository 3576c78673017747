// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QtEndian>

/// What a desktop's settings manager leaves on the X server; see XSettingsFormat.
class XSettingsBytes {
public:
    enum class Order : char { leastSignificantFirst = 0, mostSignificantFirst = 1 };

    explicit XSettingsBytes(Order order = Order::leastSignificantFirst)
        : m_order(order)
    {
    }

    XSettingsBytes &number(const QByteArray &name, quint32 value)
    {
        begin(0, name);
        append(value);
        return *this;
    }
    XSettingsBytes &text(const QByteArray &name, const QByteArray &value)
    {
        begin(1, name);
        append(quint32(value.size()));
        appendPadded(value);
        return *this;
    }
    XSettingsBytes &color(const QByteArray &name)
    {
        begin(2, name);
        m_settings.append(8, '\x7f');
        return *this;
    }
    /// Of a kind that XSETTINGS may have one day.
    XSettingsBytes &unknown(const QByteArray &name)
    {
        begin(3, name);
        return *this;
    }

    [[nodiscard]] QByteArray bytes() const
    {
        XSettingsBytes head(m_order);
        head.m_settings.append(static_cast<char>(m_order)).append(3, '\0');
        head.append(quint32(1)); // How often they have changed.
        head.append(m_count);
        return head.m_settings + m_settings;
    }

private:
    void begin(char type, const QByteArray &name)
    {
        ++m_count;
        m_settings.append(type).append('\0');
        append(quint16(name.size()));
        appendPadded(name);
        append(quint32(1)); // When it last changed.
    }

    template <class Number>
    void append(Number number)
    {
        const Number ordered =
            m_order == Order::mostSignificantFirst ? qToBigEndian(number) : qToLittleEndian(number);
        m_settings.append(reinterpret_cast<const char *>(&ordered), sizeof ordered);
    }
    void appendPadded(const QByteArray &text)
    {
        m_settings.append(text).append((4 - text.size() % 4) % 4, '\0');
    }

    Order m_order;
    quint32 m_count = 0;
    QByteArray m_settings;
};
