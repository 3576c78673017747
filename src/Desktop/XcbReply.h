// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>

/// How xcb wants its answers to be given back.
struct FreeReply {
    void operator()(void *reply) const noexcept { std::free(reply); }
};

/// An answer or event of the X server that belongs to its reader; none when the request failed.
/// Internal to Desktop.
template <class Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

template <class Reply>
[[nodiscard]] XcbReply<Reply> owned(Reply *reply)
{
    return XcbReply<Reply>(reply);
}
