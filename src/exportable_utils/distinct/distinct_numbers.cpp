#include "exportable_utils/distinct/distinct_numbers.hpp"

#include <algorithm>
#include <type_traits>
#include <vector>

#include "core/column.hpp"
#include "core/distinct/number_runs.hpp"
#include "python/errors.hpp"

namespace quorin::distinct {

namespace {

template <class Number>
Number* data_of(Object array) noexcept {
    return reinterpret_cast<Number*>(PyArray_BYTES(as_array(array)));
}

void sort(Object array) {
    if (PyArray_Sort(as_array(array), 0, NPY_QUICKSORT) < 0) throw PythonError(Where::current());
}

// How many of the sorted numbers stand before the NaNs.
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

// Brings a sorted row of numbers down to the different ones, which stand at its start then, and gives their counts.
// NaNs count as one.
template <class Number>
Ref collapse(Number* numbers, std::size_t size) {
    const std::size_t plain = without_nulls(numbers, size);
    const std::size_t runs = core::count_runs(numbers, plain);
    Ref counted = new_array(runs + static_cast<std::size_t>(plain != size), NPY_INTP);
    auto* counts = data_of<npy_intp>(counted);
    core::write_runs(numbers, plain, runs, numbers, counts);
    if (plain != size) {
        numbers[runs] = numbers[plain];
        counts[runs] = static_cast<npy_intp>(size - plain);
    }
    return counted;
}

// The first elements of an array that nobody else knows. What is left of a large one is rather given back than copied:
// memory that is new to the process is slow.
template <class Number>
Ref first_elements(Ref array, std::size_t size, PyArray_Descr* dtype) {
    const auto before = static_cast<std::size_t>(PyArray_SIZE(as_array(array)));
    if (size == before) return array;
    if (size < before / 2) {
        Ref copy = new_array(size, dtype);
        std::copy_n(data_of<Number>(array), size, data_of<Number>(copy));
        return copy;
    }
    npy_intp length = static_cast<npy_intp>(size);
    PyArray_Dims shape{&length, 1};
    const Ref none = Ref::take(PyArray_Resize(as_array(array), &shape, 0, NPY_CORDER));
    return array;
}

template <class Number>
ValuesAndCounts runs_of(Ref sorted, std::size_t size, PyArray_Descr* dtype) {
    Ref counts = collapse(data_of<Number>(sorted), size);
    const auto distinct = static_cast<std::size_t>(PyArray_SIZE(as_array(counts)));
    return {first_elements<Number>(std::move(sorted), distinct, dtype), std::move(counts)};
}

template <class From, class To>
ValuesAndCounts sorted_runs(const ArrayColumn& column, const ExcludedRows& left_out, PyArray_Descr* dtype) {
    const std::size_t size = column.rows - left_out.marked();
    Ref copy = new_array(size, dtype);
    core::copy_kept<From>(column, left_out.marks(), data_of<To>(copy), size);
    sort(copy);
    return runs_of<To>(std::move(copy), size, dtype);
}

// Integers close together are counted in a table, where no sort can follow.
template <class Integer>
std::optional<ValuesAndCounts> counted(const core::StridedMemory& integers, PyArray_Descr* dtype) {
    constexpr std::uint64_t most_slots = 0x10000;
    if (integers.rows == 0) return std::nullopt;
    const auto [least, greatest] = core::range_of<Integer>(integers);
    const std::uint64_t span = static_cast<std::uint64_t>(greatest) - static_cast<std::uint64_t>(least);
    if (span >= most_slots || span > integers.rows + 256) return std::nullopt;
    std::vector<npy_intp> table(static_cast<std::size_t>(span) + 1);
    core::count_each<Integer>(integers, least, table.data());
    const auto distinct = static_cast<std::size_t>(
        std::count_if(table.begin(), table.end(), [](npy_intp occurrences) { return occurrences != 0; }));
    ValuesAndCounts found{new_array(distinct, dtype), new_array(distinct, NPY_INTP)};
    auto* values = data_of<Integer>(found.values);
    auto* counts = data_of<npy_intp>(found.counts);
    for (std::size_t slot = 0; slot < table.size(); ++slot) {
        if (table[slot] == 0) continue;
        *values++ = static_cast<Integer>(static_cast<std::uint64_t>(least) + slot);
        *counts++ = table[slot];
    }
    return found;
}

template <class Integer>
ValuesAndCounts distinct_integers(const ArrayColumn& column, const ExcludedRows& left_out) {
    PyArray_Descr* dtype = PyArray_DESCR(column.array);
    if (left_out.marked() == 0) {
        auto found = counted<Integer>(column, dtype);
        return found ? std::move(*found) : sorted_runs<Integer, Integer>(column, left_out, dtype);
    }
    const std::size_t size = column.rows - left_out.marked();
    Ref copy = new_array(size, dtype);
    core::copy_kept<Integer>(column, left_out.marks(), data_of<Integer>(copy), size);
    if (auto found = counted<Integer>({PyArray_BYTES(as_array(copy)), sizeof(Integer), size}, dtype)) {
        return std::move(*found);
    }
    sort(copy);
    return runs_of<Integer>(std::move(copy), size, dtype);
}

}  // namespace

std::optional<ValuesAndCounts> distinct_numbers(const ArrayColumn& column, ExcludedRows left_out) {
    std::optional<ValuesAndCounts> found;
    // A boolean may be a byte of any value, and what numpy makes of those is its own affair.
    if (column.storage == Storage::boolean && core::range_of<std::uint8_t>(column).greatest > 1) {
        return found;
    }
    core::with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        if constexpr (std::is_floating_point_v<Number>) {
            found = sorted_runs<Number, Number>(column, left_out, PyArray_DESCR(column.array));
        } else if constexpr (std::is_same_v<Number, bool>) {
            found = distinct_integers<std::uint8_t>(column, left_out);
        } else {
            found = distinct_integers<Number>(column, left_out);
        }
        return true;
    });
    return found;
}

std::optional<ValuesAndCounts> distinct_as_float64(const ArrayColumn& column, ExcludedRows left_out) {
    if (column.storage == Storage::float64) return distinct_numbers(column, left_out);
    if (column.storage != Storage::float32) return std::nullopt;
    const Ref float64 = Ref::take(reinterpret_cast<PyObject*>(PyArray_DescrFromType(NPY_DOUBLE)));
    auto* wide = reinterpret_cast<PyArray_Descr*>(float64.get());
    const std::size_t size = column.rows - left_out.marked();
    const Ref copy = new_array(size, NPY_FLOAT);
    auto* numbers = data_of<float>(copy);
    core::copy_kept<float>(column, left_out.marks(), numbers, size);
    if (core::has_unlike_equals(numbers, size)) return sorted_runs<float, double>(column, left_out, wide);
    // Half the width sorts faster, and where equal numbers are all alike the result is the same.
    sort(copy);
    Ref counts = collapse(numbers, size);
    const auto distinct = static_cast<std::size_t>(PyArray_SIZE(as_array(counts)));
    Ref values = new_array(distinct, wide);
    core::copy_kept<float>({PyArray_BYTES(as_array(copy)), sizeof(float), distinct}, nullptr, data_of<double>(values),
                           distinct);
    return ValuesAndCounts{std::move(values), std::move(counts)};
}

}  // namespace quorin::distinct
