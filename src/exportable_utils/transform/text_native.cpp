#include "exportable_utils/transform/text_native.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/column.hpp"
#include "core/text/float_text.hpp"
#include "python/errors.hpp"
#include "python/inputs/array_column.hpp"
#include "python/inputs/object_number.hpp"
#include "python/lookup_guard.hpp"
#include "python/new_text.hpp"

namespace quorin::transform {

namespace {

using core::FloatText;

// Doubles from here on do not fit 64 bits.
constexpr double whole_limit = 9223372036854775808.0;  // 2 ** 63

// str() of a plain object that is no text; empty where that is not known here.
std::string_view plain_text(PyObject* value, FloatText& room) {
    if (PyFloat_CheckExact(value)) return {room.data(), core::write_float(PyFloat_AS_DOUBLE(value), room)};
    if (value == Py_None) return "None";
    if (PyBool_Check(value)) return value == Py_True ? "True" : "False";
    if (!PyLong_CheckExact(value)) return {};
    int overflow = 0;
    const long long whole = PyLong_AsLongLongAndOverflow(value, &overflow);
    if (overflow != 0) return {};
    const char* end = std::to_chars(room.data(), room.data() + room.size(), whole).ptr;
    return {room.data(), static_cast<std::size_t>(end - room.data())};
}

Ref fixed_texts(std::size_t rows, std::size_t length) {
    const npy_intp shape = static_cast<npy_intp>(rows);
    const auto width = static_cast<int>(length * sizeof(std::uint32_t));
    return Ref::take(PyArray_New(&PyArray_Type, 1, &shape, NPY_UNICODE, nullptr, nullptr, width, 0, nullptr));
}

// Fills the element up with zeros.
void end_text(std::uint32_t* to, std::size_t size, std::size_t room) noexcept {
    std::memset(to + size, 0, (room - size) * sizeof(std::uint32_t));
}

// The texts of the elements that are none themselves, each behind a byte that tells its length; how long the longest
// text of all is becomes known on the way.
struct Gathered {
    std::string texts;
    std::size_t longest = 1;
};

std::optional<Gathered> gather_texts(const ArrayColumn& column) {
    constexpr std::size_t usual_length = 20;
    Gathered gathered;
    gathered.texts.reserve(column.rows * usual_length);
    const ObjectCells cells(column);
    FloatText room;
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        std::size_t length = 0;
        if (cells.read(row, text) == core::Cell::text) {
            length = text.length;
        } else {
            PyObject* value = column.object(row);
            const std::string_view made = value == nullptr ? std::string_view{} : plain_text(value, room);
            if (made.empty()) return std::nullopt;
            length = made.size();
            gathered.texts.push_back(static_cast<char>(length));
            gathered.texts.append(made);
        }
        gathered.longest = std::max(gathered.longest, length);
    }
    return gathered;
}

constexpr std::size_t longest_fixed = std::numeric_limits<int>::max() / sizeof(std::uint32_t);

Ref objects_to_texts(const ArrayColumn& column) {
    const std::optional<Gathered> gathered = gather_texts(column);
    if (!gathered || gathered->longest > longest_fixed) return {};
    Ref Y = fixed_texts(column.rows, gathered->longest);
    auto* to = reinterpret_cast<std::uint32_t*>(PyArray_BYTES(as_array(Y)));
    const ObjectCells cells(column);
    const char* made = gathered->texts.data();
    for (std::size_t row = 0; row < column.rows; ++row, to += gathered->longest) {
        core::TextView text{};
        std::size_t length = 0;
        if (cells.read(row, text) == core::Cell::text) {
            length = text.length;
            for (std::size_t i = 0; i < length; ++i) to[i] = core::character(text, i);
        } else {
            length = static_cast<std::uint8_t>(*made);
            core::widen(made + 1, length, to);
            made += 1 + length;
        }
        end_text(to, length, gathered->longest);
    }
    return Y;
}

// numpy writes its floats as the interpreter writes its own, unless it was told to print as an old version did.
bool numpy_writes_all_digits() {
    double many_digits = 0.12345678901234568;
    FloatText room;
    const std::string_view expected(room.data(), core::write_float(many_digits, room));
    PyArray_Descr* dtype = PyArray_DescrFromType(NPY_DOUBLE);
    const Ref owner = Ref::adopt(reinterpret_cast<PyObject*>(dtype));
    const Ref number = Ref::adopt(PyArray_Scalar(&many_digits, dtype, nullptr));
    const Ref text = Ref::adopt(number ? PyObject_Str(number.get()) : nullptr);
    Py_ssize_t size = 0;
    const char* characters = text ? PyUnicode_AsUTF8AndSize(text.get(), &size) : nullptr;
    if (characters == nullptr) {
        PyErr_Clear();
        return false;
    }
    return std::string_view(characters, static_cast<std::size_t>(size)) == expected;
}

// The room that numpy gives to the text of a float.
constexpr std::size_t room_for_float = 32;

Ref floats_to_texts(const ArrayColumn& column) {
    if (!numpy_writes_all_digits()) return {};
    Ref Y = fixed_texts(column.rows, room_for_float);
    auto* to = reinterpret_cast<std::uint32_t*>(PyArray_BYTES(as_array(Y)));
    FloatText room;
    for (std::size_t row = 0; row < column.rows; ++row, to += room_for_float) {
        const std::size_t length = core::write_float(core::load<double>(column, row), room);
        core::widen(room.data(), length, to);
        end_text(to, length, room_for_float);
    }
    return Y;
}

// str(int(number)). Texts of one digit are left to the interpreter, which may keep them or not.
Ref whole_text(double number) {
    const bool one_digit = number > -1 && number < 10;
    if (std::fabs(number) < whole_limit && !one_digit) {
        FloatText room;
        const char* end = std::to_chars(room.data(), room.data() + room.size(), static_cast<long long>(number)).ptr;
        return ascii_text({room.data(), static_cast<std::size_t>(end - room.data())});
    }
    const Ref whole = Ref::take(PyLong_FromDouble(number));
    return Ref::take(PyObject_Str(whole.get()));
}

// What the slow way puts in place of a plain object; nothing where it is not known here.
Ref slow_text(PyObject* value) {
    if (value == nullptr) return {};
    if (is_exact_null(value)) return ascii_text("?");
    if (PyUnicode_CheckExact(value)) return Ref::share(value);
    if (PyFloat_CheckExact(value)) {
        const double number = PyFloat_AS_DOUBLE(value);
        if (std::isnan(number)) return {};  // a signalling one
        if (is_whole(number)) return whole_text(number);
    } else if (PyBool_Check(value)) {
        return Ref::take(PyObject_Str(value));
    } else if (!PyLong_CheckExact(value)) {
        return {};
    }
    FloatText room;
    const std::string_view text = plain_text(value, room);
    return text.size() < 2 ? Ref::take(PyObject_Str(value)) : ascii_text(text);
}

Ref slow_objects(const ArrayColumn& column) {
    std::vector<Ref> texts;
    texts.reserve(column.rows);
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        Ref text = slow_text(column.object(row));
        if (!text) return {};
        texts.push_back(std::move(text));
    }
    for (std::size_t row = 0; row < column.rows; ++row) {
        auto* place = reinterpret_cast<PyObject**>(const_cast<char*>(column.at(row)));
        // What was there goes with the last reference to it, in texts.
        PyObject* old = std::exchange(*place, texts[row].give());
        texts[row] = Ref::adopt(old);
    }
    return Ref::share(reinterpret_cast<PyObject*>(column.array));
}

