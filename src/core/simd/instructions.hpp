// Selects an instruction set: the processor's features are detected once, and callers can limit them.
//
// To add an instruction set:
//   1. Add it to `Instructions`, in ascending order, and its detection to instructions.cpp.
//   2. Write number_tests_<set>.cpp with the table of its kernels, like number_tests_avx2.cpp. Use the kernel of
//      `baseline_tests` for one that the set does not have.
//   3. Declare the table in number_tests.hpp and add one case to `number_tests`, both under a macro such as
//      QUORIN_HAS_WIDE_REGISTERS.
//   4. Add the source to CMakeLists.txt and the set to `every_instruction_set`, which the tests iterate over.
//
// To add a kernel: add a member to `NumberTests` and a line to the table of each set.
#pragma once

#include <array>
#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#define QUORIN_HAS_WIDE_REGISTERS
#endif

namespace quorin::core {

// In ascending order. `baseline` is the set that every processor of the architecture has.
enum class Instructions : std::uint8_t { baseline = 0, avx2 = 1, avx512 = 2, best = avx512 };

inline constexpr std::array every_instruction_set{Instructions::baseline, Instructions::avx2, Instructions::avx512};

// min(allowed, the best set that the processor has).
Instructions available(Instructions allowed) noexcept;

}  // namespace quorin::core
