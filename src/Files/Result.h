// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

#include <optional>
#include <type_traits>
#include <utility>

/// Why a call on a file or folder failed. A value: it is copied without allocating, and what other
/// calls answer meanwhile does not change it.
struct Failure {
    Reason reason = Reason::system;

    /// The errno; 0 when the reason is not the system's.
    int systemError = 0;

    [[nodiscard]] static constexpr Failure system(int error) noexcept
    {
        return {Reason::system, error};
    }
    [[nodiscard]] static constexpr Failure because(Reason reason) noexcept { return {reason, 0}; }

    [[nodiscard]] constexpr bool is(int error) const noexcept
    {
        return reason == Reason::system && systemError == error;
    }

    friend bool operator==(const Failure &, const Failure &) = default;
};

/// What a call brought, or why it failed.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) noexcept(std::is_nothrow_move_constructible_v<T>)
        : m_value(std::move(value))
    {
    }
    Result(Failure failure) noexcept
        : m_failure(failure)
    {
    }

    explicit operator bool() const noexcept { return m_value.has_value(); }

    [[nodiscard]] T &operator*() &noexcept { return *m_value; }
    [[nodiscard]] const T &operator*() const &noexcept { return *m_value; }
    [[nodiscard]] T &&operator*() &&noexcept { return std::move(*m_value); }
    [[nodiscard]] T *operator->() noexcept { return &*m_value; }
    [[nodiscard]] const T *operator->() const noexcept { return &*m_value; }

    [[nodiscard]] T valueOr(T other) const noexcept
    {
        return m_value ? *m_value : std::move(other);
    }

    /// Only of a result that is none.
    [[nodiscard]] Failure failure() const noexcept { return m_failure; }

private:
    std::optional<T> m_value;
    Failure m_failure;
};

/// Whether a call succeeded that brings nothing.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() noexcept = default;
    Result(Failure failure) noexcept
        : m_failure(failure)
    {
    }

    explicit operator bool() const noexcept { return !m_failure; }

    /// Only of a result that is none.
    [[nodiscard]] Failure failure() const noexcept { return *m_failure; }

private:
    std::optional<Failure> m_failure;
};
