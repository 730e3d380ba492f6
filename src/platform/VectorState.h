#pragma once

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
#include <immintrin.h>
#define VKL_X86_VECTOR_STATE 1
#endif

// Toolkit code (painting, start-up) can leave the upper halves of the AVX registers in use.
// Until they are cleared, every plain SSE instruction of this thread runs behind them: reading a
// menu file then takes about 1.7 times as long. Clearing them is one instruction, run where the
// editor's own work starts; on processors without AVX, and elsewhere, it does nothing.
namespace vkl {

#ifdef VKL_X86_VECTOR_STATE
__attribute__((target("avx"))) inline void clearUpperVectorHalvesWithAvx() {
    _mm256_zeroupper();
}

inline void clearUpperVectorHalves() {
    static const bool avx = __builtin_cpu_supports("avx");
    if (avx) {
        clearUpperVectorHalvesWithAvx();
    }
}
#else
inline void clearUpperVectorHalves() {}
#endif

}  // namespace vkl
