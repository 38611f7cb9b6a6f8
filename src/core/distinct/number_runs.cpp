#include "core/distinct/number_runs.hpp"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace quorin::core {

namespace {

template <class Number>
Number at(const char* data, std::ptrdiff_t stride, std::size_t row) noexcept {
    Number number;
    std::memcpy(&number, data + static_cast<std::ptrdiff_t>(row) * stride, sizeof number);
    return number;
}

// Calls `use` with the stride, known while compiling where the numbers stand side by side.
template <class Number, class Use>
auto with_stride(std::ptrdiff_t stride, Use use) noexcept {
    constexpr auto side_by_side = static_cast<std::ptrdiff_t>(sizeof(Number));
    if (stride == side_by_side) return use(std::integral_constant<std::ptrdiff_t, side_by_side>{});
    return use(stride);
}

}  // namespace

template <class Float>
std::size_t mark_nulls(const char* data, std::ptrdiff_t stride, std::size_t rows, char* mask) noexcept {
    return with_stride<Float>(stride, [&](auto step) {
        std::size_t nulls = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            const Float value = at<Float>(data, step, row);
            const bool null = value != value;
            mask[row] = static_cast<char>(null);
            nulls += static_cast<std::size_t>(null);
        }
        return nulls;
    });
}

std::size_t count_marked(const char* mask, std::size_t rows) noexcept {
    std::size_t marked = 0;
    for (std::size_t row = 0; row < rows; ++row) marked += static_cast<std::size_t>(mask[row] != 0);
    return marked;
}

template <class From, class To>
void copy_kept(const char* data, std::ptrdiff_t stride, const char* left_out, To* out, std::size_t kept) noexcept {
    with_stride<From>(stride, [&](auto step) {
        if (left_out == nullptr) {
            for (std::size_t row = 0; row < kept; ++row) out[row] = static_cast<To>(at<From>(data, step, row));
            return;
        }
        // What is left out is overwritten by what comes next, so that nothing has to be predicted.
        const To* const end = out + kept;
        for (std::size_t row = 0; out != end; ++row) {
            *out = static_cast<To>(at<From>(data, step, row));
            out += static_cast<std::ptrdiff_t>(left_out[row] == 0);
        }
    });
}

template <class Number>
std::size_t count_runs(const Number* sorted, std::size_t size) noexcept {
    std::size_t runs = static_cast<std::size_t>(size != 0);
    for (std::size_t i = 1; i < size; ++i) runs += static_cast<std::size_t>(sorted[i] != sorted[i - 1]);
    return runs;
}

template <class Number>
void write_runs(const Number* sorted, std::size_t size, std::size_t runs, Number* values,
                std::ptrdiff_t* counts) noexcept {
    if (runs == 0) return;
    if (runs == size) {
        if (values != sorted) std::memmove(values, sorted, size * sizeof(Number));
        for (std::size_t i = 0; i < size; ++i) counts[i] = 1;
        return;
    }
    // Where each run starts; what starts none is overwritten by what comes next.
    values[0] = sorted[0];
    counts[0] = 0;
    Number last = sorted[0];
    std::size_t run = 1;
    for (std::size_t i = 1; run < runs; ++i) {
        const Number value = sorted[i];
        values[run] = value;
        counts[run] = static_cast<std::ptrdiff_t>(i);
        run += static_cast<std::size_t>(value != last);
        last = value;
    }
    for (std::size_t i = 0; i + 1 < runs; ++i) counts[i] = counts[i + 1] - counts[i];
    counts[runs - 1] = static_cast<std::ptrdiff_t>(size) - counts[runs - 1];
}

template <class Integer>
Range<Integer> range_of(const char* data, std::ptrdiff_t stride, std::size_t rows) noexcept {
    return with_stride<Integer>(stride, [&](auto step) {
        Range<Integer> range{std::numeric_limits<Integer>::max(), std::numeric_limits<Integer>::min()};
        for (std::size_t row = 0; row < rows; ++row) {
            const Integer value = at<Integer>(data, step, row);
            range.least = value < range.least ? value : range.least;
            range.greatest = value > range.greatest ? value : range.greatest;
        }
        return range;
    });
}

template <class Integer>
void count_each(const char* data, std::ptrdiff_t stride, std::size_t rows, Integer least,
                std::ptrdiff_t* table) noexcept {
    using Distance = std::make_unsigned_t<Integer>;
    for (std::size_t row = 0; row < rows; ++row) {
        const auto value = static_cast<Distance>(at<Integer>(data, stride, row));
        ++table[static_cast<Distance>(value - static_cast<Distance>(least))];
    }
}

