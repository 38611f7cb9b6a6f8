#include "columns/distinct.hpp"

#include <cstring>
#include <utility>

#include "columns/numbers.hpp"
#include "interp/errors.hpp"
#include "kernels/number_count.hpp"
#include "kernels/text_order.hpp"

namespace quorin::columns {

namespace {

// Sorted texts lie anywhere in memory.
constexpr std::size_t prefetched = 16;

}  // namespace

std::optional<std::vector<DistinctText>> distinct_texts(const Column& column) {
    constexpr std::size_t most_rows = 0x7fffffff;
    if (column.rows > most_rows) return std::nullopt;
    kernels::TextTable table(column.rows);
    const bool texts = column.storage == Storage::objects ? kernels::add_all(table, ObjectCells(column))
                                                          : kernels::add_all(table, FixedTextCells(column));
    if (!texts) return std::nullopt;
    const std::vector<kernels::DistinctText>& found = table.entries();
    const std::vector<std::uint32_t> order = kernels::ascending(found);
    std::vector<DistinctText> sorted;
    sorted.reserve(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i + prefetched < order.size()) __builtin_prefetch(&found[order[i + prefetched]]);
        const kernels::DistinctText& entry = found[order[i]];
        sorted.push_back({entry.row, static_cast<npy_intp>(entry.count)});
    }
    return sorted;
}

std::optional<std::size_t> count_distinct_numbers(const Column& column, std::size_t enough) {
    kernels::NumberSet numbers(enough);
    std::size_t distinct = 0;
    const bool counted = with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        for (std::size_t row = 0; row < column.rows && distinct < enough; ++row) {
            const Number value = load<Number>(column, row);
            if constexpr (std::is_floating_point_v<Number>) {
                distinct = numbers.add(kernels::pattern_of(static_cast<double>(value)));
            } else {
                distinct = numbers.add(static_cast<std::uint64_t>(value));
            }
        }
        return true;
    });
    if (!counted) return std::nullopt;
    return distinct;
}

Ref texts_of(const Column& column, const std::vector<DistinctText>& distinct) {
    const npy_intp size = static_cast<npy_intp>(distinct.size());
    PyArray_Descr* dtype = PyArray_DESCR(column.array);
    // PyArray_Empty() takes a reference over.
    static_cast<void>(Ref::share(reinterpret_cast<PyObject*>(dtype)).give());
    Ref array = Ref::take(PyArray_Empty(1, &size, dtype, 0));
    char* out = PyArray_BYTES(as_array(array));
    for (std::size_t i = 0; i < distinct.size(); ++i) {
        const DistinctText& entry = distinct[i];
        if (column.storage == Storage::objects) {
            if (i + prefetched < distinct.size()) __builtin_prefetch(column.object(distinct[i + prefetched].row), 1);
            PyObject*& place = *reinterpret_cast<PyObject**>(out);
            Ref::adopt(std::exchange(place, Ref::share(column.object(entry.row)).give()));
        } else {
            std::memcpy(out, column.at(entry.row), column.width);
        }
        out += column.width;
    }
    return array;
}

Ref counts_of(const std::vector<DistinctText>& distinct) {
    const npy_intp size = static_cast<npy_intp>(distinct.size());
    Ref array = Ref::take(PyArray_SimpleNew(1, &size, NPY_INTP));
    auto* out = reinterpret_cast<npy_intp*>(PyArray_BYTES(as_array(array)));
    for (const DistinctText& entry : distinct) *out++ = entry.count;
    return array;
}

}  // namespace quorin::columns
