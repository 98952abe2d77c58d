// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>

// xcb hands out replies, errors and events in memory the caller frees with free(); this owns one.
struct XcbFree {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;
