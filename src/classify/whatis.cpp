#include "classify/classify.hpp"
#include "classify/progress.hpp"
#include "classify/verdict.hpp"
#include "columns/answer.hpp"
#include "columns/kept.hpp"
#include "columns/membership.hpp"
#include "interp/operations.hpp"
#include "interp/originals.hpp"
#include "interp/space.hpp"
#include "interp/table.hpp"

namespace quorin::classify {

namespace {

// The column, parted into rows that are missing and distinct values of the others.
struct Parted {
    Local cum_missing_mask_arr{"cum_missing_mask_arr"_py};
    Ref missing_reference_values_exist_list;
    Ref X_non_missing;
    Ref XX;
    Ref xx_xounts;
};

// The rows that hold markers, straight from the column's memory. False, and nothing done, where that is not for memory
// to say.
bool find_missing_natively(Parted& parted, Object X, Object missing_values_list) {
    if (!originals_in_place()) return false;
    const std::optional<columns::Column> column = columns::flat_column(X);
    if (!column) return false;
    const std::optional<columns::Markers> markers = columns::plain_markers(missing_values_list);
    if (!markers) return false;
    std::optional<columns::MarkedRows> marked = columns::marked_rows(*column, *markers);
    if (!marked) return false;
    const bool numbers =
        column->storage != columns::Storage::objects && column->storage != columns::Storage::fixed_text;
    if (marked->bits == 0) {
        parted.X_non_missing = Ref::share(X);
    } else if (numbers) {
        const char* mask = PyArray_BYTES(as_array(marked->mask));
        parted.X_non_missing = columns::rows_without(*column, reinterpret_cast<const std::uint8_t*>(mask));
    } else {
        parted.X_non_missing = item(X, inverted(marked->mask));
    }
    parted.cum_missing_mask_arr = std::move(marked->mask);
    parted.missing_reference_values_exist_list = columns::markers_of(*markers, marked->bits);
    return true;
}

// Without a reference list there is no mask, and NaN is no distinct value though its rows are not missing.
Parted part(Object X, Object missing_values_list, Object stop_at_one_missing_value_flag, Object debug) {
    Parted parted;
    std::array<Ref, 2> distinct;
    const bool plain_question = stop_at_one_missing_value_flag.is(Py_False) && debug.is(Py_False);
    if (!truth(missing_values_list)) {
        parted.missing_reference_values_exist_list = list({});
        parted.X_non_missing = Ref::share(X);
        const Ref exclusion_list = list({global("np"_py).attr("nan"_py)});
        distinct = unpack<2>(
            global("get_unique_values"_py)({parted.X_non_missing, exclusion_list}, {{"return_counts"_py, true}}));
    } else if (plain_question && find_missing_natively(parted, X, missing_values_list)) {
        distinct = unpack<2>(global("get_unique_values"_py)({parted.X_non_missing}, {{"return_counts"_py, true}}));
    } else {
        const Ref indicator = global("numpy_compute_missing_indicator"_py)(
            {X, missing_values_list},
            {{"stop_at_one_missing_value_flag"_py, stop_at_one_missing_value_flag}, {"debug"_py, debug}});
        auto [mask, missing_masks_list, markers] = unpack<3>(indicator);
        parted.X_non_missing = item(X, inverted(mask));
        parted.cum_missing_mask_arr = std::move(mask);
        parted.missing_reference_values_exist_list = std::move(markers);
        distinct = unpack<2>(global("get_unique_values"_py)({parted.X_non_missing}, {{"return_counts"_py, true}}));
    }
    parted.XX = std::move(distinct[0]);
    parted.xx_xounts = std::move(distinct[1]);
    return parted;
}

// Whether the least distinct values read as dates. A false answer is handed on as it came.
Ref find_datetime_flag(Object XX, Kind dtype_str, Progress& progress) {
    const Ref check_limit = capped_row_count(XX);
    progress.datetime_starts(check_limit);
    const Ref sample = first_rows(XX, check_limit);
    Ref flag = global("FCplus"_py).attr("is_column_string_in_datetime_format"_py)({sample});
    if (truth(flag)) flag = Ref::truth(dtype_str == Kind::char_str);
    progress.datetime_ends(check_limit);
    return flag;
}

// The short answer straight from the column's memory, where nobody asks for more and nobody could tell the difference.
std::optional<columns::Answer> native_answer(Object X, Object missing_values_reference_list) {
    if (!originals_in_place()) return std::nullopt;
    const std::optional<columns::Column> column = columns::plain_column(X);
    if (!column) return std::nullopt;
    const std::optional<columns::Markers> markers = columns::plain_markers(missing_values_reference_list);
    if (!markers) return std::nullopt;
    return columns::answer_for(*column, *markers);
}

}  // namespace

constinit const Definition numpy_whatis{
    .name = "numpy_whatis",
    .parameters = {{"X", required, Annotation::ndarray},
                   {"missing_values_reference_list", None},
                   {"stop_at_one_missing_value_flag", false},
                   {"debug", false},
                   {"use_dtype_str1_flag", true},
                   {"return_stats_flag", false}},
    .doc = R"(Classifies a 1-d numpy array as array of alphanumeric strings, int strings, float strings, ints or floats.

For string arrays it also discovers the values that stand for "missing": those of a reference list that occur, the
texts that number texts leave no other reading for, and single characters that are neither letters nor digits.

Parameters
----------
X : numpy.ndarray of shape (n,) or (n, 1)
    One column.
missing_values_reference_list : list, optional
    Values that count as missing.
stop_at_one_missing_value_flag : bool
    Look for no further marker of the reference list once one was found.
debug : bool
    Print progress and elapsed seconds.
use_dtype_str1_flag : bool
    Decide by the counts of the kinds; otherwise the kind of the last distinct value decides.
return_stats_flag : bool
    Return the statistics too. Needs a reference list.

Returns
-------
new_missing_values_list : list
    The markers that occur in the column, the discovered ones last.
dtype_str_final : str
    "missing", "char_str" (text), "int_str" and "float_str" (numbers as text), "float_num" (fractions),
    "float_int_num" (whole-valued floats), "int_num", "boolean" or "Unknown".
stats_dict : dict
    Only with `return_stats_flag`: the two results above, the distinct values and their counts, the mask of the
    missing rows, the counts of the kinds by distinct value and by occurrence, and what holds for the column.

Raises
------
UnboundLocalError
    For a least distinct value of no known kind, such as None, and for statistics without a reference list or with an
    empty one.
IndexError
    For an empty column.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import numpy_whatis
>>> numpy_whatis(np.array(["1", "2", "*", "", "30"], dtype=object), ["?", "", "-", np.nan])
(['', '*'], 'int_str')
)",
    .body = [](Object column, Object missing_values_reference_list, Object stop_at_one_missing_value_flag, Object debug,
               Object use_dtype_str1_flag, Object return_stats_flag) -> Ref {
        const bool short_question = stop_at_one_missing_value_flag.is(Py_False) && debug.is(Py_False) &&
                                    use_dtype_str1_flag.is(Py_True) && return_stats_flag.is(Py_False);
        if (short_question) {
            if (const auto answer = native_answer(column, missing_values_reference_list)) {
                return tuple({answer->misslist, text(answer->kind)});
            }
        }
        Progress progress(debug);
        progress.column(column);
        Ref X = global("numpy_flatten_column"_py)({column});
        const Ref missing_values_list =
            missing_values_reference_list.is_none() ? list({}) : missing_values_reference_list.attr("copy"_py)();
        if (equal(X.attr("dtype"_py), "float32"_py)) X = X.attr("astype"_py)({&PyFloat_Type});

        const Parted parted = part(X, missing_values_list, stop_at_one_missing_value_flag, debug);
        const Ref& XX = parted.XX;
        const Kind initial = equal(row_count(parted.X_non_missing), 0) ? Kind::missing : Kind::unknown;
        const Ref distinct_values = row_count(XX);
        const bool unique_values_column_flag = equal(distinct_values, row_count(parted.X_non_missing));
        const bool constant_column_flag = equal(row_count(XX), 1) || initial == Kind::missing;

        const Ref rows = row_count(X);
        Scan scan(subtract(rows, row_count(parted.X_non_missing)));
        scan.dtype_str = initial;
        progress.scan_starts(XX);
        scan.run(XX, parted.xx_xounts, missing_values_list);
        progress.scan_ends(XX);

        const Kind dtype_str = scan.found_float_str_flag && scan.found_int_str_flag ? Kind::float_str : scan.dtype_str;
        const Verdict verdict = decide(scan, initial);
        const bool by_counts = truth(use_dtype_str1_flag);
        const Ref dtype_str_final = Ref::share(text(by_counts ? verdict.dtype_str1 : dtype_str).text);
        Ref new_missing_values_list = Ref::share(parted.missing_reference_values_exist_list);
        if (!by_counts || verdict.start_missing_string_values_list_flag) {
            new_missing_values_list = add(new_missing_values_list, scan.start_missing_string_values_list);
        }
        new_missing_values_list = add(new_missing_values_list, scan.weird_new_missing_values_list);

        const Ref datetime_column_flag = find_datetime_flag(XX, dtype_str, progress);
        progress.order_and_gaps(capped_row_count(parted.X_non_missing));
        progress.end();
        if (!truth(return_stats_flag)) return tuple({new_missing_values_list, dtype_str_final});

        const Ref stats_dict = Ref::take(PyDict_New());
        const Keyword entries[] = {
            {"dtype_str"_py, dtype_str_final},
            {"missing_values"_py, new_missing_values_list},
            {"unique_values"_py, XX},
            {"unique_values_counts"_py, parted.xx_xounts},
            {"missing_mask"_py, parted.cum_missing_mask_arr.get()},
            {"dtypes_cnt"_py, scan.dtypes_cnt.dictionary()},
            {"dtypes_weighted_cnt_dict"_py, scan.dtypes_weighted_cnt.dictionary()},
            {"weird_new_missing_values_list"_py, scan.weird_new_missing_values_list},
            {"unique_values_column_flag"_py, unique_values_column_flag},
            {"constant_column_flag"_py, constant_column_flag},
            {"datetime_column_flag"_py, datetime_column_flag},
            {"monotonic_column_flag"_py, false},
            {"contiguous_column_flag"_py, false},
        };
        for (const Keyword& entry : entries) set_item(stats_dict, entry.name, entry.value);
        return tuple({new_missing_values_list, dtype_str_final, stats_dict});
    },
};

}  // namespace quorin::classify
