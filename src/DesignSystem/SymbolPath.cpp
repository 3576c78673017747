// SPDX-License-Identifier: MIT
#include "SymbolPath.h"

#include <charconv>
#include <cmath>

namespace {

class PathReader {
public:
    PathReader(std::string_view data, const std::function<double(double)> &place)
        : m_rest(data)
        , m_place(place)
    {
    }

    QPainterPath read()
    {
        for (char command = nextCommand(); command != 0; command = nextCommand())
            append(command);
        return m_path;
    }

private:
    void append(char command)
    {
        switch (command) {
        case 'M':
            m_node = readPoint();
            m_path.moveTo(placed(m_node));
            break;
        case 'L':
            lineTo(readPoint());
            break;
        case 'H':
            lineTo({readNumber(), m_node.y()});
            break;
        case 'V':
            lineTo({m_node.x(), readNumber()});
            break;
        case 'C': {
            const QPointF first = readPoint();
            const QPointF second = readPoint();
            const QPointF end = readPoint();
            m_path.cubicTo(handle(first, end, m_node), handle(second, end, end), placed(end));
            m_node = end;
            break;
        }
        case 'Z':
            m_path.closeSubpath();
            break;
        default:
            Q_UNREACHABLE();
        }
    }

    void lineTo(QPointF end)
    {
        m_node = end;
        m_path.lineTo(placed(end));
    }

    [[nodiscard]] QPointF placed(QPointF node) const
    {
        return {m_place(node.x()), m_place(node.y())};
    }

    /// Where a handle goes when the curve from m_node to `end` is stretched between its placed
    /// nodes; with no length to stretch on an axis it moves with the node that it belongs to.
    [[nodiscard]] QPointF handle(QPointF handle, QPointF end, QPointF itsNode) const
    {
        return {between(handle.x(), m_node.x(), end.x(), itsNode.x()),
                between(handle.y(), m_node.y(), end.y(), itsNode.y())};
    }

    [[nodiscard]] double between(double handle, double from, double to, double itsNode) const
    {
        constexpr double tooShort = 1e-6;
        const double origin = m_place(0);
        const double scale = (m_place(24) - origin) / 24;
        if (std::abs(to - from) < tooShort)
            return m_place(itsNode) + (handle - itsNode) * scale;
        return m_place(from) + (handle - from) / (to - from) * (m_place(to) - m_place(from));
    }

    void skipSpaces()
    {
        while (!m_rest.empty() && m_rest.front() == ' ')
            m_rest.remove_prefix(1);
    }

    char nextCommand()
    {
        skipSpaces();
        if (m_rest.empty())
            return 0;
        const char command = m_rest.front();
        m_rest.remove_prefix(1);
        return command;
    }

    double readNumber()
    {
        skipSpaces();
        double number = 0;
        const auto result = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), number);
        m_rest.remove_prefix(static_cast<std::size_t>(result.ptr - m_rest.data()));
        return number;
    }

    QPointF readPoint()
    {
        const double x = readNumber();
        return {x, readNumber()};
    }

    std::string_view m_rest;
    const std::function<double(double)> &m_place;
    QPainterPath m_path;
    QPointF m_node;
};

} // namespace

QPainterPath symbolPath(std::string_view data, const std::function<double(double)> &place)
{
    return PathReader(data, place).read();
}
