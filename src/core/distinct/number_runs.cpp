#include "core/distinct/number_runs.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "core/simd/elements.hpp"

namespace quorin::core {

namespace {

// The number of rows whose marks fill one register.
constexpr std::size_t rows_at_once = sizeof(Bytes);

// 1 for each null of `rows_at_once` rows, 0 for the others.
template <class Float, class Stride>
Bytes null_marks(const Elements<Float, Float, Stride>& elements, std::size_t row) noexcept {
    const auto nulls = [&](std::size_t i) { return is_null<Float>(elements.pack(row + i * lanes<Float>)); };
    if constexpr (lanes<Float> == 4) {
        return halved_to_8(halved_to_16(nulls(0), nulls(1)), halved_to_16(nulls(2), nulls(3))) & 1;
    } else {
        const auto four = [&](std::size_t i) { return halved_to_32(nulls(i), nulls(i + 1)); };
        return halved_to_8(halved_to_16(four(0), four(2)), halved_to_16(four(4), four(6))) & 1;
    }
}

// The sum of marks_at(row), bytes that are 0 or 1, over all multiples of `rows_at_once` below `rows`.
template <class MarksAt>
std::size_t sum_of_marks(std::size_t rows, MarksAt marks_at) noexcept {
    // A byte counts to 255.
    constexpr std::size_t block = 255 * rows_at_once;
    std::size_t total = 0;
    for (std::size_t row = 0; row < rows;) {
        const std::size_t end = std::min(rows, row + block);
        Bytes counts{};
        for (; row < end; row += rows_at_once) counts += marks_at(row);
        total += sum(counts);
    }
    return total;
}

}  // namespace

template <class Float>
std::size_t mark_nulls(const StridedMemory& column, char* mask) noexcept {
    const std::size_t in_packs = column.rows - column.rows % rows_at_once;
    return with_elements<Float>(column, [=, rows = column.rows](auto elements) {
        std::size_t nulls = sum_of_marks(in_packs, [=](std::size_t row) {
            const Bytes marks = null_marks(elements, row);
            std::memcpy(mask + row, &marks, sizeof marks);
            return marks;
        });
        for (std::size_t row = in_packs; row < rows; ++row) {
            const Float value = elements.one(row);
            const bool null = value != value;
            mask[row] = static_cast<char>(null);
            nulls += static_cast<std::size_t>(null);
        }
        return nulls;
    });
}

std::size_t count_marked(const char* mask, std::size_t rows) noexcept {
    const std::size_t in_packs = rows - rows % rows_at_once;
    std::size_t marked = sum_of_marks(in_packs, [=](std::size_t row) {
        Bytes bytes{};
        std::memcpy(&bytes, mask + row, sizeof bytes);
        return std::bit_cast<Bytes>(bytes != 0) & 1;
    });
    for (std::size_t row = in_packs; row < rows; ++row) marked += static_cast<std::size_t>(mask[row] != 0);
    return marked;
}

template <class From, class To>
void copy_kept(const StridedMemory& column, const char* left_out, To* out, std::size_t kept) noexcept {
    with_elements<From, To>(column, [=](auto elements) {
        if (left_out == nullptr) {
            for (std::size_t row = 0; row < kept; ++row) out[row] = elements.one(row);
            return;
        }
        // An excluded row is overwritten by the next one, so that no branch depends on the mask.
        To* next = out;
        for (std::size_t row = 0; next != out + kept; ++row) {
            *next = elements.one(row);
            next += static_cast<std::ptrdiff_t>(left_out[row] == 0);
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
    // First pass: the start of each run, without a branch. A row that starts no run is overwritten by the next one.
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
Range<Integer> range_of(const StridedMemory& column) noexcept {
    const std::size_t rows = column.rows;
    return with_elements<Integer>(column, [=](auto elements) {
        Range<Integer> range{std::numeric_limits<Integer>::max(), std::numeric_limits<Integer>::min()};
        for (std::size_t row = 0; row < rows; ++row) {
            const Integer value = elements.one(row);
            range.least = value < range.least ? value : range.least;
            range.greatest = value > range.greatest ? value : range.greatest;
        }
        return range;
    });
}

// By value: the stores through `table` could otherwise change the view.
template <class Integer>
void count_each(StridedMemory column, Integer least, std::ptrdiff_t* table) noexcept {
    using Distance = std::make_unsigned_t<Integer>;
    for (std::size_t row = 0; row < column.rows; ++row) {
        const auto value = static_cast<Distance>(load<Integer>(column, row));
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
    static_assert(sizeof(std::ptrdiff_t) == sizeof(std::int64_t));
    constexpr std::size_t together = lanes<double>;
    Bits<double> distinct{};
    Bits<double> rows{};
    const auto add = [&](Numbers<double> numbers, Bits<double> occurrences) {
        const Numbers<double> absolute = magnitude<double>(numbers);
        const auto fraction = std::bit_cast<Bits<double>>(rounded<double>(absolute) != absolute) &
                              std::bit_cast<Bits<double>>(absolute < always_whole<double>);
        const auto finite = std::bit_cast<Bits<double>>(absolute <= std::numeric_limits<double>::max());
        const Bits<double> counted = fraction | ~finite;
        distinct -= counted;
        rows += occurrences & counted;
    };
    std::size_t i = 0;
    for (; size - i >= together; i += together) {
        Numbers<double> numbers;
        Bits<double> occurrences;
        std::memcpy(&numbers, values + i, sizeof numbers);
        std::memcpy(&occurrences, counts + i, sizeof occurrences);
        add(numbers, occurrences);
    }
    if (i < size) add(Numbers<double>{values[i], 0.0}, Bits<double>{counts[i], 0});
    return {static_cast<std::size_t>(distinct[0] + distinct[1]), rows[0] + rows[1]};
}

std::ptrdiff_t sum(const std::ptrdiff_t* counts, std::size_t size) noexcept {
    std::ptrdiff_t total = 0;
    for (std::size_t i = 0; i < size; ++i) total += counts[i];
    return total;
}

template std::size_t mark_nulls<double>(const StridedMemory&, char*) noexcept;
template std::size_t mark_nulls<float>(const StridedMemory&, char*) noexcept;
template bool has_unlike_equals<float>(const float*, std::size_t) noexcept;
template bool has_unlike_equals<double>(const double*, std::size_t) noexcept;
template void copy_kept<float, double>(const StridedMemory&, const char*, double*, std::size_t) noexcept;

#define QUORIN_FOR_NUMBER(Number)                                                                              \
    template void copy_kept<Number, Number>(const StridedMemory&, const char*, Number*, std::size_t) noexcept; \
    template std::size_t count_runs<Number>(const Number*, std::size_t) noexcept;                              \
    template void write_runs<Number>(const Number*, std::size_t, std::size_t, Number*, std::ptrdiff_t*) noexcept;
#define QUORIN_FOR_INTEGER(Integer)                                                      \
    template Range<Integer> range_of<Integer>(const StridedMemory&) noexcept;            \
    template void count_each<Integer>(StridedMemory, Integer, std::ptrdiff_t*) noexcept; \
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
