// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

class QDropEvent;
class QMimeData;

/// Reads what is dropped, and keeps the window from waiting long for it.
///
/// What is dragged is another program's memory until that is told that the drop is done, so it has
/// to be read at once. Qt waits for each kind of it for 5 seconds; here the program gets one for
/// all of them. What is dragged within this program is read at once.
class DropReader {
public:
    explicit DropReader(const QDropEvent &event);
    DropReader(const DropReader &) = delete;
    DropReader &operator=(const DropReader &) = delete;
    ~DropReader();

    /// Text, HTML or addresses: what there was of these, as long as this and the event live. Null
    /// when the other program has not given it in time.
    [[nodiscard]] const QMimeData *data() const noexcept { return m_data; }

    /// For a widget of the toolkit, which reads by itself: gives it the event with data() in it.
    /// What has not come in time is as if it had not been dropped.
    static void handOver(QDropEvent &event, const std::function<void(QDropEvent &read)> &widget);

private:
    std::unique_ptr<QMimeData> m_received;
    const QMimeData *m_data = nullptr;
};
