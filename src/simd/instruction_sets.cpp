// What Highway asks at run time: which of the instruction sets that the kernels are compiled for
// this machine has. Its shared library answers it, too, but measures the machine's timer for
// several milliseconds whenever a process loads it, which is longer than a small page takes. Only
// its headers are used, so both functions stand here; and the one that its own checks end the
// process by, which builds with sanitizers make.
//
// Sets that a newer Highway knows and this file does not are left out; the next lower one is taken.
#include <hwy/highway.h>
#include <hwy/targets.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#if HWY_ARCH_X86
#include <cpuid.h>
#endif

namespace {

#if HWY_ARCH_X86

// Three features that not every compiler's __builtin_cpu_supports has a name for. They need no more
// of the operating system than the ones asked for beside them.
bool has_half_floats() {
    unsigned a = 0, b = 0, c = 0, d = 0;
    return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
}
bool counts_leading_zeros() {
    unsigned a = 0, b = 0, c = 0, d = 0;
    return __get_cpuid(0x80000001, &a, &b, &c, &d) != 0 && (c & bit_LZCNT) != 0;
}
bool encrypts_vectors() {
    unsigned a = 0, b = 0, c = 0, d = 0;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (c & bit_VAES) != 0;
}

bool has_avx2() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
           __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
           counts_leading_zeros() && has_half_floats();
}

bool has_avx3() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512cd");
}

bool has_avx3_dl() {
    return __builtin_cpu_supports("avx512vnni") && __builtin_cpu_supports("vpclmulqdq") &&
           __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2") &&
           __builtin_cpu_supports("avx512vpopcntdq") && __builtin_cpu_supports("avx512bitalg") &&
           __builtin_cpu_supports("gfni") && encrypts_vectors();
}

std::int64_t find_sets() {
    std::int64_t sets = HWY_STATIC_TARGET;
    if (!has_avx2()) return sets;
    sets |= HWY_AVX2;
    if (!has_avx3()) return sets;
    sets |= HWY_AVX3;
    return has_avx3_dl() ? sets | HWY_AVX3_DL : sets;
}

#else

std::int64_t find_sets() {
    return HWY_STATIC_TARGET;
}

#endif

}  // namespace

namespace hwy {

std::int64_t SupportedTargets() {
    static const std::int64_t sets = find_sets();
    return sets;
}

void Abort(const char* file, int line, const char* format, ...) {
    std::fprintf(stderr, "%s:%d: ", file, line);
    std::va_list values;
    va_start(values, format);
    std::vfprintf(stderr, format, values);
    va_end(values);
    std::abort();
}

ChosenTarget& GetChosenTarget() {
    static ChosenTarget chosen;
    return chosen;
}

}  // namespace hwy
