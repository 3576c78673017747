// SPDX-License-Identifier: MIT
#pragma once

#include "ThemedButton.h"

#include <QMargins>

/// A button of text alone, with a symbol before it when one is named: no bezel. Padded, and while
/// it is checked on a capsule of the primary style, where it is a tab.
class PlainButton final : public ThemedButton {
    Q_OBJECT

public:
    explicit PlainButton(const TextStyle &style, const QString &symbol = {},
                         QWidget *parent = nullptr);

    /// A tab of a row of tabs: checkable and padded. Tab stops at each of them. To check it with
    /// assistive tools is to click it, also when it is checked.
    [[nodiscard]] static PlainButton *makeTab(QWidget *parent = nullptr);

    /// A way back: a chevron whose tip stands at the left edge, and the text.
    [[nodiscard]] static PlainButton *makeBack(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
    QMargins m_padding;
    int m_symbolInset = 0;
};
