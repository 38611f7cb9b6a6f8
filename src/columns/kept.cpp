#include "columns/kept.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "interp/errors.hpp"

namespace quorin::columns {

namespace {

enum class Place { left_out, kept, unknown };

// A null is contained only as the very object that it is. `number` is set for what is kept.
Place place_of(const Column& column, std::size_t row, const ObjectCells& cells, const Markers& markers,
               ObjectNumber& number) {
    PyObject* value = column.object(row);
    kernels::TextView text{};
    switch (cells.read(row, text)) {
        case kernels::Cell::text:
            return markers.texts.find(text) != 0 ? Place::left_out : Place::unknown;
        case kernels::Cell::null: {
            const auto& all = markers.objects;
            if (std::find(all.begin(), all.end(), value) != all.end()) return Place::left_out;
            if (value == Py_None) return Place::unknown;
            number = number_of(value);
            return Place::kept;
        }
        case kernels::Cell::other:
            break;
    }
    if (value == nullptr) return Place::unknown;
    number = number_of(value);
    if (number.scalar || (number.type != NumberType::integer && number.type != NumberType::real)) {
        return Place::unknown;
    }
    if (markers.numbers.empty()) return Place::kept;
    const std::optional<std::uint32_t> bits = markers.bits_of_object(number);
    if (!bits) return Place::unknown;
    return *bits != 0 ? Place::left_out : Place::kept;
}

}  // namespace

Ref numbers_without(const Column& column, const Markers& markers) {
    const ObjectCells cells(column);
    std::vector<std::uint64_t> kept;  // 64 bits of an integer or of a float
    kept.reserve(column.rows);
    NumberType type = NumberType::none;
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + kernels::prefetch_distance);
        ObjectNumber number;
        const Place place = place_of(column, row, cells, markers, number);
        if (place == Place::unknown) return {};
        if (place == Place::left_out) continue;
        if (type == NumberType::none) type = number.type;
        if (number.type != type) return {};
        kept.push_back(type == NumberType::real ? std::bit_cast<std::uint64_t>(number.real)
                                                : static_cast<std::uint64_t>(number.whole));
    }
    // Nothing has no dtype.
    if (kept.empty()) return {};
    static_assert(sizeof(long) == sizeof(std::uint64_t), "numpy makes an array of C's long of Python integers");
    const npy_intp size = static_cast<npy_intp>(kept.size());
    Ref array = Ref::take(PyArray_SimpleNew(1, &size, type == NumberType::real ? NPY_DOUBLE : NPY_LONG));
    std::memcpy(PyArray_BYTES(as_array(array)), kept.data(), kept.size() * sizeof(std::uint64_t));
    return array;
}

}  // namespace quorin::columns
