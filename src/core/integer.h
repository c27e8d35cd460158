// Integer arithmetic that is defined for every operand.
#ifndef TAVU_CORE_INTEGER_H
#define TAVU_CORE_INTEGER_H

#include <csignal>
#include <cstddef>
#include <cstdint>

namespace tavu {
namespace {

// Addition, multiplication and left shift modulo 2^32.
constexpr int32_t wrap_add(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

constexpr int32_t wrap_multiply(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

constexpr int32_t wrap_shift_left(int32_t a, int32_t n) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) << n);
}

// Truncating division. A zero divisor raises SIGFPE on every processor, even where the divide
// instruction would yield 0; if the signal is ignored, the quotient is 0.
inline int32_t divide(int32_t a, int32_t b) {
    if (b == 0) {
        raise(SIGFPE);
        return 0;
    }
    return b == -1 ? static_cast<int32_t>(0U - static_cast<uint32_t>(a)) : a / b;
}

}  // namespace
}  // namespace tavu

#endif