template <class Float>
bool has_unlike_equals(const Float* values, std::size_t size) noexcept {
    using Bits = std::conditional_t<sizeof(Float) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    const Bits negative = std::bit_cast<Bits>(Float{-0.0F});
    Bits plus = 0;
    Bits minus = 0;
    Bits null = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const Bits bits = std::bit_cast<Bits>(values[i]);
        plus |= static_cast<Bits>(bits == 0);
        minus |= static_cast<Bits>(bits == negative);
        null |= static_cast<Bits>(values[i] != values[i]);
    }
    return null != 0 || (plus != 0 && minus != 0);
}

FractionTally tally_fractions(const double* values, const std::ptrdiff_t* counts, std::size_t size) noexcept {
    // Two side by side, which every processor in use compares at once; a comparison sets all bits of a number's place
    // or none. By itself the compiler finds no such form.
    using Numbers [[gnu::vector_size(16)]] = double;
    using Bits [[gnu::vector_size(16)]] = std::int64_t;
    static_assert(sizeof(std::ptrdiff_t) == sizeof(std::int64_t));
    constexpr std::size_t together = 2;
    // From here on every number is whole.
    constexpr double always_whole = 1.0 / std::numeric_limits<double>::epsilon();
    Bits distinct{};
    Bits rows{};
    const auto add = [&](Numbers numbers, Bits occurrences) {
        constexpr std::int64_t sign = std::numeric_limits<std::int64_t>::min();
        const auto magnitude = std::bit_cast<Numbers>(std::bit_cast<Bits>(numbers) & ~sign);
        const auto fraction = std::bit_cast<Bits>((magnitude + always_whole) - always_whole != magnitude) &
                              std::bit_cast<Bits>(magnitude < always_whole);
        const auto finite = std::bit_cast<Bits>(magnitude <= std::numeric_limits<double>::max());
        const Bits counted = fraction | ~finite;
        distinct -= counted;
        rows += occurrences & counted;
    };
    std::size_t i = 0;
    for (; size - i >= together; i += together) {
        Numbers numbers;
        Bits occurrences;
        std::memcpy(&numbers, values + i, sizeof numbers);
        std::memcpy(&occurrences, counts + i, sizeof occurrences);
        add(numbers, occurrences);
    }
    if (i < size) add(Numbers{values[i], 0.0}, Bits{counts[i], 0});
    return {static_cast<std::size_t>(distinct[0] + distinct[1]), rows[0] + rows[1]};
}

std::ptrdiff_t sum(const std::ptrdiff_t* counts, std::size_t size) noexcept {
    std::ptrdiff_t total = 0;
    for (std::size_t i = 0; i < size; ++i) total += counts[i];
    return total;
}

template std::size_t mark_nulls<double>(const char*, std::ptrdiff_t, std::size_t, char*) noexcept;
template std::size_t mark_nulls<float>(const char*, std::ptrdiff_t, std::size_t, char*) noexcept;
template bool has_unlike_equals<float>(const float*, std::size_t) noexcept;
template bool has_unlike_equals<double>(const double*, std::size_t) noexcept;
template void copy_kept<float, double>(const char*, std::ptrdiff_t, const char*, double*, std::size_t) noexcept;

#define QUORIN_FOR_NUMBER(Number)                                                                                     \
    template void copy_kept<Number, Number>(const char*, std::ptrdiff_t, const char*, Number*, std::size_t) noexcept; \
    template std::size_t count_runs<Number>(const Number*, std::size_t) noexcept;                                     \
    template void write_runs<Number>(const Number*, std::size_t, std::size_t, Number*, std::ptrdiff_t*) noexcept;
#define QUORIN_FOR_INTEGER(Integer)                                                                                 \
    template Range<Integer> range_of<Integer>(const char*, std::ptrdiff_t, std::size_t) noexcept;                   \
    template void count_each<Integer>(const char*, std::ptrdiff_t, std::size_t, Integer, std::ptrdiff_t*) noexcept; \
    QUORIN_FOR_NUMBER(Integer)

QUORIN_FOR_NUMBER(double)
QUORIN_FOR_NUMBER(float)
QUORIN_FOR_INTEGER(std::int8_t)
QUORIN_FOR_INTEGER(std::int16_t)
QUORIN_FOR_INTEGER(std::int32_t)
QUORIN_FOR_INTEGER(std::int64_t)
QUORIN_FOR_INTEGER(std::uint8_t)
QUORIN_FOR_INTEGER(std::uint16_t)
QUORIN_FOR_INTEGER(std::uint32_t)
QUORIN_FOR_INTEGER(std::uint64_t)

#undef QUORIN_FOR_INTEGER
#undef QUORIN_FOR_NUMBER

}  // namespace quorin::core
