#include "exportable_utils/references/matching_rows.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "core/column.hpp"
#include "core/distinct/number_runs.hpp"
#include "core/float_bits.hpp"
#include "core/gather/number_facts.hpp"
#include "python/errors.hpp"

namespace quorin::references {

namespace {

std::uint8_t* bytes_of(Object mask) noexcept {
    return reinterpret_cast<std::uint8_t*>(PyArray_BYTES(as_array(mask)));
}

// An all-false mask.
Ref empty_mask(std::size_t rows) {
    const npy_intp shape = static_cast<npy_intp>(rows);
    return Ref::take(PyArray_Zeros(1, &shape, PyArray_DescrFromType(NPY_BOOL), 0));
}

// An element that is neither text nor null nor Python's own number: a numpy scalar that equals and hashes as they do.
std::optional<std::uint32_t> bits_of_other(PyObject* value, const References& values) noexcept {
    if (value == nullptr) return std::nullopt;
    const ObjectNumber number = object_number_of(value);
    if (number.type == NumberType::none) {
        if (!is_plain_text(value)) return std::nullopt;
        const std::optional<core::TextView> text = text_view_of(value);
        if (!text) return std::nullopt;
        return values.bits_of_texts(values.texts.find(*text));
    }
    if (std::isnan(number.real)) return values.null_bits;
    if (values.numbers.empty()) return 0;
    // A numpy scalar rounds the integers that it is compared with.
    if (number.scalar && number.beyond_exact()) return std::nullopt;
    return values.bits_of_object(number);
}

bool is_plain_number(PyObject* value) noexcept {
    if (PyFloat_CheckExact(value)) return !core::is_signalling_nan(PyFloat_AS_DOUBLE(value));
    return PyLong_CheckExact(value);
}

// Each of these calls on_match(row, bits) for the rows that equal a value, and answers false where it gives up.

template <class OnMatch>
bool match_objects(const ArrayColumn& column, const References& values, OnMatch on_match) {
    const ObjectCells cells(column);
    const bool numbers = !values.numbers.empty();
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        switch (cells.read(row, text)) {
            case core::Cell::text:
                if (const std::uint32_t found = values.texts.find(text); found != 0) {
                    on_match(row, values.bits_of_texts(found));
                }
                break;
            case core::Cell::null:
                if (values.null_bits != 0) on_match(row, values.null_bits);
                break;
            case core::Cell::other: {
                PyObject* value = column.object(row);
                // Plain numbers equal no text.
                if (!numbers && value != nullptr && is_plain_number(value)) break;
                const std::optional<std::uint32_t> bits = bits_of_other(value, values);
                if (!bits) return false;
                if (*bits != 0) on_match(row, *bits);
                break;
            }
        }
    }
    return true;
}

template <class OnMatch>
bool match_fixed_texts(const ArrayColumn& column, const References& values, OnMatch on_match) {
    const ArrayTextCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (cells.longer_than(row, values.texts.longest())) continue;
        core::TextView text{};
        cells.read(row, text);
        if (const std::uint32_t found = values.texts.find(text); found != 0) {
            on_match(row, values.bits_of_texts(found));
        }
    }
    return true;
}

template <class Float, class OnMatch>
bool match_floats(const ArrayColumn& column, const References& values, OnMatch on_match) {
    // numpy warns of a signalling NaN, whatever it is compared with.
    if (values.null_bits == 0 && values.numbers.empty()) return !core::any_signalling_nan<Float>(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        const Float value = core::load<Float>(column, row);
        std::uint32_t bits = 0;
        if (std::isnan(value)) {
            if (core::is_signalling_nan(value)) return false;
            bits = values.null_bits;
        } else {
            bits = values.bits_of_number(static_cast<double>(value));
        }
        if (bits != 0) on_match(row, bits);
    }
    return true;
}

// Only whole reference values can be equal to an integer, and they are compared as integers, so that no element is
// rounded on the way.
template <class Integer, class OnMatch>
bool match_integers(const ArrayColumn& column, const References& values, OnMatch on_match) {
    struct Whole {
        long long value;
        std::uint32_t bit;
    };
    std::vector<Whole> whole_values;
    for (const References::Number& number : values.numbers) {
        if (!is_whole(number.value)) continue;
        if (std::fabs(number.value) > exact_limit) return false;
        whole_values.push_back({static_cast<long long>(number.value), number.bit});
    }
    if (whole_values.empty()) return true;
    for (std::size_t row = 0; row < column.rows; ++row) {
        const auto value = +core::load<Integer>(column, row);  // a boolean is compared as the number that it is
        std::uint32_t bits = 0;
        for (const Whole& whole_value : whole_values) {
            if (std::cmp_equal(value, whole_value.value)) bits |= whole_value.bit;
        }
        if (bits != 0) on_match(row, bits);
    }
    return true;
}

