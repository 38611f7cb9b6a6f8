#include "exportable_utils/transform/to_text.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

#include "python/inputs/column_source.hpp"
#include "python/inputs/object_number.hpp"
#include "python/inputs/object_slots.hpp"
#include "python/native_route.hpp"
#include "python/new_text.hpp"

namespace quorin::transform {

namespace {

// A whole number fits a signed 64-bit integer if |number| < 2^63.
constexpr double whole_limit = 9223372036854775808.0;

// The longest text, of -1.7976931348623157e308, has a sign and 309 digits.
using WholeText = std::array<char, 312>;

// str(int(number)) without foreign code. The interpreter's conversion of an int to text handles signals.
Ref whole_text(double number) {
    WholeText room;
    std::size_t size = 0;
    if (std::fabs(number) < whole_limit) {
        const char* end = std::to_chars(room.data(), room.data() + room.size(), static_cast<long long>(number)).ptr;
        size = static_cast<std::size_t>(end - room.data());
    } else {
        size = static_cast<std::size_t>(std::snprintf(room.data(), room.size(), "%.0f", number));
    }
    return text_of_ascii_number({room.data(), size});
}

// The text that replaces a None or an exact str, float, bool or int of 64 bits; an empty Ref for any other object.
Ref text_in_place_of(PyObject* value) {
    if (value == nullptr) return {};
    if (is_exact_null(value)) return ascii_text("?");
    if (PyUnicode_CheckExact(value)) return Ref::share(value);
    if (PyFloat_CheckExact(value)) {
        const double number = PyFloat_AS_DOUBLE(value);
        if (std::isnan(number)) return {};  // a signalling NaN: numpy warns when it is compared
        if (is_whole(number)) return whole_text(number);
    }
    return scalar_text_object(value);
}

// Two passes over the rows of a part. The first makes all texts and writes nothing; the second cannot fail.
bool replace_objects(const ArrayColumn& part) {
    std::vector<Ref> texts;
    texts.reserve(part.rows);
    const ObjectCells cells(part);
    for (std::size_t row = 0; row < part.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        Ref text = text_in_place_of(part.object(row));
        if (!text) return false;
        texts.push_back(std::move(text));
    }
    // The old objects are of exact built-in types: releasing them, at the end of `texts`, runs no foreign code.
    for (std::size_t row = 0; row < part.rows; ++row) {
        texts[row] = replace_object(object_slot(part, row), std::move(texts[row]));
    }
    return true;
}

// The interpreter route writes a text into a float array, which converts it back to the same number, except that -0.0
// becomes 0.0. The text of NaN, "?", cannot be converted back.
bool replace_floats(const ArrayColumn& part) noexcept {
    for (std::size_t row = 0; row < part.rows; ++row) {
        auto& number = *reinterpret_cast<double*>(const_cast<char*>(part.at(row)));
        if (std::isnan(number)) return false;
        if (number == 0) number = 0;
    }
    return true;
}

// Replaces the rows block by block: if a signal handler raises, the rows before are written, as in the interpreter
// route.
template <class Replace>
Ref replace_rows(const ColumnSource& source, Replace replace) {
    const auto replace_block = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        return PyArray_ISWRITEABLE(column.array) != 0 && replace(rows_of(column, first, last));
    };
    if (!source.in_blocks(replace_block)) return {};
    return Ref::share(source.array());
}

}  // namespace

Ref native_text_in_place(Object X) {
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> source = ColumnSource::flat_writable(X);
        if (!source) return {};
        if (source->storage() == Storage::objects) return replace_rows(*source, replace_objects);
        // The interpreter route writes a text into an integer array, which converts it back to the same integer.
        if (source->storage() == Storage::integer) return Ref::share(X);
        if (source->storage() != Storage::float64 || !numpy_writes_all_digits()) return {};
        return replace_rows(*source, replace_floats);
    });
}

}  // namespace quorin::transform
