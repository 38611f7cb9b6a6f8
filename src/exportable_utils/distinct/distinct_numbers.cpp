#include "exportable_utils/distinct/distinct_numbers.hpp"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

#include "core/column.hpp"
#include "core/distinct/number_runs.hpp"
#include "python/errors.hpp"

namespace quorin::distinct {

namespace {

// No other code has a reference to the arrays that are made here: foreign code cannot change their memory.

template <class Number>
Number* data_of(Object array) noexcept {
    return reinterpret_cast<Number*>(PyArray_BYTES(as_array(array)));
}

std::size_t size_of(Object array) noexcept {
    return static_cast<std::size_t>(PyArray_SIZE(as_array(array)));
}

PyArray_Descr* descriptor_of(Object dtype) noexcept {
    return reinterpret_cast<PyArray_Descr*>(dtype.get());
}

// Foreign code: numpy releases the GIL while it sorts.
void sort(Object array) {
    foreign_code_may_run();
    if (PyArray_Sort(as_array(array), 0, NPY_QUICKSORT) < 0) throw PythonError(Where::current());
}

// The number of elements before the first NaN of sorted numbers.
template <class Number>
std::size_t without_nulls(const Number* numbers, std::size_t size) {
    if constexpr (std::is_floating_point_v<Number>) {
        if (size != 0 && std::isnan(numbers[size - 1])) {
            const auto is_number = [](Number number) { return !std::isnan(number); };
            return static_cast<std::size_t>(std::partition_point(numbers, numbers + size, is_number) - numbers);
        }
    }
    return size;
}

// Calls use(first, last) for consecutive ranges of sorted numbers. No run of equal numbers is split between two ranges.
template <class Number, class Use>
void in_whole_runs(const Number* sorted, std::size_t size, Use use) {
    SignalTimer timer;
    for (std::size_t first = 0; first < size;) {
        if (first != 0) timer.poll();
        std::size_t last = std::min(size, first + rows_between_signals);
        if (last != size) {
            last = static_cast<std::size_t>(std::upper_bound(sorted + last, sorted + size, sorted[last - 1]) - sorted);
        }
        use(first, last);
        first = last;
    }
}

// Moves the distinct numbers of a sorted array to the front and returns their counts. All NaN are one distinct value.
template <class Number>
Ref collapse(Number* numbers, std::size_t size) {
    const std::size_t plain = without_nulls(numbers, size);
    std::size_t runs = 0;
    in_whole_runs(numbers, plain, [&](std::size_t first, std::size_t last) {
        runs += core::count_runs(numbers + first, last - first);
    });
    Ref counted = new_array(runs + static_cast<std::size_t>(plain != size), NPY_INTP);
    auto* counts = data_of<npy_intp>(counted);
    std::size_t written = 0;
    in_whole_runs(numbers, plain, [&](std::size_t first, std::size_t last) {
        const std::size_t found = last == plain && first == 0 ? runs : core::count_runs(numbers + first, last - first);
        core::write_runs(numbers + first, last - first, found, numbers + written, counts + written);
        written += found;
    });
    if (plain != size) {
        numbers[runs] = numbers[plain];
        counts[runs] = static_cast<npy_intp>(size - plain);
    }
    return counted;
}

// The first `size` elements of an array that is made here. Shrinks the array in place if it keeps at least half of it:
// a copy would need new memory, which costs page faults.
template <class Number>
Ref first_elements(Ref array, std::size_t size, Object dtype) {
    const std::size_t before = size_of(array);
    if (size == before) return array;
    if (size < before / 2) {
        Ref copy = new_array(size, descriptor_of(dtype));
        std::copy_n(data_of<Number>(array), size, data_of<Number>(copy));
        return copy;
    }
    npy_intp length = static_cast<npy_intp>(size);
    PyArray_Dims shape{&length, 1};
    foreign_code_may_run();
    const Ref none = Ref::take(PyArray_Resize(as_array(array), &shape, 0, NPY_CORDER));
    return array;
}

template <class Number>
ValuesAndCounts runs_of(Ref sorted, Object dtype) {
    Ref counts = collapse(data_of<Number>(sorted), size_of(sorted));
    const std::size_t distinct = size_of(counts);
    return {first_elements<Number>(std::move(sorted), distinct, dtype), std::move(counts)};
}

// A new array of the numbers that are not excluded. Returns an empty Ref if the column has changed.
template <class From, class To>
Ref copy_included(const ColumnSource& column, const ExcludedRows& excluded, Object dtype) {
    Ref copy = new_array(column.rows() - excluded.marked(), descriptor_of(dtype));
    To* out = data_of<To>(copy);
    const bool done = column.in_blocks([&](const ArrayColumn& numbers, std::size_t first, std::size_t last) {
        const char* marks = excluded.marks() == nullptr ? nullptr : excluded.marks() + first;
        const std::size_t size = last - first - (marks == nullptr ? 0 : core::count_marked(marks, last - first));
        core::copy_kept<From>(numbers.part(first, last), marks, out, size);
        out += size;
        return true;
    });
    return done ? std::move(copy) : Ref();
}

template <class From, class To>
std::optional<ValuesAndCounts> sorted_runs(const ColumnSource& column, const ExcludedRows& excluded, Object dtype) {
    Ref copy = copy_included<From, To>(column, excluded, dtype);
    if (!copy) return std::nullopt;
    sort(copy);
    return runs_of<To>(std::move(copy), dtype);
}

// Counts integers of a small range in a table, which is faster than sorting.
template <class Integer>
class CountTable {
  public:
    // Extends the range. Returns false if it is too large for a table of `size` integers in total.
    bool include(const core::Range<Integer>& range, std::size_t size) noexcept {
        least_ = std::min(least_, range.least);
        greatest_ = std::max(greatest_, range.greatest);
        return span() < most_slots && span() <= size + small;
    }
    void allocate() { counts_.resize(static_cast<std::size_t>(span()) + 1); }
    // Counts integers. Returns false if one is outside the range.
    bool count(const core::StridedMemory& integers) noexcept {
        const auto [least, greatest] = core::range_of<Integer>(integers);
        if (least < least_ || greatest > greatest_) return false;
        count_in_range(integers);
        return true;
    }
    // The same for integers that are known to be in the range.
    void count_in_range(const core::StridedMemory& integers) noexcept {
        core::count_each<Integer>(integers, least_, counts_.data());
    }
    [[nodiscard]] ValuesAndCounts arrays(Object dtype) const {
        const auto distinct = static_cast<std::size_t>(
            std::count_if(counts_.begin(), counts_.end(), [](npy_intp occurrences) { return occurrences != 0; }));
        ValuesAndCounts found{new_array(distinct, descriptor_of(dtype)), new_array(distinct, NPY_INTP)};
        auto* values = data_of<Integer>(found.values);
        auto* counts = data_of<npy_intp>(found.counts);
        for (std::size_t slot = 0; slot < counts_.size(); ++slot) {
            if (counts_[slot] == 0) continue;
            *values++ = static_cast<Integer>(static_cast<std::uint64_t>(least_) + slot);
            *counts++ = counts_[slot];
        }
        return found;
    }

