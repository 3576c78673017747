// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class PlainButton;
class ScrolledText;
class TextLabel;

/// What went wrong and whether the words are safe, with a button to try again, when it is about a
/// file one to show that, and below the text one to load the notes anew and one to take in copies,
/// where that may help. Hidden while there is nothing to say; announced to assistive tools when it
/// has something new to say.
class ErrorBanner final : public QWidget {
    Q_OBJECT

public:
    explicit ErrorBanner(QWidget *parent = nullptr);

    /// Already translated. An empty message hides the banner.
    void setMessage(const QString &message);
    void setRetryText(const QString &text);
    void setRetryEnabled(bool enabled);
    void setRetryVisible(bool visible);
    void setShowText(const QString &text);
    void setShowVisible(bool visible);
    void setReloadText(const QString &text);
    void setReloadVisible(bool visible);
    void setTakeInText(const QString &text);
    void setTakeInVisible(bool visible);

Q_SIGNALS:
    void retryRequested();
    void showRequested();
    void reloadRequested();
    void takeInRequested();

private:
    TextLabel *const m_message;
    ScrolledText *const m_text;
    PlainButton *const m_retry;
    PlainButton *const m_show;
    PlainButton *const m_reload;
    PlainButton *const m_takeIn;
};
