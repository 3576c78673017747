// SPDX-License-Identifier: MIT
#pragma once

#include <QMargins>
#include <Qt>
#include <functional>
#include <initializer_list>

class QBoxLayout;
class QLayout;
class QWidget;

/// One thing in a row or column: a widget, another row or column, a gap, or a stretch.
///
/// Layouts of boxes in boxes read as the page that they make:
///
///     column(this, {m_date, filling(m_editor), row({m_status, stretch(), m_save})});
struct LayoutItem {
    // NOLINTNEXTLINE(google-explicit-constructor): a widget stands for itself.
    LayoutItem(QWidget *widgetOrNull, Qt::Alignment itsAlignment = {})
        : widget(widgetOrNull)
        , alignment(itsAlignment)
    {
    }
    explicit LayoutItem(QBoxLayout *inner)
        : layout(inner)
    {
    }
    explicit LayoutItem(int gapInPoints)
        : gap(gapInPoints)
    {
    }

    QWidget *widget = nullptr;
    QBoxLayout *layout = nullptr;
    int gap = 0;
    int stretch = 0;
    Qt::Alignment alignment;
};

/// The space between the items, and around them.
struct LayoutSpacing {
    int between = 0;
    QMargins around;
};

/// Takes what space the others leave.
[[nodiscard]] LayoutItem stretch();

/// A gap of fixed length along the row or column, beside the usual space between two items.
[[nodiscard]] LayoutItem gap(int points);

/// An item that takes what space the others leave.
[[nodiscard]] LayoutItem filling(LayoutItem item);

/// A widget that keeps its size and stands where the alignment says.
[[nodiscard]] LayoutItem aligned(Qt::Alignment alignment, QWidget *widget);

/// A row or column inside another one. Widgets in a row are centred on its height.
[[nodiscard]] LayoutItem row(std::initializer_list<LayoutItem> items, LayoutSpacing spacing = {});
[[nodiscard]] LayoutItem column(std::initializer_list<LayoutItem> items,
                                LayoutSpacing spacing = {});

/// The layout of a widget, which takes ownership of the widgets and layouts in it.
void row(QWidget *widget, std::initializer_list<LayoutItem> items, LayoutSpacing spacing = {});
void column(QWidget *widget, std::initializer_list<LayoutItem> items, LayoutSpacing spacing = {});

/// Puts a widget into the layout in place of an earlier one; either may be none. The earlier one is
/// deleted once its own code has returned, since it may be what asks. What is to be done while both
/// are there is for giving the keyboard from one to the other.
void replace(QLayout *layout, QWidget *earlier, QWidget *widget,
             const std::function<void()> &between = {});
