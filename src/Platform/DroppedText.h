// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"

#include <QString>
#include <QStringList>
#include <optional>

class QMimeData;

/// What another program hands over to become a note: text, or the addresses of links and files, a
/// line each. No file is read.
struct DroppedText {
    QString text;
    /// Why it cannot become a note.
    std::optional<Message> refusal;

    /// Whether there may be something in it, before it is asked for.
    [[nodiscard]] static bool isOffered(const QMimeData &data);

    /// Null stands for what was never given.
    [[nodiscard]] static DroppedText from(const QMimeData *data);
    [[nodiscard]] static DroppedText fromAddresses(const QStringList &addresses);
};
