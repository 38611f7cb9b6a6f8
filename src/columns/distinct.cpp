#include "columns/distinct.hpp"

#include <cstring>
#include <utility>

#include "columns/numbers.hpp"
#include "interp/errors.hpp"
#include "kernels/number_count.hpp"
#include "kernels/text_order.hpp"

namespace quorin::columns {

namespace {

template <class Cells>
std::optional<std::vector<DistinctText>> distinct_of(const Cells& cells) {
    std::vector<DistinctText> found;
    kernels::TextTable table;
    const auto text_of = [&](std::uint32_t number) { return found[number].text; };
    std::uint32_t last = 0;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        cells.prefetch(row + kernels::prefetch_distance);
        kernels::TextView text{};
        if (cells.read(row, text) != kernels::Cell::text) return std::nullopt;
        // Neighbours are often the same object.
        if (!found.empty() && text.characters == found[last].text.characters) {
            ++found[last].count;
            continue;
        }
        const auto next = static_cast<std::uint32_t>(found.size());
        last = table.find_or_add(text, next, text_of);
        if (last == next) {
            found.push_back({text, row, 1});
        } else {
            ++found[last].count;
        }
    }
    return found;
}

}  // namespace

std::optional<std::vector<DistinctText>> distinct_texts(const Column& column) {
    constexpr std::size_t most_rows = 0x7fffffff;
    if (column.rows > most_rows) return std::nullopt;
    std::optional<std::vector<DistinctText>> found =
        column.storage == Storage::objects ? distinct_of(ObjectCells(column)) : distinct_of(FixedTextCells(column));
    if (!found) return std::nullopt;
    std::vector<kernels::TextView> texts;
    texts.reserve(found->size());
    for (const DistinctText& entry : *found) texts.push_back(entry.text);
    std::vector<DistinctText> sorted;
    sorted.reserve(found->size());
    for (const std::uint32_t number : kernels::ascending(texts)) sorted.push_back((*found)[number]);
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
    for (const DistinctText& entry : distinct) {
        if (column.storage == Storage::objects) {
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
