#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/classify/least_texts.hpp"
#include "exportable_utils/classify/partition.hpp"
#include "exportable_utils/classify/progress.hpp"
#include "exportable_utils/classify/short_answer.hpp"
#include "exportable_utils/classify/verdict.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

Ref date_test() {
    return global("FCplus"_py).attr("is_column_string_in_datetime_format"_py);
}

// Whether the least distinct values read as dates. A false answer is handed on as it came.
Ref find_datetime_flag(Object XX, Kind dtype_str, Progress& progress) {
    const Ref check_limit = capped_row_count(XX);
    progress.datetime_starts(check_limit);
    Ref flag = date_test()({first_rows(XX, check_limit)});
    if (truth(flag)) flag = Ref::truth(dtype_str == Kind::char_str);
    progress.datetime_ends(check_limit);
    return flag;
}

// What the classifier concluded, beside what it gathered on the way.
struct Found {
    Object dtype_str;
    Object missing_values;
    bool unique_values_column_flag;
    bool constant_column_flag;
    Object datetime_column_flag;
};

Ref statistics(const Partition& partition, const Scan& scan, const Found& found) {
    Ref stats_dict = Ref::take(PyDict_New());
    const Keyword entries[] = {
        {"dtype_str"_py, found.dtype_str},
        {"missing_values"_py, found.missing_values},
        {"unique_values"_py, partition.XX},
        {"unique_values_counts"_py, partition.xx_xounts},
        {"missing_mask"_py, partition.cum_missing_mask_arr.get()},
        {"dtypes_cnt"_py, scan.dtypes_cnt.dictionary()},
        {"dtypes_weighted_cnt_dict"_py, scan.dtypes_weighted_cnt.dictionary()},
        {"weird_new_missing_values_list"_py, scan.weird_new_missing_values_list},
        {"unique_values_column_flag"_py, found.unique_values_column_flag},
        {"constant_column_flag"_py, found.constant_column_flag},
        {"datetime_column_flag"_py, found.datetime_column_flag},
        {"monotonic_column_flag"_py, false},
        {"contiguous_column_flag"_py, false},
    };
    for (const Keyword& entry : entries) set_item(stats_dict, entry.name, entry.value);
    return stats_dict;
}

// Asks the date test about the least distinct texts. False, and nothing asked, where those are not for memory to say.
// The column and the list are read anew: the answer's own list may have started the collector.
bool ask_least_texts(Object X, Object missing_values_reference_list) {
    constexpr std::size_t sample_size = 50;
    const std::optional<ArrayColumn> column = single_column(X);
    if (!column) return false;
    const std::optional<references::References> markers =
        references::read_references(missing_values_reference_list, *column);
    if (!markers) return false;
    const std::optional<Ref> sample = least_texts(*column, *markers, sample_size);
    if (!sample) return false;
    static_cast<void>(truth(date_test()({*sample})));
    return true;
}

// The short answer straight from the column's memory, where nobody asks for more and nobody could tell the difference.
// Our own date test has no effect but its answer, which is not told; any other is asked, for whatever it may do.
std::optional<Answer> native_answer(Object X, Object missing_values_reference_list, bool first_only) {
    const bool date_test_is_silent = date_test_in_place();
    if (!date_test_is_silent && !originals_in_place()) return std::nullopt;
    const std::optional<ArrayColumn> column = single_column(X);
    if (!column) return std::nullopt;
    const std::optional<references::References> markers =
        references::read_references(missing_values_reference_list, *column);
    if (!markers) return std::nullopt;
    std::optional<Answer> answer = answer_for(*column, *markers);
    if (!answer) return std::nullopt;
    // Rows with the other markers of the list would not count as missing.
    if (first_only && PyList_GET_SIZE(answer->misslist.get()) > 1) return std::nullopt;
    if (!date_test_is_silent && !ask_least_texts(X, missing_values_reference_list)) return std::nullopt;
    return answer;
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
        const bool short_question = PyBool_Check(stop_at_one_missing_value_flag.get()) && debug.is(Py_False) &&
                                    use_dtype_str1_flag.is(Py_True) && return_stats_flag.is(Py_False);
        if (short_question) {
            const bool first_only = stop_at_one_missing_value_flag.is(Py_True);
            if (const auto answer = native_answer(column, missing_values_reference_list, first_only)) {
                return tuple({answer->misslist, text(answer->kind)});
            }
        }
        Progress progress(debug);
        progress.column(column);
        const Partition partition =
            partition_column(column, missing_values_reference_list, stop_at_one_missing_value_flag, debug);
        const Ref& XX = partition.XX;
        const Kind initial = equal(partition.non_missing_rows, 0) ? Kind::missing : Kind::unknown;
        const Ref distinct_values = row_count(XX);
        const bool unique_values_column_flag = equal(distinct_values, partition.non_missing_rows);
        const bool constant_column_flag = equal(row_count(XX), 1) || initial == Kind::missing;

        Scan scan(subtract(row_count(partition.X), partition.non_missing_rows));
        scan.dtype_str = initial;
        progress.scan_starts(XX);
        scan.run(XX, partition.xx_xounts, partition.missing_values_list);
        progress.scan_ends(XX);

        const Kind dtype_str = scan.found_float_str_flag && scan.found_int_str_flag ? Kind::float_str : scan.dtype_str;
        const Verdict verdict = decide(scan, initial);
        const bool by_counts = truth(use_dtype_str1_flag);
        const Ref dtype_str_final = Ref::share(text(by_counts ? verdict.dtype_str1 : dtype_str).text);
        Ref new_missing_values_list = Ref::share(partition.missing_reference_values_exist_list);
        if (!by_counts || verdict.start_missing_string_values_list_flag) {
            new_missing_values_list = add(new_missing_values_list, scan.start_missing_string_values(XX));
        }
        new_missing_values_list = add(new_missing_values_list, scan.weird_new_missing_values_list);

        if (partition.natively && return_stats_flag.is(Py_False) && date_test_in_place()) {
            return tuple({new_missing_values_list, dtype_str_final});
        }
        const Ref datetime_column_flag = find_datetime_flag(XX, dtype_str, progress);
        progress.order_and_gaps(capped(partition.non_missing_rows));
        progress.end();
        if (!truth(return_stats_flag)) return tuple({new_missing_values_list, dtype_str_final});

        const Found found{dtype_str_final, new_missing_values_list, unique_values_column_flag, constant_column_flag,
                          datetime_column_flag};
        return tuple({new_missing_values_list, dtype_str_final, statistics(partition, scan, found)});
    },
};

}  // namespace quorin::classify
