// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class PlainButton;
class TextLabel;

/// What went wrong and whether the words are safe, with a button to try again. Hidden while there
/// is nothing to say; announced to assistive tools when it has something new to say.
class ErrorBanner final : public QWidget {
    Q_OBJECT

public:
    explicit ErrorBanner(QWidget *parent = nullptr);

    /// Already translated. An empty message hides the banner.
    void setMessage(const QString &message);
    void setRetryText(const QString &text);
    void setRetryEnabled(bool enabled);

Q_SIGNALS:
    void retryRequested();

private:
    TextLabel *const m_message;
    PlainButton *const m_retry;
};
