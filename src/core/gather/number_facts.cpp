#include "core/gather/number_facts.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "core/simd/number_tests.hpp"

namespace quorin::core {

namespace {

// Adds the facts of a block. Skips tests whose result earlier blocks already determine.
template <class Float>
void gather_block(NumberFacts& facts, const NumberTests<Float>& tests, const StridedMemory& block) noexcept {
    if (!facts.fractions) {
        const auto first_test = facts.nulls ? tests.any_fraction_infinite_or_signalling : tests.any_doubtful;
        if (!first_test(block)) return;
    }
    if (!facts.nulls) facts.nulls = tests.any_null(block);
    if (!facts.fractions) facts.fractions = tests.any_fraction_or_infinite(block);
    if (facts.nulls) facts.signalling_nan = facts.signalling_nan || tests.any_signalling_nan(block);
}

// Four flags as four floats, for each combination: a table look-up takes fewer instructions than expanding each flag.
using FourFlags = std::array<double, 4>;
constexpr std::array<FourFlags, 16> four_flags = [] {
    std::array<FourFlags, 16> table{};
    for (unsigned flags = 0; flags < table.size(); ++flags) {
        for (unsigned i = 0; i < 4; ++i) table[flags][i] = (flags >> i & 1U) != 0 ? 1.0 : 0.0;
    }
    return table;
}();

// Bit i of the result is set if bytes[i] != 0, 0 <= i < 8.
unsigned bits_of_flags(const char* bytes) noexcept {
    constexpr std::uint64_t low_bits = 0x7f7f7f7f7f7f7f7f;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t set = ((((word & low_bits) + low_bits) | word) & ~low_bits) >> 7U;
    // The multiplication collects the lowest bits of all bytes in the highest byte.
    return static_cast<unsigned>(set * 0x0102040810204080 >> 56U);
}

}  // namespace

template <class Float>
NumberFacts gather_numbers(const StridedMemory& column, Instructions allowed) noexcept {
    constexpr std::size_t block = 1024;
    const NumberTests<Float>& tests = number_tests<Float>(allowed);
    NumberFacts facts;
    for (std::size_t begin = 0; begin < column.rows; begin += block) {
        gather_block(facts, tests, column.part(begin, std::min(column.rows, begin + block)));
    }
    // Stops at the first row that is not null.
    for (std::size_t row = 0; row < column.rows && !facts.values; ++row) {
        const Float number = load<Float>(column, row);
        facts.values = number == number;
    }
    return facts;
}

template NumberFacts gather_numbers<double>(const StridedMemory&, Instructions) noexcept;
template NumberFacts gather_numbers<float>(const StridedMemory&, Instructions) noexcept;

template <class Float>
bool any_signalling_nan(const StridedMemory& column, Instructions allowed) noexcept {
    constexpr std::size_t block = 4096;
    const NumberTests<Float>& tests = number_tests<Float>(allowed);
    for (std::size_t begin = 0; begin < column.rows; begin += block) {
        if (tests.any_signalling_nan(column.part(begin, std::min(column.rows, begin + block)))) return true;
    }
    return false;
}

template bool any_signalling_nan<double>(const StridedMemory&, Instructions) noexcept;
template bool any_signalling_nan<float>(const StridedMemory&, Instructions) noexcept;

bool any_signalling_nan(const Column& column) noexcept {
    if (column.storage == Storage::float64) return any_signalling_nan<double>(column);
    return column.storage == Storage::float32 && any_signalling_nan<float>(column);
}

void mark_code(const std::uint8_t* __restrict codes, std::size_t rows, std::uint8_t code,
               std::uint8_t* __restrict marks) noexcept {
    for (std::size_t row = 0; row < rows; ++row) marks[row] = static_cast<std::uint8_t>(codes[row] == code);
}

void keep_code(std::uint8_t* codes, std::size_t rows, std::uint8_t code) noexcept {
    for (std::size_t row = 0; row < rows; ++row) codes[row] = static_cast<std::uint8_t>(codes[row] == code);
}

void codes_to_marks(std::uint8_t* codes, std::size_t rows) noexcept {
    for (std::size_t row = 0; row < rows; ++row) codes[row] = static_cast<std::uint8_t>(codes[row] != 0);
}

// Takes `flags` by value, because the stores through `out` may alias a reference.
void write_flags(StridedMemory flags, double* out) noexcept {
    std::size_t row = 0;
    if (flags.stride == 1 && std::endian::native == std::endian::little) {
        for (; row + 8 <= flags.rows; row += 8) {
            const unsigned bits = bits_of_flags(flags.data + row);
            std::memcpy(out + row, four_flags[bits & 0xfU].data(), sizeof four_flags[0]);
            std::memcpy(out + row + 4, four_flags[bits >> 4U].data(), sizeof four_flags[0]);
        }
    }
    for (; row < flags.rows; ++row) out[row] = load<bool>(flags, row) ? 1.0 : 0.0;
}

}  // namespace quorin::core