  private:
    static constexpr std::uint64_t most_slots = 0x10000;
    static constexpr std::size_t small = 256;
    [[nodiscard]] std::uint64_t span() const noexcept {
        return static_cast<std::uint64_t>(greatest_) - static_cast<std::uint64_t>(least_);
    }
    Integer least_ = std::numeric_limits<Integer>::max();
    Integer greatest_ = std::numeric_limits<Integer>::min();
    std::vector<npy_intp> counts_;
};

// Counts the integers of a column without copying it. Returns nullopt if their range is too large or the column has
// changed.
template <class Integer>
std::optional<ValuesAndCounts> counted_column(const ColumnSource& column, Object dtype) {
    CountTable<Integer> table;
    const bool one_block = column.rows() <= rows_between_signals;
    const bool close = column.in_blocks([&](const ArrayColumn& numbers, std::size_t first, std::size_t last) {
        const auto range = core::range_of<Integer>(numbers.part(first, last));
        if (!table.include(range, column.rows())) return false;
        if (one_block) {
            table.allocate();
            table.count_in_range(numbers);
        }
        return true;
    });
    if (!close) return std::nullopt;
    if (one_block) return table.arrays(dtype);
    table.allocate();
    const bool done = column.in_blocks([&](const ArrayColumn& numbers, std::size_t first, std::size_t last) {
        return table.count(numbers.part(first, last));
    });
    if (!done) return std::nullopt;
    return table.arrays(dtype);
}

// The same for an array that is made here.
template <class Integer>
std::optional<ValuesAndCounts> counted_copy(Object copy, Object dtype) {
    CountTable<Integer> table;
    const std::size_t size = size_of(copy);
    const core::StridedMemory integers{PyArray_BYTES(as_array(copy)), sizeof(Integer), size};
    const bool close = in_blocks(size, [&](std::size_t first, std::size_t last) {
        return table.include(core::range_of<Integer>(integers.part(first, last)), size);
    });
    if (!close || size == 0) return std::nullopt;
    table.allocate();
    in_blocks(size, [&](std::size_t first, std::size_t last) {
        table.count_in_range(integers.part(first, last));
        return true;
    });
    return table.arrays(dtype);
}

template <class Integer>
std::optional<ValuesAndCounts> distinct_integers(const ColumnSource& column, const ExcludedRows& excluded,
                                                 Object dtype) {
    if (excluded.marked() == 0) {
        if (auto found = counted_column<Integer>(column, dtype)) return found;
        return sorted_runs<Integer, Integer>(column, excluded, dtype);
    }
    Ref copy = copy_included<Integer, Integer>(column, excluded, dtype);
    if (!copy) return std::nullopt;
    if (auto found = counted_copy<Integer>(copy, dtype)) return found;
    sort(copy);
    return runs_of<Integer>(std::move(copy), dtype);
}

// Whether all booleans are stored as the byte 0 or 1; other bytes take the interpreter route.
bool are_bits(const ColumnSource& column) {
    return column.in_blocks([](const ArrayColumn& flags, std::size_t first, std::size_t last) {
        return core::range_of<std::uint8_t>(flags.part(first, last)).greatest <= 1;
    });
}

}  // namespace

std::optional<ValuesAndCounts> distinct_numbers(const ColumnSource& column, const ExcludedRows& excluded) {
    std::optional<ValuesAndCounts> found;
    const Ref dtype = column.dtype();
    if (!dtype || (column.storage() == Storage::boolean && !are_bits(column))) return found;
    core::with_number_type(column.layout(), [&](auto number) {
        using Number = decltype(number);
        if constexpr (std::is_floating_point_v<Number>) {
            found = sorted_runs<Number, Number>(column, excluded, dtype);
        } else if constexpr (std::is_same_v<Number, bool>) {
            found = distinct_integers<std::uint8_t>(column, excluded, dtype);
        } else {
            found = distinct_integers<Number>(column, excluded, dtype);
        }
        return true;
    });
    return found;
}

std::optional<ValuesAndCounts> distinct_as_float64(const ColumnSource& column, const ExcludedRows& excluded) {
    if (column.storage() == Storage::float64) return distinct_numbers(column, excluded);
    if (column.storage() != Storage::float32) return std::nullopt;
    const Ref float32 = column.dtype();
    const Ref float64 = Ref::take(reinterpret_cast<PyObject*>(PyArray_DescrFromType(NPY_DOUBLE)));
    if (!float32) return std::nullopt;
    const Ref copy = copy_included<float, float>(column, excluded, float32);
    if (!copy) return std::nullopt;
    if (core::has_unlike_equals(data_of<float>(copy), size_of(copy))) {
        return sorted_runs<float, double>(column, excluded, float64);
    }
    // float32 sorts faster, and the result is the same because equal numbers have equal bits.
    sort(copy);
    Ref counts = collapse(data_of<float>(copy), size_of(copy));
    const std::size_t distinct = size_of(counts);
    Ref values = new_array(distinct, descriptor_of(float64));
    const core::StridedMemory short_values{PyArray_BYTES(as_array(copy)), sizeof(float), distinct};
    in_blocks(distinct, [&](std::size_t first, std::size_t last) {
        core::copy_kept<float>(short_values.part(first, last), nullptr, data_of<double>(values) + first, last - first);
        return true;
    });
    return ValuesAndCounts{std::move(values), std::move(counts)};
}

}  // namespace quorin::distinct
