#include "columns/membership.hpp"

#include <cmath>

#include "columns/numbers.hpp"
#include "interp/errors.hpp"
#include "interp/operations.hpp"

namespace quorin::columns {

namespace {

char* bytes_of(Object mask) noexcept {
    return PyArray_BYTES(as_array(mask));
}

// Each of these calls on_match(row, bits) for the rows that equal a value, and answers false where it gives up.

template <class OnMatch>
bool match_objects(const Column& column, const Markers& values, OnMatch on_match) {
    if (!values.numbers.empty()) return false;
    const ObjectCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + kernels::prefetch_distance);
        kernels::TextView text{};
        switch (cells.read(row, text)) {
            case kernels::Cell::text:
                if (const std::uint32_t found = values.texts.find(text); found != 0) {
                    on_match(row, values.bits_of_texts(found));
                }
                break;
            case kernels::Cell::null:
                if (values.null_bits != 0) on_match(row, values.null_bits);
                break;
            case kernels::Cell::other: {
                // Plain numbers equal no text.
                PyObject* value = column.object(row);
                if (value == nullptr) return false;
                if (!PyLong_CheckExact(value) && !PyFloat_CheckExact(value) && !PyBool_Check(value)) return false;
                break;
            }
        }
    }
    return true;
}

template <class OnMatch>
bool match_fixed_texts(const Column& column, const Markers& values, OnMatch on_match) {
    const FixedTextCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (cells.longer_than(row, values.texts.longest())) continue;
        kernels::TextView text{};
        cells.read(row, text);
        if (const std::uint32_t found = values.texts.find(text); found != 0) {
            on_match(row, values.bits_of_texts(found));
        }
    }
    return true;
}

template <class Float, class OnMatch>
bool match_floats(const Column& column, const Markers& values, OnMatch on_match) {
    if (values.null_bits == 0 && values.numbers.empty()) return true;
    for (std::size_t row = 0; row < column.rows; ++row) {
        const double value = static_cast<double>(load<Float>(column, row));
        const std::uint32_t bits = std::isnan(value) ? values.null_bits : values.bits_of_number(value);
        if (bits != 0) on_match(row, bits);
    }
    return true;
}

// Only whole reference values can be equal to an integer, and they are compared as integers, so that no element is
// rounded on the way.
template <class Integer, class OnMatch>
bool match_integers(const Column& column, const Markers& values, OnMatch on_match) {
    struct Whole {
        long long value;
        std::uint32_t bit;
    };
    std::vector<Whole> whole_values;
    constexpr double exact_limit = 9007199254740992.0;  // 2 ** 53
    for (const Markers::Number& number : values.numbers) {
        if (std::isinf(number.value) || std::floor(number.value) != number.value) continue;
        if (std::fabs(number.value) > exact_limit) return false;
        whole_values.push_back({static_cast<long long>(number.value), number.bit});
    }
    if (whole_values.empty()) return true;
    for (std::size_t row = 0; row < column.rows; ++row) {
        const Integer value = load<Integer>(column, row);
        std::uint32_t bits = 0;
        for (const Whole& whole_value : whole_values) {
            if (std::cmp_equal(value, whole_value.value)) bits |= whole_value.bit;
        }
        if (bits != 0) on_match(row, bits);
    }
    return true;
}

template <class OnMatch>
bool match_rows(const Column& column, const Markers& values, OnMatch on_match) {
    if (column.storage == Storage::objects) return match_objects(column, values, on_match);
    if (column.storage == Storage::fixed_text) return match_fixed_texts(column, values, on_match);
    return with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        if constexpr (std::is_floating_point_v<Number>) {
            return match_floats<Number>(column, values, on_match);
        } else {
            return match_integers<Number>(column, values, on_match);
        }
    });
}

}  // namespace

Ref empty_mask(std::size_t rows) {
    const npy_intp shape = static_cast<npy_intp>(rows);
    return Ref::take(PyArray_Zeros(1, &shape, PyArray_DescrFromType(NPY_BOOL), 0));
}

Ref merged_masks(Object first, Object second) {
    const npy_intp rows = PyArray_DIM(as_array(first), 0);
    Ref merged = empty_mask(static_cast<std::size_t>(rows));
    const char* a = bytes_of(first);
    const char* b = bytes_of(second);
    char* out = bytes_of(merged);
    for (npy_intp row = 0; row < rows; ++row) out[row] = static_cast<char>(a[row] | b[row]);
    return merged;
}

std::optional<Ref> membership_mask(const Column& column, const Markers& values) {
    Ref mask = empty_mask(column.rows);
    char* out = bytes_of(mask);
    if (!match_rows(column, values, [&](std::size_t row, std::uint32_t) { out[row] = 1; })) return std::nullopt;
    return mask;
}

std::optional<std::vector<std::pair<std::uint32_t, Ref>>> masks_by_value(const Column& column, const Markers& values) {
    std::array<Ref, kernels::most_markers> masks;
    const auto on_match = [&](std::size_t row, std::uint32_t bits) {
        for (std::size_t i = 0; bits >> i != 0; ++i) {
            if ((bits >> i & 1U) == 0) continue;
            if (!masks[i]) masks[i] = empty_mask(column.rows);
            bytes_of(masks[i])[row] = 1;
        }
    };
    if (!match_rows(column, values, on_match)) return std::nullopt;
    std::vector<std::pair<std::uint32_t, Ref>> found;
    for (std::size_t i = 0; i < masks.size(); ++i) {
        if (masks[i]) found.emplace_back(1U << i, std::move(masks[i]));
    }
    return found;
}

}  // namespace quorin::columns
