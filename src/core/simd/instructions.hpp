// The choice of an instruction set: the processor is examined once, callers name the most that they allow.
//
// To add an instruction set:
//   1. Add it to `Instructions`, from least to most, and its detection to instructions.cpp.
//   2. Write number_tests_<set>.cpp with the table of its kernels, after the model of number_tests_avx2.cpp. A kernel
//      that it does not have is the one of `baseline_tests`.
//   3. Declare the table in number_tests.hpp and add one case to `number_tests`, both under a macro as
//      QUORIN_HAS_WIDE_REGISTERS.
//   4. Add the source to CMakeLists.txt and the set to `every_instruction_set`, over which the tests run.
//
// To add a kernel: one member of `NumberTests`, one line in the table of each set.
#pragma once

#include <array>
#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#define QUORIN_HAS_WIDE_REGISTERS
#endif

namespace quorin::core {

// From least to most. `baseline` is what every processor of the architecture has.
enum class Instructions : std::uint8_t { baseline = 0, avx2 = 1, avx512 = 2, best = avx512 };

inline constexpr std::array every_instruction_set{Instructions::baseline, Instructions::avx2, Instructions::avx512};

// The most that the processor has, but not more than `allowed`.
Instructions available(Instructions allowed) noexcept;

}  // namespace quorin::core