template <class OnMatch>
bool match_rows(const ArrayColumn& column, const References& values, OnMatch on_match) {
    if (column.storage == Storage::objects) return match_objects(column, values, on_match);
    if (column.storage == Storage::fixed_text) return match_fixed_texts(column, values, on_match);
    return core::with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        if constexpr (std::is_floating_point_v<Number>) {
            return match_floats<Number>(column, values, on_match);
        } else {
            return match_integers<Number>(column, values, on_match);
        }
    });
}

bool is_float(const ArrayColumn& column) noexcept {
    return column.storage == Storage::float64 || column.storage == Storage::float32;
}

bool can_only_be_null(const ArrayColumn& column, const References& values) noexcept {
    return is_float(column) && values.numbers.empty();
}

// The rows that hold NaN; nothing if one of them is signalling. Both tests read a block while it is in the cache.
template <class Float>
std::optional<Members> null_rows_of(const ArrayColumn& column, std::uint32_t bits) {
    constexpr std::size_t block_size = 2048;
    Members found{new_array(column.rows, NPY_BOOL)};
    char* mask = PyArray_BYTES(as_array(found.mask));
    for (std::size_t begin = 0; begin < column.rows; begin += block_size) {
        const core::StridedMemory block = column.part(begin, std::min(column.rows, begin + block_size));
        const std::size_t nulls = core::mark_nulls<Float>(block, mask + begin);
        if (nulls != 0 && core::any_signalling_nan<Float>(block)) return std::nullopt;
        found.marked += nulls;
    }
    if (found.marked != 0) found.bits = bits;
    return found;
}

std::optional<Members> null_rows(const ArrayColumn& column, std::uint32_t bits) {
    return column.storage == Storage::float64 ? null_rows_of<double>(column, bits) : null_rows_of<float>(column, bits);
}

std::optional<Members> first_members(const ArrayColumn& column, const References& values) {
    std::optional<MarkedRows> found = marked_rows(column, values);
    if (!found) return std::nullopt;
    if (found->bits == 0) return Members{std::move(found->mask)};
    Members first{std::move(found->masks.front()), lowest(found->bits)};
    first.marked = core::count_marked(PyArray_BYTES(as_array(first.mask)), column.rows);
    return first;
}

}  // namespace

std::optional<Members> find_members(const ArrayColumn& column, const References& values, bool first_only) {
    if (can_only_be_null(column, values) && values.null_bits != 0) {
        return null_rows(column, first_only ? lowest(values.null_bits) : values.null_bits);
    }
    if (first_only) return first_members(column, values);
    Members found{empty_mask(column.rows)};
    std::uint8_t* out = bytes_of(found.mask);
    const auto on_match = [&](std::size_t row, std::uint32_t bits) {
        out[row] = 1;
        found.bits |= bits;
        ++found.marked;
    };
    if (!match_rows(column, values, on_match)) return std::nullopt;
    return found;
}

std::optional<Ref> membership_mask(const ArrayColumn& column, const References& values) {
    std::optional<Members> found = find_members(column, values);
    if (!found) return std::nullopt;
    return std::move(found->mask);
}

std::optional<MarkedRows> marked_rows(const ArrayColumn& column, const References& values) {
    MarkedRows found;
    if (can_only_be_null(column, values) && std::has_single_bit(values.null_bits)) {
        std::optional<Members> nulls = null_rows(column, values.null_bits);
        if (!nulls) return std::nullopt;
        found.bits = nulls->bits;
        if (nulls->bits != 0) found.masks.push_back(Ref::share(nulls->mask));
        found.mask = std::move(nulls->mask);
        return found;
    }
    std::array<Ref, core::most_references> masks;
    std::array<std::uint8_t*, core::most_references> outs{};
    const auto on_match = [&](std::size_t row, std::uint32_t bits) {
        for (; bits != 0; bits &= bits - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(bits));
            if (outs[i] == nullptr) {
                masks[i] = empty_mask(column.rows);
                outs[i] = bytes_of(masks[i]);
            }
            outs[i][row] = 1;
        }
    };
    if (!match_rows(column, values, on_match)) return std::nullopt;
    for (std::size_t i = 0; i < masks.size(); ++i) {
        if (!masks[i]) continue;
        found.bits |= 1U << i;
        found.masks.push_back(std::move(masks[i]));
    }
    if (found.masks.size() == 1) {
        found.mask = Ref::share(found.masks.front());
        return found;
    }
    found.mask = empty_mask(column.rows);
    std::uint8_t* all = bytes_of(found.mask);
    for (const Ref& mask : found.masks) {
        const std::uint8_t* one = bytes_of(mask);
        for (std::size_t row = 0; row < column.rows; ++row) all[row] |= one[row];
    }
    return found;
}

}  // namespace quorin::references
