#include "core/gather/number_facts.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

#include "core/simd/number_facts_wide.hpp"
#include "core/simd/packs.hpp"

namespace quorin::core {

namespace {

// From here on every floating-point number is whole.
template <class Float>
constexpr Float always_whole = static_cast<Float>(1) / std::numeric_limits<Float>::epsilon();

template <class Float>
Numbers<Float> without_fraction(Numbers<Float> magnitude) noexcept {
    return (magnitude + always_whole<Float>)-always_whole<Float>;
}

// True of NaN and of everything that is not plainly a whole number.
template <class Float>
Bytes is_doubtful(Numbers<Float> x) noexcept {
    const Numbers<Float> size = magnitude<Float>(x);
    return bytes<Float>(without_fraction<Float>(size) != size) | bytes<Float>(size >= always_whole<Float>);
}

template <class Float>
Bytes is_fraction_or_infinite(Numbers<Float> x) noexcept {
    const Numbers<Float> size = magnitude<Float>(x);
    const Bytes fraction =
        bytes<Float>(without_fraction<Float>(size) != size) & bytes<Float>(size < always_whole<Float>);
    return fraction | bytes<Float>(size == std::numeric_limits<Float>::infinity());
}

template <class Float>
struct SideBySide {
    const Float* values;
    [[nodiscard]] Float one(std::size_t row) const noexcept { return values[row]; }
    [[nodiscard]] Numbers<Float> pack(std::size_t row) const noexcept {
        Numbers<Float> numbers;
        std::memcpy(&numbers, values + row, sizeof numbers);
        return numbers;
    }
};

template <class Float>
struct Apart {
    const char* data;
    std::ptrdiff_t stride;
    [[nodiscard]] Float one(std::size_t row) const noexcept {
        return *reinterpret_cast<const Float*>(data + static_cast<std::ptrdiff_t>(row) * stride);
    }
    [[nodiscard]] Numbers<Float> pack(std::size_t row) const noexcept {
        Numbers<Float> numbers;
        for (std::size_t i = 0; i < sizeof numbers / sizeof(Float); ++i) numbers[i] = one(row + i);
        return numbers;
    }
};

template <class Float, class Rows, class Has>
bool any(const Rows& rows, std::size_t begin, std::size_t end, Has has) noexcept {
    constexpr std::size_t together = sizeof(Numbers<Float>) / sizeof(Float);
    Bytes even{};
    Bytes odd{};
    std::size_t row = begin;
    for (; end - row >= 2 * together; row += 2 * together) {
        even |= has(rows.pack(row));
        odd |= has(rows.pack(row + together));
    }
    // What is left, one number in all places.
    for (; row < end; ++row) even |= has(rows.one(row) - Numbers<Float>{});
    return any_set(even | odd);
}

// The three questions about rows, with the instructions that every processor has.
template <class Float>
struct Baseline {
    template <class Rows>
    static bool any_doubtful(const Rows& rows, std::size_t begin, std::size_t end) noexcept {
        return any<Float>(rows, begin, end, is_doubtful<Float>);
    }
    template <class Rows>
    static bool any_null(const Rows& rows, std::size_t begin, std::size_t end) noexcept {
        return any<Float>(rows, begin, end, is_null<Float>);
    }
    template <class Rows>
    static bool any_fraction_or_infinite(const Rows& rows, std::size_t begin, std::size_t end) noexcept {
        return any<Float>(rows, begin, end, is_fraction_or_infinite<Float>);
    }
};

#ifdef QUORIN_HAS_WIDE_REGISTERS
// The best that the processor has of those allowed.
Instructions available(Instructions allowed) noexcept {
    static const bool avx2 = __builtin_cpu_supports("avx2") != 0;
    // The first processors with AVX-512 ran slower for a while after each use of it; those with its byte permutations
    // do not any more.
    static const bool avx512 = __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vbmi") != 0;
    if (allowed == Instructions::best && avx512) return Instructions::best;
    return allowed != Instructions::baseline && avx2 ? Instructions::avx2 : Instructions::baseline;
}

// What does not fill the wide registers is left to the others.
template <class Float, class Set>
struct Wide {
    using Rows = SideBySide<Float>;
    using Questions = WideQuestions<Set>;
    static std::size_t wide(std::size_t size) noexcept { return size - size % Set::together; }
    static bool any_doubtful(const Rows& rows, std::size_t begin, std::size_t end) noexcept {
        const std::size_t size = wide(end - begin);
        return Questions::any_doubtful(rows.values + begin, size) ||
               Baseline<Float>::any_doubtful(rows, begin + size, end);
    }
    static bool any_null(const Rows& rows, std::size_t begin, std::size_t end) noexcept {
        const std::size_t size = wide(end - begin);
        return Questions::any_null(rows.values + begin, size) || Baseline<Float>::any_null(rows, begin + size, end);
    }
    static bool any_fraction_or_infinite(const Rows& rows, std::size_t begin, std::size_t end) noexcept {
        const std::size_t size = wide(end - begin);
        return Questions::any_fraction_or_infinite(rows.values + begin, size) ||
               Baseline<Float>::any_fraction_or_infinite(rows, begin + size, end);
    }
};
#endif

// Once a block has shown a null or a fraction, the blocks after it are no longer asked.
template <class Questions, class Rows>
void gather_block(NumberFacts& facts, const Rows& rows, std::size_t begin, std::size_t end) noexcept {
    if (!facts.nulls && !facts.fractions && !Questions::any_doubtful(rows, begin, end)) return;
    if (!facts.nulls) facts.nulls = Questions::any_null(rows, begin, end);
    if (!facts.fractions) facts.fractions = Questions::any_fraction_or_infinite(rows, begin, end);
}

template <class Questions, class Rows>
NumberFacts gather_rows(const Rows& rows, std::size_t size) noexcept {
    constexpr std::size_t block = 1024;
    NumberFacts facts;
    for (std::size_t begin = 0; begin < size && !(facts.nulls && facts.fractions); begin += block) {
        gather_block<Questions>(facts, rows, begin, size - begin < block ? size : begin + block);
    }
    // Found at once, unless nearly everything is missing.
    for (std::size_t row = 0; row < size && !facts.values; ++row) facts.values = rows.one(row) == rows.one(row);
    return facts;
}

template <class Float>
NumberFacts gather(const char* data, std::ptrdiff_t stride, std::size_t size,
                   [[maybe_unused]] Instructions instructions) noexcept {
    if (stride != static_cast<std::ptrdiff_t>(sizeof(Float))) {
        return gather_rows<Baseline<Float>>(Apart<Float>{data, stride}, size);
    }
    const SideBySide<Float> rows{reinterpret_cast<const Float*>(data)};
#ifdef QUORIN_HAS_WIDE_REGISTERS
    switch (available(instructions)) {
        case Instructions::best:
            return gather_rows<Wide<Float, Avx512>>(rows, size);
        case Instructions::avx2:
            return gather_rows<Wide<Float, Avx2>>(rows, size);
        case Instructions::baseline:
            break;
    }
#endif
    return gather_rows<Baseline<Float>>(rows, size);
}

// Every four flags as floats. Looking them up takes fewer steps than spreading a byte over eight.
using FourFlags = std::array<double, 4>;
constexpr std::array<FourFlags, 16> four_flags = [] {
    std::array<FourFlags, 16> table{};
    for (unsigned flags = 0; flags < table.size(); ++flags) {
        for (unsigned i = 0; i < 4; ++i) table[flags][i] = (flags >> i & 1U) != 0 ? 1.0 : 0.0;
    }
    return table;
}();

// A bit for each of eight bytes, set where the byte is not zero, the first byte lowest.
unsigned bits_of_flags(const char* bytes) noexcept {
    constexpr std::uint64_t low_bits = 0x7f7f7f7f7f7f7f7f;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t set = ((((word & low_bits) + low_bits) | word) & ~low_bits) >> 7U;
    // Each byte's bit comes to lie in the highest byte, at a place of its own.
    return static_cast<unsigned>(set * 0x0102040810204080 >> 56U);
}

}  // namespace

NumberFacts gather_float64(const char* data, std::ptrdiff_t stride, std::size_t rows,
                           Instructions instructions) noexcept {
    return gather<double>(data, stride, rows, instructions);
}

NumberFacts gather_float32(const char* data, std::ptrdiff_t stride, std::size_t rows,
                           Instructions instructions) noexcept {
    return gather<float>(data, stride, rows, instructions);
}

void write_flags(const char* data, std::ptrdiff_t stride, std::size_t rows, double* out) noexcept {
    std::size_t row = 0;
    if (stride == 1 && std::endian::native == std::endian::little) {
        for (; row + 8 <= rows; row += 8) {
            const unsigned flags = bits_of_flags(data + row);
            std::memcpy(out + row, four_flags[flags & 0xfU].data(), sizeof four_flags[0]);
            std::memcpy(out + row + 4, four_flags[flags >> 4U].data(), sizeof four_flags[0]);
        }
    }
    for (; row < rows; ++row) out[row] = data[static_cast<std::ptrdiff_t>(row) * stride] != 0 ? 1.0 : 0.0;
}

}  // namespace quorin::core
