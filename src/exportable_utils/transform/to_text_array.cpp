#include "exportable_utils/transform/to_text.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "python/inputs/column_source.hpp"
#include "python/native_route.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

using core::FloatText;

// numpy stores the width of an element in bytes, as an int.
constexpr std::size_t longest_fixed = std::numeric_limits<int>::max() / sizeof(std::uint32_t);

// The width, in characters, that numpy gives to the text of a float64.
constexpr std::size_t float_width = 32;

std::uint32_t* characters_in(Object array) noexcept {
    return reinterpret_cast<std::uint32_t*>(PyArray_BYTES(as_array(array)));
}

// Fills the rest of an element with zeros.
void end_text(std::uint32_t* element, std::size_t length, std::size_t width) noexcept {
    std::memset(element + length, 0, (width - length) * sizeof(std::uint32_t));
}

// Converts an array of objects to texts in two passes: measure() finds the width, write() writes. The array of texts is
// allocated in between, which is foreign code: write() checks types and lengths again.
class ObjectTexts {
  public:
    explicit ObjectTexts(std::size_t rows) noexcept : rows_(rows) {}

    // Returns false if str() of an element cannot be computed natively.
    bool measure(const ArrayColumn& column, std::size_t first, std::size_t last) {
        const ObjectCells cells(column);
        FloatText room;
        for (std::size_t row = first; row < last; ++row) {
            cells.prefetch(row + core::prefetch_distance);
            core::TextView text{};
            if (cells.read(row, text) == core::Cell::text) {
                width_ = std::max(width_, text.size);
                continue;
            }
            PyObject* value = column.object(row);
            const std::string_view made = value == nullptr ? std::string_view{} : scalar_text(value, room);
            if (made.empty()) return false;
            keep(row, made);
            width_ = std::max(width_, made.size());
        }
        return true;
    }
    [[nodiscard]] std::size_t width() const noexcept { return width_; }

    // Returns false if an element that was a text in measure() is now another object or a text longer than width().
    bool write(const ArrayColumn& column, std::size_t first, std::size_t last, std::uint32_t* to) noexcept {
        const ObjectCells cells(column);
        to += first * width_;
        for (std::size_t row = first; row < last; ++row, to += width_) {
            std::size_t length = made_lengths_.empty() ? 0 : made_lengths_[row];
            if (length != 0) {
                core::widen(made_.data() + written_, length, to);
                written_ += length;
            } else {
                core::TextView text{};
                if (cells.read(row, text) != core::Cell::text || text.size > width_) return false;
                length = text.size;
                for (std::size_t i = 0; i < length; ++i) to[i] = core::unit(text, i);
            }
            end_text(to, length, width_);
        }
        return true;
    }

  private:
    static constexpr std::size_t usual_length = 20;
    void keep(std::size_t row, std::string_view made) {
        if (made_lengths_.empty()) {
            made_lengths_.resize(rows_);
            made_.reserve((rows_ - row) * usual_length);
        }
        made_lengths_[row] = static_cast<std::uint8_t>(made.size());
        made_.append(made);
    }
    std::size_t rows_;
    std::string made_;                        // the texts of all elements that are not texts, concatenated
    std::vector<std::uint8_t> made_lengths_;  // by row; 0 if the element is a text; empty if all are texts
    std::size_t width_ = 1;
    std::size_t written_ = 0;
};

Ref objects_to_texts(const ColumnSource& source) {
    ObjectTexts texts(source.rows());
    const auto measure = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        return texts.measure(column, first, last);
    };
    if (!source.in_blocks(measure) || texts.width() > longest_fixed) return {};
    Ref Y = new_fixed_text(source.rows(), texts.width());
    const auto write = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        return texts.write(column, first, last, characters_in(Y));
    };
    if (!source.in_blocks(write)) return {};
    return Y;
}

Ref floats_to_texts(const ColumnSource& source) {
    if (!numpy_writes_all_digits()) return {};
    Ref Y = new_fixed_text(source.rows(), float_width);
    const auto write = [&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        std::uint32_t* to = characters_in(Y) + first * float_width;
        FloatText room;
        for (std::size_t row = first; row < last; ++row, to += float_width) {
            const std::size_t length = core::write_float(core::load<double>(column, row), room);
            core::widen(room.data(), length, to);
            end_text(to, length, float_width);
        }
        return true;
    };
    if (!source.in_blocks(write)) return {};
    return Y;
}

}  // namespace

std::string_view scalar_text(PyObject* value, FloatText& room) {
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

Ref text_of_ascii_number(std::string_view characters) {
    if (characters.size() != 1) return ascii_text(characters);
    Ref text = Ref::take(PyUnicode_New(1, 0x7f));
    *(reinterpret_cast<char*>(text.get()) + sizeof(PyASCIIObject)) = characters.front();
    return text;
}

Ref scalar_text_object(PyObject* value) {
    // Their repr() is a cached object.
    if (value == Py_None || PyBool_Check(value)) return Ref::take(Py_TYPE(value)->tp_repr(value));
    FloatText room;
    const std::string_view text = scalar_text(value, room);
    if (!text.empty()) return text_of_ascii_number(text);
    return PyFloat_CheckExact(value) ? Ref::take(PyFloat_Type.tp_repr(value)) : Ref{};
}

bool numpy_writes_all_digits() {
    double many_digits = 0.12345678901234568;
    FloatText room;
    const std::string_view expected(room.data(), core::write_float(many_digits, room));
    PyArray_Descr* dtype = PyArray_DescrFromType(NPY_DOUBLE);
    const Ref owner = Ref::take(reinterpret_cast<PyObject*>(dtype));
    const Ref number = Ref::take(PyArray_Scalar(&many_digits, dtype, nullptr));
    const Ref text = text_of(number);
    Py_ssize_t size = 0;
    const char* characters = PyUnicode_AsUTF8AndSize(text.get(), &size);
    if (characters == nullptr) throw PythonError(Where::current());
    return std::string_view(characters, static_cast<std::size_t>(size)) == expected;
}

Ref native_text_array(Object X) {
    return native_route([&]() -> Ref {
        const std::optional<ColumnSource> source = ColumnSource::flat(X);
        if (!source) return {};
        if (source->storage() == Storage::objects) return objects_to_texts(*source);
        if (source->storage() == Storage::float64) return floats_to_texts(*source);
        return {};
    });
}

}  // namespace quorin::transform