// Each text is read back into the number that it came from, but for the sign of zero. "?" cannot be read back.
Ref slow_floats(const ArrayColumn& column) {
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (std::isnan(core::load<double>(column, row))) return {};
    }
    if (!numpy_writes_all_digits()) return {};
    for (std::size_t row = 0; row < column.rows; ++row) {
        auto& number = *reinterpret_cast<double*>(const_cast<char*>(column.at(row)));
        if (number == 0) number = 0;
    }
    return Ref::share(reinterpret_cast<PyObject*>(column.array));
}

}  // namespace

Ref native_float2str(Object X) {
    if (!originals_in_place()) return {};
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column) return {};
    if (column->storage == Storage::objects) return unless_it_fails([&] { return objects_to_texts(*column); });
    if (column->storage == Storage::float64) return floats_to_texts(*column);
    return {};
}

Ref native_slow_float2str(Object X) {
    if (!originals_in_place()) return {};
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column || PyArray_ISWRITEABLE(column->array) == 0 || !rows_are_disjoint(*column)) return {};
    if (column->storage == Storage::objects) return unless_it_fails([&] { return slow_objects(*column); });
    if (column->storage == Storage::float64) return slow_floats(*column);
    // The text of a whole number is read back into the same number.
    if (column->storage == Storage::integer) return Ref::share(X);
    return {};
}

}  // namespace quorin::transform
