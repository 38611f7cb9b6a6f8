#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "exportable_utils/references/matching_rows.hpp"
#include "exportable_utils/transform/object_table.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/inputs/column_source.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

using references::References;

// Whether numpy.putmask() writes the value itself to each element; it would iterate over a sequence.
bool is_plain_filling(Object value) noexcept {
    return value.is_none() || PyUnicode_CheckExact(value.get()) || PyFloat_CheckExact(value.get()) ||
           PyLong_CheckExact(value.get()) || PyBool_Check(value.get());
}

bool is_mask_for(Object mask, Object X) noexcept {
    if (!is_exact_array(mask) || PyArray_TYPE(as_array(mask)) != NPY_BOOL) return false;
    PyArrayObject* array = as_array(X);
    return PyArray_NDIM(as_array(mask)) == PyArray_NDIM(array) &&
           PyArray_CompareLists(PyArray_DIMS(as_array(mask)), PyArray_DIMS(array), PyArray_NDIM(array)) != 0;
}

// Whether astype() of X returns an array in C order, as the native route does.
bool keeps_row_order(Object X) noexcept {
    return PyArray_NDIM(as_array(X)) == 1 || PyArray_IS_C_CONTIGUOUS(as_array(X)) != 0;
}

// Calls work(table, first, last) for blocks of rows of X, and answers signals between them. Returns false if `work`
// does, or if X is no longer the table that `memory` describes.
template <class Work>
bool in_table_blocks(Object X, const TableMemory& memory, Work work) {
    const auto block = [&](std::size_t first, std::size_t last) {
        const std::optional<Table> table = open_table(X);
        return table && table->is_same_memory(memory) && work(*table, first, last);
    };
    return in_blocks_of(rows_in_block(memory), memory.first.rows, block);
}

std::optional<TableMemory> table_memory(Object X) noexcept {
    const std::optional<Table> table = open_table(X);
    if (!table) return std::nullopt;
    return table->memory();
}

// One mask for each column of an array of booleans.
std::vector<Mask> masks_in(Object array, std::size_t width) {
    PyArrayObject* mask = as_array(array);
    std::vector<Mask> columns(width, Mask{PyArray_BYTES(mask), PyArray_STRIDE(mask, 0)});
    for (std::size_t j = 1; j < width; ++j) {
        columns[j].first += static_cast<npy_intp>(j) * PyArray_STRIDE(mask, 1);
    }
    return columns;
}

Ref native_putmask(Object X, Object mask, Object filling) {
    return native_route([&]() -> Ref {
        if (!is_plain_filling(filling)) return {};
        const std::optional<TableMemory> memory = table_memory(X);
        if (!memory || !keeps_row_order(X) || !is_mask_for(mask, X)) return {};
        Ref Y = new_objects_like(*memory);
        const bool done = in_table_blocks(X, *memory, [&](const Table& table, std::size_t first, std::size_t last) {
            if (!is_mask_for(mask, X)) return false;
            write_rows(table, {masks_in(mask, table.width), false, filling}, Y, first, last);
            return true;
        });
        return done ? std::move(Y) : Ref{};
    });
}

bool holds(Object mask, bool wanted) noexcept {
    const auto size = static_cast<std::size_t>(PyArray_SIZE(as_array(mask)));
    return std::memchr(PyArray_BYTES(as_array(mask)), wanted ? 1 : 0, size) != nullptr;
}

bool known_to_isin(const References& references) noexcept {
    return references.null_bits == 0 || references::unchanged_by_asarray(references);
}

std::optional<References> references_for_isin(Object list) {
    std::optional<References> references = references::read_references(list);
    if (!PyList_CheckExact(list.get()) || (references && !known_to_isin(*references))) references.reset();
    return references;
}

Ref column_mask(Object X, std::size_t j, const std::optional<References>& references) {
    const std::optional<ColumnSource> column =
        PyArray_NDIM(as_array(X)) == 1 ? ColumnSource::flat(X) : ColumnSource::of_table(X, static_cast<npy_intp>(j));
    return column && references ? references::membership_mask(*column, *references) : Ref();
}

// For each column the mask of the elements that equal a reference value. `lists` is one list of reference values for
// all columns, or a list of such lists. Returns nullopt to give up.
std::optional<std::vector<Ref>> column_masks(Object X, const TableMemory& memory, Object lists) {
    const bool list_for_each = PyList_Check(PyList_GET_ITEM(lists.get(), 0));
    // nullopt for a list of lists.
    const std::optional<References> shared = references_for_isin(lists);
    std::vector<Ref> masks;
    std::size_t unanswered = 0;  // elements since the last poll for signals
    for (std::size_t j = 0; j < memory.width; ++j, unanswered += memory.first.rows) {
        if (unanswered >= rows_between_signals) {
            answer_signals();
            unanswered = 0;
        }
        // Read the size for each column: foreign code may have changed the list.
        const auto index = static_cast<Py_ssize_t>(j);
        if (list_for_each && index >= PyList_GET_SIZE(lists.get())) return std::nullopt;
        Ref mask = list_for_each ? column_mask(X, j, references_for_isin(PyList_GET_ITEM(lists.get(), index)))
                                 : column_mask(X, j, shared);
        if (!mask || static_cast<std::size_t>(PyArray_SIZE(as_array(mask))) != memory.first.rows) return std::nullopt;
        masks.push_back(std::move(mask));
    }
    return masks;
}

