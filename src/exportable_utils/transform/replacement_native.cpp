#include "exportable_utils/transform/replacement_native.hpp"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "exportable_utils/references/matching_rows.hpp"
#include "exportable_utils/transform/column_objects.hpp"
#include "python/errors.hpp"
#include "python/lookup_guard.hpp"

namespace quorin::transform {

namespace {

// What numpy puts into every masked place as it is; it would go through the elements of a sequence.
bool is_plain_filling(Object value) noexcept {
    return value.is_none() || PyUnicode_CheckExact(value.get()) || PyFloat_CheckExact(value.get()) ||
           PyLong_CheckExact(value.get()) || PyBool_Check(value.get());
}

// The columns of an array of one or two dimensions; none where it is empty or of a dtype that is not known.
std::vector<ArrayColumn> columns_of(Object X) {
    if (!is_exact_array(X)) return {};
    PyArrayObject* array = as_array(X);
    const int dimensions = PyArray_NDIM(array);
    if (dimensions != 1 && dimensions != 2) return {};
    std::optional<ArrayColumn> first = first_column(X);
    if (!first) return {};
    const npy_intp width = dimensions == 1 ? 1 : PyArray_DIM(array, 1);
    std::vector<ArrayColumn> found(static_cast<std::size_t>(width), *first);
    for (npy_intp j = 1; j < width; ++j) {
        found[static_cast<std::size_t>(j)].data += j * PyArray_STRIDE(array, 1);
    }
    return found;
}

// An array of the shape of X whose places hold nothing yet.
Ref new_objects(Object X) {
    PyArrayObject* array = as_array(X);
    return Ref::take(PyArray_SimpleNew(PyArray_NDIM(array), PyArray_DIMS(array), NPY_OBJECT));
}

ArrayColumn part_of(const ArrayColumn& column, std::size_t start, std::size_t rows) noexcept {
    ArrayColumn part = column;
    part.data = column.at(start);
    part.rows = std::min(rows, column.rows - start);
    return part;
}

Replaced part_of(const Replaced& replaced, std::size_t start) noexcept {
    Replaced part = replaced;
    part.mask += static_cast<std::ptrdiff_t>(start) * replaced.stride;
    return part;
}

// The objects of a table lie row by row, and so do its numbers, as a rule: some rows of all columns stay in the cache.
constexpr std::size_t rows_together = 256;

void write_table(const std::vector<ArrayColumn>& table, const std::vector<Replaced>& replaced, Object Y) {
    PyArrayObject* array = as_array(Y);
    const std::size_t rows = table.front().rows;
    const std::size_t step = table.size() == 1 ? rows : rows_together;
    for (std::size_t start = 0; start < rows; start += step) {
        char* out = PyArray_BYTES(array) + static_cast<npy_intp>(start) * PyArray_STRIDE(array, 0);
        for (std::size_t j = 0; j < table.size(); ++j, out += sizeof(PyObject*)) {
            write_objects(part_of(table[j], start, step), part_of(replaced[j], start), out, PyArray_STRIDE(array, 0));
        }
    }
}

bool is_mask_for(Object mask, Object X) noexcept {
    if (!is_exact_array(mask) || PyArray_TYPE(as_array(mask)) != NPY_BOOL) return false;
    PyArrayObject* array = as_array(X);
    return PyArray_NDIM(as_array(mask)) == PyArray_NDIM(array) &&
           PyArray_CompareLists(PyArray_DIMS(as_array(mask)), PyArray_DIMS(array), PyArray_NDIM(array)) != 0;
}

// Whether the converted array lies in memory row by row: the layout of the original is kept.
bool keeps_row_order(Object X) noexcept {
    return PyArray_NDIM(as_array(X)) == 1 || PyArray_IS_C_CONTIGUOUS(as_array(X)) != 0;
}

bool holds(Object mask, bool wanted) noexcept {
    const char* bytes = PyArray_BYTES(as_array(mask));
    const auto size = static_cast<std::size_t>(PyArray_SIZE(as_array(mask)));
    return std::memchr(bytes, wanted ? 1 : 0, size) != nullptr;
}

// The masks of all columns, each by its own list or all by one; nothing where one of them is not settled here.
std::optional<std::vector<Ref>> masks_of(const std::vector<ArrayColumn>& table, Object lists) {
    const bool list_for_each = PyList_Check(PyList_GET_ITEM(lists.get(), 0));
    if (list_for_each && PyList_GET_SIZE(lists.get()) < static_cast<Py_ssize_t>(table.size())) return std::nullopt;
    std::vector<Ref> masks;
    std::optional<references::References> values;
    for (std::size_t j = 0; j < table.size(); ++j) {
        if (list_for_each || j == 0) {
            const Object list = list_for_each ? PyList_GET_ITEM(lists.get(), static_cast<Py_ssize_t>(j)) : lists;
            if (!PyList_CheckExact(list.get())) return std::nullopt;
            values = references::read_references(list);
            if (!values || (values->null_bits != 0 && !references::unchanged_by_asarray(*values))) return std::nullopt;
        }
        const Object X = reinterpret_cast<PyObject*>(table[j].array);
        const std::optional<ColumnSource> column = PyArray_NDIM(table[j].array) == 1
                                                       ? ColumnSource::single(X)
                                                       : ColumnSource::of_table(X, static_cast<npy_intp>(j));
        Ref mask = values && column ? references::membership_mask(*column, *values) : Ref();
        if (!mask) return std::nullopt;
        masks.push_back(std::move(mask));
    }
    return masks;
}

}  // namespace

Ref native_putmask(Object X, Object replace_values_mask, Object filling_value) {
    if (!lookups_unchanged() || !is_plain_filling(filling_value)) return {};
    return unless_it_fails([&]() -> Ref {
        const std::vector<ArrayColumn> table = columns_of(X);
        if (table.empty() || !keeps_row_order(X) || !is_mask_for(replace_values_mask, X)) return {};
        PyArrayObject* mask = as_array(replace_values_mask);
        std::vector<Replaced> replaced;
        for (std::size_t j = 0; j < table.size(); ++j) {
            const npy_intp start = j == 0 ? 0 : static_cast<npy_intp>(j) * PyArray_STRIDE(mask, 1);
            replaced.push_back({PyArray_BYTES(mask) + start, PyArray_STRIDE(mask, 0), false, filling_value});
        }
        Ref Y = new_objects(X);
        write_table(table, replaced, Y);
        return Y;
    });
}

Ref native_replace_values(Object X, Object filling_value, Object reference_values_list, Object invert_flag) {
    if (!lookups_unchanged() || !is_plain_filling(filling_value) || !PyBool_Check(invert_flag.get())) return {};
    if (!PyList_CheckExact(reference_values_list.get()) || PyList_GET_SIZE(reference_values_list.get()) == 0) return {};
    const bool inverted = invert_flag.is(Py_True);
    return unless_it_fails([&]() -> Ref {
        const std::vector<ArrayColumn> table = columns_of(X);
        if (table.empty()) return {};
        const std::optional<std::vector<Ref>> masks = masks_of(table, reference_values_list);
        if (!masks) return {};
        const bool flat = PyArray_NDIM(as_array(X)) == 1;
        if (flat && !holds(masks->front(), !inverted)) return Ref::share(X);
        std::vector<Replaced> replaced;
        for (const Ref& mask : *masks) replaced.push_back({PyArray_BYTES(as_array(mask)), 1, inverted, filling_value});
        Ref Y = new_objects(X);
        write_table(table, replaced, Y);
        return Y;
    });
}

}  // namespace quorin::transform
