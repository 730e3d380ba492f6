#pragma once

#include <cstdint>
#include <limits>

#include "platform/RuntimeError.h"

namespace vkl {

// Counters and indices of the editor are 16-bit signed; leaving the range is run-time error 6.
inline int16_t checked16(long long v) {
    if (v < std::numeric_limits<int16_t>::min() || v > std::numeric_limits<int16_t>::max()) {
        throw RuntimeError::overflow();
    }
    return static_cast<int16_t>(v);
}

inline int16_t add16(int16_t a, long long b) {
    return checked16(static_cast<long long>(a) + b);
}
inline int16_t sub16(int16_t a, long long b) {
    return checked16(static_cast<long long>(a) - b);
}

}  // namespace vkl
