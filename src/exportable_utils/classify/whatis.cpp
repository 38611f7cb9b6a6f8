#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/classify/partition.hpp"
#include "exportable_utils/classify/progress.hpp"
#include "exportable_utils/classify/scan.hpp"
#include "exportable_utils/classify/short_answer.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

Ref date_test() {
    return global("FCplus"_py).attr("is_column_string_in_datetime_format"_py);
}

// Whether the smallest distinct values are texts that the date test accepts. A false result of the test is returned
// unchanged.
Ref find_datetime_flag(Object XX, Kind dtype_str, Progress& progress) {
    const Ref check_limit = capped_row_count(XX);
    progress.datetime_starts(check_limit);
    Ref flag = date_test()({first_rows(XX, check_limit)});
    if (truth(flag)) flag = Ref::truth(dtype_str == Kind::char_str);
    progress.datetime_ends(check_limit);
    return flag;
}

// The results that follow from the scan.
struct Conclusion {
    Kind kind_by_last_value;
    Ref dtype_str_final;
    Ref new_missing_values_list;
    bool unique_values_column_flag = false;
    bool constant_column_flag = false;
};

Ref statistics(const Partition& partition, const Scan& scan, const Conclusion& conclusion, Object datetime_flag) {
    Ref stats_dict = Ref::take(PyDict_New());
    const Keyword entries[] = {
        {"dtype_str"_py, conclusion.dtype_str_final},
        {"missing_values"_py, conclusion.new_missing_values_list},
        {"unique_values"_py, partition.XX},
        {"unique_values_counts"_py, partition.xx_xounts},
        {"missing_mask"_py, partition.cum_missing_mask_arr.get()},
        {"dtypes_cnt"_py, scan.counts.distinct_by_word()},
        {"dtypes_weighted_cnt_dict"_py, scan.counts.rows_by_word()},
        {"weird_new_missing_values_list"_py, scan.weird_new_missing_values_list},
        {"unique_values_column_flag"_py, conclusion.unique_values_column_flag},
        {"constant_column_flag"_py, conclusion.constant_column_flag},
        {"datetime_column_flag"_py, datetime_flag},
        {"monotonic_column_flag"_py, false},
        {"contiguous_column_flag"_py, false},
    };
    for (const Keyword& entry : entries) set_item(stats_dict, entry.name, entry.value);
    return stats_dict;
}

// The short answer, if only the pair is requested. The pair does not depend on the date test. FC's own test is pure, so
// it is skipped; a replacement may have side effects and is called with the 50 smallest distinct texts. Gives up if
// those cannot be found natively.
Ref answer_shortly(const Question& question, NativeArguments& arguments) {
    constexpr std::size_t sample_size = 50;
    const bool pair_only = question.use_dtype_str1_flag.is(Py_True) && question.return_stats_flag.is(Py_False);
    if (!pair_only || !question.plain() || !arguments.known()) return {};
    const LookupState known = lookup_state();
    Ref sample;
    const auto body = [&]() -> Ref {
        Ref pair = short_answer(arguments, question.first_only());
        if (!pair || known.date_test_unchanged) return pair;
        sample = least_texts(arguments, sample_size);
        return sample ? std::move(pair) : Ref();
    };
    Ref answer = native_route(body, known);
    if (answer && sample) static_cast<void>(truth(date_test()({sample})));
    return answer;
}

Scan scan_partition(const Partition& partition, Progress& progress) {
    const Ref missing_rows = subtract(row_count(partition.X), partition.non_missing_rows);
    progress.scan_starts(partition.XX);
    Scan scan = scan_distinct_values(partition.XX, partition.xx_xounts, partition.missing_values_list, missing_rows);
    progress.scan_ends(partition.XX);
    return scan;
}

Ref markers_of(const Partition& partition, const Scan& scan, bool texts_are_markers) {
    Ref markers = Ref::share(partition.missing_reference_values_exist_list);
    if (texts_are_markers) markers = add(markers, scan.start_missing_string_values(partition.XX));
    return add(markers, scan.weird_new_missing_values_list);
}

// Decides by the facts of the scan.
Conclusion conclude(const Question& question, const Partition& partition, const Scan& scan, bool other_rows) {
    const core::VerdictFacts facts = scan.facts(other_rows);
    Conclusion conclusion;
    conclusion.kind_by_last_value = decide(facts, core::Rule::by_last_value).kind;
    const bool by_counts = truth(question.use_dtype_str1_flag);
    const core::Verdict verdict = decide(facts, by_counts ? core::Rule::by_counts : core::Rule::by_last_value);
    conclusion.dtype_str_final = Ref::share(name_of(verdict.kind).text);
    conclusion.new_missing_values_list = markers_of(partition, scan, verdict.texts_are_markers);
    return conclusion;
}

// All steps: missing rows, distinct values, scan, date test.
Ref classify(const Question& question, const NativeArguments& arguments) {
    Progress progress(question.debug);
    progress.column(question.X);
    const Partition partition = partition_column(question, arguments);
    const Ref& XX = partition.XX;
    const bool other_rows = !equal(partition.non_missing_rows, 0);
    const Ref distinct_values = row_count(XX);
    const bool unique_values_column_flag = equal(distinct_values, partition.non_missing_rows);
    const bool constant_column_flag = equal(row_count(XX), 1) || !other_rows;

    const Scan scan = scan_partition(partition, progress);
    Conclusion conclusion = conclude(question, partition, scan, other_rows);
    conclusion.unique_values_column_flag = unique_values_column_flag;
    conclusion.constant_column_flag = constant_column_flag;
    const auto pair = [&] { return tuple({conclusion.new_missing_values_list, conclusion.dtype_str_final}); };
    // FC's own date test is pure and only the statistics contain its result, so it is skipped without them.
    if (partition.natively && question.return_stats_flag.is(Py_False) && lookup_state().date_test_unchanged) {
        return pair();
    }
    const Ref datetime_flag = find_datetime_flag(XX, conclusion.kind_by_last_value, progress);
    progress.order_and_gaps(capped(partition.non_missing_rows));
    progress.end();
    if (!truth(question.return_stats_flag)) return pair();
    return tuple({conclusion.new_missing_values_list, conclusion.dtype_str_final,
                  statistics(partition, scan, conclusion, datetime_flag)});
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
    .has_native_route = true,
    .lookups = {"numpy_flatten_column", "numpy_compute_missing_indicator", "get_unique_values", "np.nan", "isint",
                "isfloat", "six.string_types", "np.float", "np.integer", "numbers.Integral", "np.bool_",
                "FCplus.is_column_string_in_datetime_format"},
    .body = [](Object X, Object missing_values_reference_list, Object stop_at_one_missing_value_flag, Object debug,
               Object use_dtype_str1_flag, Object return_stats_flag) -> Ref {
        const Question question{X,     missing_values_reference_list, stop_at_one_missing_value_flag,
                                debug, use_dtype_str1_flag,           return_stats_flag};
        NativeArguments arguments(X, missing_values_reference_list);
        if (Ref answer = answer_shortly(question, arguments)) return answer;
        return classify(question, arguments);
    },
};

}  // namespace quorin::classify
