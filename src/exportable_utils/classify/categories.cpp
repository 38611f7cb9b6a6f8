#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "core/text/label_text.hpp"
#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/references/references.hpp"
#include "python/indexing.hpp"
#include "python/inputs/object_slots.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

using references::References;

bool is_compressed(core::TextView text, const References& missing) {
    return !core::is_alphanumeric(text, character_tables) && missing.texts.find(text) == 0;
}

// Requires that all labels are exact texts. A label without white space stays the same object.
void compress_objects(const ArrayColumn& labels, const References& missing, std::vector<char>& room) {
    const ObjectCells cells(labels);
    for (std::size_t row = 0; row < labels.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        if (cells.read(row, text) != core::Cell::text || !is_compressed(text, missing)) continue;
        Ref compressed = text_without_white_space(text, room);
        if (PyUnicode_GET_LENGTH(compressed.get()) == PyUnicode_GET_LENGTH(labels.object(row))) continue;
        replace_object(object_slot(labels, row), std::move(compressed));
    }
}

// Compresses fixed-width labels in place, which cannot make them longer.
void compress_fixed(const ArrayColumn& labels, const References& missing) {
    const ArrayTextCells cells(labels);
    const std::size_t width = labels.width / sizeof(Py_UCS4);
    for (std::size_t row = 0; row < labels.rows; ++row) {
        core::TextView text{};
        cells.read(row, text);
        if (!is_compressed(text, missing)) continue;
        auto* label = reinterpret_cast<Py_UCS4*>(const_cast<char*>(labels.at(row)));
        std::fill(label + core::remove_white_space(text, character_tables, label), label + width, 0);
    }
}

bool all_exact_texts(const ArrayColumn& labels) {
    const ObjectCells cells(labels);
    for (std::size_t row = 0; row < labels.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        if (!is_exact_text(labels.object(row))) return false;
    }
    return true;
}

// Writes block by block. If a signal handler raises, the rows before are written, as in the interpreter route. If the
// route gives up, the interpreter route compresses all rows again, with the same result.
bool compress_in_blocks(const ColumnSource& labels, const References& missing) {
    if (labels.storage() == Storage::objects) {
        const auto check = [](const ArrayColumn& column, std::size_t first, std::size_t last) {
            return all_exact_texts(rows_of(column, first, last));
        };
        if (!labels.in_blocks(check)) return false;
    } else if (labels.storage() != Storage::fixed_text) {
        return false;
    }
    std::vector<char> room;
    return labels.in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
        const ArrayColumn part = rows_of(column, first, last);
        if (!PyArray_ISWRITEABLE(part.array)) return false;
        part.storage == Storage::objects ? compress_objects(part, missing, room) : compress_fixed(part, missing);
        return true;
    });
}

bool compress_natively(Object column_train_labels, Object misslist) {
    const Ref done = native_route([&] {
        const std::optional<ColumnSource> labels = ColumnSource::flat(column_train_labels);
        if (!labels || !PyList_CheckExact(misslist.get())) return Ref();
        const std::optional<References> missing = references::read_references(misslist);
        return missing && compress_in_blocks(*labels, *missing) ? Ref::truth(true) : Ref();
    });
    return static_cast<bool>(done);
}

// Compresses, in place, the labels that are neither missing nor alphanumeric.
void compress_labels(Object column_train_labels, Object misslist) {
    if (compress_natively(column_train_labels, misslist)) return;
    const Ref labels = iterate(column_train_labels);
    Py_ssize_t i = 0;
    while (const Ref str_elt = next(labels)) {
        if (!truth(global("pd"_py).attr("isnull"_py)({str_elt})) && !contains(misslist, str_elt) &&
            !truth(str_elt.attr("isalnum"_py)())) {
            set_item(column_train_labels, i, global("compress_string"_py)({str_elt}));
        }
        ++i;
    }
}

Ref append_categories(Object X, Object cat_indices, Object missing_values_list, Object categories_list2) {
    const Ref num_cols = equal(X.attr("ndim"_py), 1) ? whole(1) : column_count(X);
    const Py_ssize_t columns = count(num_cols);
    for (Py_ssize_t j = 0; j < columns; ++j) {
        if (!contains(cat_indices, j)) continue;
        const Ref CC = equal(num_cols, 1) ? Ref::share(X) : matrix_column(X, j);
        const auto [misslist, dtype_str, column_stats_dict] =
            unpack<3>(global("numpy_whatis"_py)({CC, missing_values_list}, {{"return_stats_flag"_py, true}}));
        const Ref column_train_labels = item(column_stats_dict, "unique_values"_py);
        if (equal(dtype_str, "char_str"_py)) compress_labels(column_train_labels, misslist);
        const Ref column_train_labels_list = column_train_labels.attr("tolist"_py)();
        categories_list2.attr("append"_py)({column_train_labels_list});
    }
    return Ref::share(categories_list2);
}

}  // namespace

constinit const Definition numpy_get_categories_into_list{
    .name = "numpy_get_categories",
    .parameters = {{"X"}, {"cat_indices"}, {"missing_values_list"}, {"categories_list2"}},
    .doc = R"(Lists the category labels of the selected columns of a table, in a list that the caller brings.

The routine of the same name that is defined later takes its place.
)",
    .body = [](Object X, Object cat_indices, Object missing_values_list, Object categories_list2) -> Ref {
        return append_categories(X, cat_indices, missing_values_list, categories_list2);
    },
};

constinit const Definition numpy_get_categories{
    .name = "numpy_get_categories",
    .parameters = {{"X"}, {"cat_indices"}, {"missing_values_list"}, {"categories_list2", None}},
    .doc = R"(Lists the category labels of the selected columns of a table.

Labels of a text column that are not missing and not alphanumeric are replaced by what `compress_string` makes of them.

Parameters
----------
X : numpy.ndarray of shape (n, m) or (n,)
cat_indices : container of int
    The columns wanted; indices beyond the last column are ignored.
missing_values_list : list
    Values that count as missing.
categories_list2 : list, optional
    List to append to; a new one by default.

Returns
-------
list of list
    `categories_list2`, with the ascending distinct values of each selected column appended.

Raises
------
UnboundLocalError
    Where `missing_values_list` is None or empty: the classifier has no statistics then.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_get_categories
>>> X = np.array([["a b", 1], ["c", 2], ["?", 2]], dtype=object)
>>> numpy_get_categories(X, [0, 1], ["?"])
[['ab', 'c'], [1, 2]]
)",
    .has_native_route = true,
    .lookups = {"numpy_whatis", "pd.isnull", "compress_string"},
    .body = [](Object X, Object cat_indices, Object missing_values_list, Object categories_list2) -> Ref {
        const Ref target = or_new_list(categories_list2);
        return append_categories(X, cat_indices, missing_values_list, target);
    },
};

}  // namespace quorin::classify
