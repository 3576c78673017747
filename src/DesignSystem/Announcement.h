// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

/// What a screen reader says of a change that everybody else sees: how much a search found, that a
/// text was copied. Nobody sees the announcement itself.
class Announcement final : public QWidget {
    Q_OBJECT

public:
    explicit Announcement(QWidget *parent);

    /// Already translated. Says it, also when it was said before.
    void say(const QString &text);

    /// As say(), unless it is what was said last.
    void sayNews(const QString &text);

    /// What was said is no longer true, and worth saying when it is true again.
    void forget();
};
