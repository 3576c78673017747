// SPDX-License-Identifier: MIT
#include "Layouts.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>
#include <memory>

namespace {

void append(QBoxLayout *layout, const LayoutItem &item, Qt::Alignment usualAlignment)
{
    if (item.layout)
        layout->addLayout(item.layout, item.stretch);
    else if (item.widget)
        layout->addWidget(item.widget, item.stretch,
                          item.alignment || item.stretch ? item.alignment : usualAlignment);
    else if (item.stretch)
        layout->addStretch(item.stretch);
    else
        layout->addSpacing(item.gap);
}

void fill(QBoxLayout *layout, std::initializer_list<LayoutItem> items, const LayoutSpacing &spacing,
          Qt::Alignment usualAlignment)
{
    layout->setSpacing(spacing.between);
    layout->setContentsMargins(spacing.around);
    for (const LayoutItem &item : items)
        append(layout, item, usualAlignment);
}

} // namespace

LayoutItem stretch()
{
    return filling(gap(0));
}

LayoutItem gap(int points)
{
    return LayoutItem(points);
}

LayoutItem filling(LayoutItem item)
{
    item.stretch = 1;
    return item;
}

LayoutItem aligned(Qt::Alignment alignment, QWidget *widget)
{
    return {widget, alignment};
}

LayoutItem row(std::initializer_list<LayoutItem> items, LayoutSpacing spacing)
{
    auto layout = std::make_unique<QHBoxLayout>();
    fill(layout.get(), items, spacing, Qt::AlignVCenter);
    return LayoutItem(layout.release());
}

LayoutItem column(std::initializer_list<LayoutItem> items, LayoutSpacing spacing)
{
    auto layout = std::make_unique<QVBoxLayout>();
    fill(layout.get(), items, spacing, {});
    return LayoutItem(layout.release());
}

void row(QWidget *widget, std::initializer_list<LayoutItem> items, LayoutSpacing spacing)
{
    fill(new QHBoxLayout(widget), items, spacing, Qt::AlignVCenter);
}

void column(QWidget *widget, std::initializer_list<LayoutItem> items, LayoutSpacing spacing)
{
    fill(new QVBoxLayout(widget), items, spacing, {});
}

void replace(QLayout *layout, QWidget *earlier, QWidget *widget,
             const std::function<void()> &between)
{
    if (earlier)
        layout->removeWidget(earlier);
    if (widget)
        layout->addWidget(widget);
    if (between)
        between();
    if (earlier) {
        earlier->hide();
        earlier->deleteLater();
    }
}