Ref native_replace_values(Object X, Object filling, Object lists, Object invert_flag) {
    return native_route([&]() -> Ref {
        if (!is_plain_filling(filling) || !PyBool_Check(invert_flag.get())) return {};
        if (!PyList_CheckExact(lists.get()) || PyList_GET_SIZE(lists.get()) == 0) return {};
        const bool inverted = invert_flag.is(Py_True);
        const std::optional<TableMemory> memory = table_memory(X);
        if (!memory) return {};
        // The result of a table is allocated first: if memory runs out, no column has been read.
        Ref Y = memory->dimensions == 1 ? Ref{} : new_objects_like(*memory);
        const std::optional<std::vector<Ref>> masks = column_masks(X, *memory, lists);
        if (!masks) return {};
        if (memory->dimensions == 1 && !holds(masks->front(), !inverted)) return Ref::share(X);
        std::vector<Mask> bytes;
        for (const Ref& mask : *masks) bytes.push_back({PyArray_BYTES(as_array(mask)), 1});
        if (!Y) Y = new_objects_like(*memory);
        const bool done = in_table_blocks(X, *memory, [&](const Table& table, std::size_t first, std::size_t last) {
            write_rows(table, {bytes, inverted, filling}, Y, first, last);
            return true;
        });
        return done ? std::move(Y) : Ref{};
    });
}

Ref mask_of(Object Xcol, Object reference_values_list_col, Object invert_flag) {
    const bool invert = truth(invert_flag);
    Ref mask = global("numpy_isin"_py)({Xcol, reference_values_list_col});
    return invert ? inverted(mask) : std::move(mask);
}

}  // namespace

constinit const Definition numpy_putmask{
    .name = "numpy_putmask",
    .parameters = {{"X"}, {"replace_values_mask"}, {"filling_value"}},
    .doc = R"(Copies an array into an object array, with a value put where a mask is true.

Parameters
----------
X : numpy.ndarray
replace_values_mask : array_like of bool
filling_value : object
    A sequence is used element by element, as `numpy.putmask` does.

Returns
-------
numpy.ndarray of object
    Always new.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_putmask
>>> numpy_putmask(np.array([1, 2]), [True, False], "?")
array(['?', 2], dtype=object)
)",
    .has_native_route = true,
    .lookups = {"np.putmask"},
    .body = [](Object X, Object replace_values_mask, Object filling_value) -> Ref {
        if (Ref Y = native_putmask(X, replace_values_mask, filling_value)) return Y;
        Ref Y = X.attr("astype"_py)({&PyBaseObject_Type});
        global("np"_py).attr("putmask"_py)({Y, replace_values_mask, filling_value});
        return Y;
    },
};

constinit const Definition numpy_replace_values{
    .name = "numpy_replace_values",
    .parameters = {{"X"}, {"filling_value"}, {"reference_values_list"}, {"invert_flag", false}},
    .doc = R"(Puts a value in place of the entries that match reference values.

:param X: Input matrix
:param reference_values_list: reference list of lists of known values for each column. if it is a 1-dimensional list, then
it is applicable to each column
:param filling_value: special value assigned array entries that match the reference values
:param invert_flag: If True replace the values NOT in the reference values list. Default False

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
    Never written into.
filling_value : object
reference_values_list : list
    One list for all columns, or, where its first element is a list, one for each.
invert_flag : bool

Returns
-------
numpy.ndarray of object, shape (n, m) or (n,), or `X` itself
    `X` itself for an empty list, and for one dimension without a match.

Raises
------
IndexError
    For fewer lists than columns, and for one dimension without rows.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_replace_values
>>> numpy_replace_values(np.array([[1, 2], [3, 1]]), -1, [1])
array([[-1, 2],
       [3, -1]], dtype=object)
)",
    .has_native_route = true,
    .lookups = {"np.empty", "numpy_isin", "np.any", "numpy_putmask"},
    .body = [](Object X, Object filling_value, Object reference_values_list, Object invert_flag) -> Ref {
        if (Ref Y = native_replace_values(X, filling_value, reference_values_list, invert_flag)) return Y;
        if (!truth(reference_values_list)) return Ref::share(X);
        const bool list2_flag = is_instance(item(reference_values_list, 0), &PyList_Type);
        const Ref num_rows = row_count(X);
        const Ref num_columns = equal(X.attr("ndim"_py), 1) ? whole(1) : column_count(X);
        Ref Y = global("np"_py).attr("empty"_py)({tuple({num_rows, num_columns})}, {{"dtype"_py, &PyBaseObject_Type}});
        const Ref every_row = every();
        const Py_ssize_t columns = count(num_columns);
        for (Py_ssize_t j = 0; j < columns; ++j) {
            const bool flat = equal(X.attr("ndim"_py), 1);
            const Ref Xcol = flat ? Ref::share(X) : matrix_column(X, j);
            // Not used, but raises IndexError for an array without rows.
            const Ref Ycol = flat ? item(Y, j) : Ref::share(Y);
            const Ref reference_values_list_col =
                list2_flag ? item(reference_values_list, j) : Ref::share(reference_values_list);
            const Ref replace_values_mask = mask_of(Xcol, reference_values_list_col, invert_flag);
            const bool any = truth(global("np"_py).attr("any"_py)({replace_values_mask}));
            const bool whole_result = equal(X.attr("ndim"_py), 1);
            Ref column =
                any ? global("numpy_putmask"_py)({Xcol, replace_values_mask, filling_value}) : Ref::share(Xcol);
            if (whole_result) {
                Y = std::move(column);
            } else {
                set_item(Y, tuple({every_row, j}), column);
            }
        }
        return Y;
    },
};

}  // namespace quorin::transform
