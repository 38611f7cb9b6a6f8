#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "core/text/label_text.hpp"
#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/references/references.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

bool is_compressed(core::TextView text, const references::References& missing) {
    return !core::is_alphanumeric(text, character_tables) && missing.texts.find(text) == 0;
}

// Labels of an array of objects, each of them an exact str. Those without white space stay the objects they are.
void compress_objects(const ArrayColumn& labels, const references::References& missing) {
    const ObjectCells cells(labels);
    std::vector<char> room;
    for (std::size_t row = 0; row < labels.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        if (cells.read(row, text) != core::Cell::text || !is_compressed(text, missing)) continue;
        Ref compressed = text_without_white_space(text, room);
        if (PyUnicode_GET_LENGTH(compressed.get()) == static_cast<Py_ssize_t>(text.size)) continue;
        auto* place = reinterpret_cast<PyObject**>(const_cast<char*>(labels.at(row)));
        Ref::adopt(std::exchange(*place, compressed.give()));
    }
}

// Labels of fixed width become no longer, so they are compressed where they stand.
void compress_fixed(const ArrayColumn& labels, const references::References& missing) {
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

bool all_plain_texts(const ArrayColumn& labels) {
    const ObjectCells cells(labels);
    for (std::size_t row = 0; row < labels.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        if (labels.object(row) == nullptr || !PyUnicode_CheckExact(labels.object(row))) return false;
    }
    return true;
}

bool compress_natively(Object column_train_labels, Object misslist) {
    if (!originals_in_place()) return false;
    const std::optional<ArrayColumn> labels = flat_column(column_train_labels);
    if (!labels || !PyArray_ISWRITEABLE(labels->array) || !PyList_CheckExact(misslist.get())) return false;
    const std::optional<references::References> missing = references::read_references(misslist);
    if (!missing) return false;
    if (labels->storage == Storage::fixed_text) {
        compress_fixed(*labels, *missing);
        return true;
    }
    if (labels->storage != Storage::objects || !all_plain_texts(*labels)) return false;
    compress_objects(*labels, *missing);
    return true;
}

// Labels that are neither missing nor plain words are compressed where they stand.
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
    .body = [](Object X, Object cat_indices, Object missing_values_list, Object categories_list2) -> Ref {
        const Ref target = or_new_list(categories_list2);
        return append_categories(X, cat_indices, missing_values_list, target);
    },
};

}  // namespace quorin::classify
