#include "exportable_utils/classify/scan.hpp"

#include "python/errors.hpp"
#include "python/indexing.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/numpy.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

constexpr int dtype_str3_limit = 2;

bool is_float(Object elt) {
    return is_instance(elt, &PyFloat_Type) || is_instance(elt, numpy_alias("float"_py, &PyFloat_Type));
}

bool is_integer(Object elt) {
    return is_instance(elt, &PyLong_Type) || is_instance(elt, global("np"_py).attr("integer"_py)) ||
           is_instance(elt, global("numbers"_py).attr("Integral"_py));
}

bool is_boolean(Object elt) {
    return contains(text_of(Py_TYPE(elt.get())), "bool"_py) || is_instance(elt, global("np"_py).attr("bool_"_py));
}

}  // namespace

Scan::Scan(Object missing_rows)
    : dtypes_cnt(missing_rows),
      dtypes_weighted_cnt(missing_rows),
      weird_new_missing_values_list(list({})),
      start_missing_string_values_list_(list({})) {
    frozen_.start_missing_string_values_list3 = list({});
    frozen_.weird_new_missing_values_list3 = list({});
}

void Scan::run(Object XX, Object xx_xounts, Object missing_values_list) {
    if (originals_in_place() && run_native(XX, xx_xounts, missing_values_list)) return;
    const Py_ssize_t values = count(row_count(XX));
    for (Py_ssize_t i = 0; i < values; ++i) {
        const Ref elt = item(XX, i);
        if (is_instance(elt, global("six"_py).attr("string_types"_py))) {
            if (is_marker(elt)) {
                // The first marker beyond the numbers ends the walk, uncounted.
                missing_values_list.attr("append"_py)({elt});
                append(weird_new_missing_values_list, elt);
                return;
            }
            classify_text(XX, i, elt);
        } else {
            classify_value(elt);
        }
        if (!dtype_str_found_) fail_unbound("dtype_str_found"_py);
        // A value of no known kind is counted as its predecessor was.
        dtypes_cnt.add(*dtype_str_found_, 1);
        dtypes_weighted_cnt.add(*dtype_str_found_, item(xx_xounts, i));
        apply_stop_rule();
    }
}

Ref Scan::start_missing_string_values(Object XX) const {
    if (texts_below_ == 0 && texts_above_.empty()) return Ref::share(start_missing_string_values_list_);
    Ref texts = item(XX, slice(Py_None, static_cast<Py_ssize_t>(texts_below_))).attr("tolist"_py)();
    for (const std::size_t i : texts_above_) append(texts, item(XX, static_cast<Py_ssize_t>(i)));
    return texts;
}

// Behind a number: no text at all, or one character that is neither letter nor digit.
bool Scan::is_marker(Object elt) const {
    if (!found_nonmissing_flag) return false;
    if (!equal(elt, ""_py) && !(length(elt) == 1 && !truth(elt.attr("isalnum"_py)()))) return false;
    return !contains(weird_new_missing_values_list, elt);
}

void Scan::classify_text(Object XX, Py_ssize_t i, Object elt) {
    dtype_str = Kind::char_str;
    dtype_str_found_ = Kind::char_str;
    follow_kind();
    if (!frozen_.dtype_str3_stop_flag) {
        frozen_.weird_new_missing_values_list3 = Ref::share(weird_new_missing_values_list);
    }
    if (truth(global("isint"_py)({elt})) && !contains(elt, "."_py)) number_text_found(Kind::int_str, XX, i);
    if (truth(global("isfloat"_py)({elt})) && contains(elt, "."_py)) number_text_found(Kind::float_str, XX, i);
    if (dtype_str == Kind::char_str) {
        found_string_flag = true;
        if (number_text_seen() && !contains(start_missing_string_values_list_, elt)) {
            start_missing_string_values_list_.attr("append"_py)({elt});
        }
        follow_kind();
    }
}

// Texts that sort before the first number text are candidate markers.
void Scan::number_text_found(Kind kind, Object XX, Py_ssize_t i) {
    dtype_str = kind;
    dtype_str_found_ = kind;
    if (!number_text_seen() && found_string_flag) {
        start_missing_string_values_list_ = item(XX, slice(Py_None, i)).attr("tolist"_py)();
    }
    (kind == Kind::int_str ? found_int_str_flag : found_float_str_flag) = true;
    found_nonmissing_flag = true;
    follow_kind();
    if (!frozen_.dtype_str3_stop_flag) {
        frozen_.start_missing_string_values_list3 = Ref::share(start_missing_string_values_list_);
    }
}

// Three tests, and a later one overrides an earlier one: a Python bool is an integer too.
void Scan::classify_value(Object elt) {
    if (is_float(elt)) {
        // A column keeps "float_num" as its running class once a fraction was seen.
        const bool whole_valued = truth(elt.attr("is_integer"_py)());
        const Kind running = dtype_str;
        value_found(whole_valued ? Kind::float_int_num : Kind::float_num);
        if (whole_valued && running == Kind::float_num) dtype_str = Kind::float_num;
        follow_kind();
    }
    if (is_integer(elt)) value_found(Kind::int_num);
    if (is_boolean(elt)) value_found(Kind::boolean);
}

void Scan::value_found(Kind kind) {
    dtype_str = kind;
    dtype_str_found_ = kind;
    found_nonmissing_flag = true;
    follow_kind();
}

void Scan::follow_kind() {
    if (!frozen_.dtype_str3_stop_flag) frozen_.dtype_str3 = dtype_str;
}

void Scan::apply_stop_rule() {
    for (const Kind kind : {Kind::char_str, Kind::float_str}) {
        if (frozen_.dtype_str3 == kind && greater(dtypes_cnt[kind], dtype_str3_limit) &&
            (dtypes_cnt.any(Kind::missing) || length(frozen_.weird_new_missing_values_list3) != 0)) {
            frozen_.dtype_str3_stop_flag = true;
            return;
        }
    }
}

}  // namespace quorin::classify
