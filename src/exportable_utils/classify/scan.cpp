#include "exportable_utils/classify/scan.hpp"

#include <optional>

#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/numpy.hpp"
#include "python/operations.hpp"

namespace quorin::classify {

namespace {

constexpr Py_ssize_t dtype_str3_limit = 2;

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

// The interpreter route of the scan.
class InterpreterScan {
  public:
    explicit InterpreterScan(Scan& scan) : scan_(scan) {}
    void run(Object XX, Object xx_xounts, Object missing_values_list);

  private:
    bool is_end_marker(Object elt) const;
    void classify_text(Object XX, Py_ssize_t i, Object elt);
    void number_text_found(Kind kind, Object XX, Py_ssize_t i);
    void classify_value(Object elt);
    void value_found(Kind kind);
    void follow_kind();
    void apply_stop_rule();
    [[nodiscard]] bool number_text_seen() const { return scan_.integer_texts || scan_.real_texts; }

    Scan& scan_;
    std::optional<Kind> dtype_str_found_;
    bool found_nonmissing_flag_ = false;
    bool found_string_flag_ = false;
    // Follows the running kind until the stop rule holds. No result depends on it, but the rule compares the number of
    // missing rows, which a number of a class with its own operators can observe.
    Kind dtype_str3_ = Kind::unknown;
    bool dtype_str3_stop_flag_ = false;
};

void InterpreterScan::run(Object XX, Object xx_xounts, Object missing_values_list) {
    const Py_ssize_t values = count(row_count(XX));
    for (Py_ssize_t i = 0; i < values; ++i) {
        const Ref elt = item(XX, i);
        if (is_instance(elt, global("six"_py).attr("string_types"_py))) {
            if (is_end_marker(elt)) {
                missing_values_list.attr("append"_py)({elt});
                append(scan_.weird_new_missing_values_list, elt);
                return;
            }
            classify_text(XX, i, elt);
        } else {
            classify_value(elt);
        }
        if (!dtype_str_found_) fail_unbound("dtype_str_found"_py);
        // A value of unknown kind counts as the kind of the value before it.
        scan_.counts.add(*dtype_str_found_, 1, item(xx_xounts, i));
        apply_stop_rule();
    }
}

// Whether elt is a lone text after a number or a number text.
bool InterpreterScan::is_end_marker(Object elt) const {
    if (!found_nonmissing_flag_) return false;
    return equal(elt, ""_py) || (length(elt) == 1 && !truth(elt.attr("isalnum"_py)()));
}

void InterpreterScan::classify_text(Object XX, Py_ssize_t i, Object elt) {
    scan_.running = Kind::char_str;
    dtype_str_found_ = Kind::char_str;
    follow_kind();
    if (truth(global("isint"_py)({elt})) && !contains(elt, "."_py)) number_text_found(Kind::int_str, XX, i);
    if (truth(global("isfloat"_py)({elt})) && contains(elt, "."_py)) number_text_found(Kind::float_str, XX, i);
    if (scan_.running != Kind::char_str) return;
    found_string_flag_ = true;
    const Ref& start_texts = scan_.start_missing_string_values_list;
    if (number_text_seen() && !contains(start_texts, elt)) start_texts.attr("append"_py)({elt});
    follow_kind();
}

// Records the texts before the first number text, which may be markers.
void InterpreterScan::number_text_found(Kind kind, Object XX, Py_ssize_t i) {
    scan_.running = kind;
    dtype_str_found_ = kind;
    if (!number_text_seen() && found_string_flag_) {
        scan_.start_missing_string_values_list = item(XX, slice(Py_None, i)).attr("tolist"_py)();
    }
    (kind == Kind::int_str ? scan_.integer_texts : scan_.real_texts) = true;
    found_nonmissing_flag_ = true;
    follow_kind();
}

// A later test overrides an earlier one: a bool is also an integer.
void InterpreterScan::classify_value(Object elt) {
    if (is_float(elt)) {
        // A whole number after a fraction leaves the running kind at float_num.
        const bool whole_valued = truth(elt.attr("is_integer"_py)());
        const Kind running = scan_.running;
        value_found(whole_valued ? Kind::float_int_num : Kind::float_num);
        if (whole_valued && running == Kind::float_num) scan_.running = Kind::float_num;
        follow_kind();
    }
    if (is_integer(elt)) value_found(Kind::int_num);
    if (is_boolean(elt)) value_found(Kind::boolean);
}

void InterpreterScan::value_found(Kind kind) {
    scan_.running = kind;
    dtype_str_found_ = kind;
    found_nonmissing_flag_ = true;
    follow_kind();
}

void InterpreterScan::follow_kind() {
    if (!dtype_str3_stop_flag_) dtype_str3_ = scan_.running;
}

void InterpreterScan::apply_stop_rule() {
    if (dtype_str3_ != Kind::char_str && dtype_str3_ != Kind::float_str) return;
    if (scan_.counts.distinct(dtype_str3_) <= dtype_str3_limit) return;
    if (scan_.counts.any_missing_rows()) dtype_str3_stop_flag_ = true;
}

}  // namespace

Scan::Scan(Object missing_rows)
    : counts(missing_rows), weird_new_missing_values_list(list({})), start_missing_string_values_list(list({})) {}

core::VerdictFacts Scan::facts(bool other_rows) const {
    core::VerdictFacts facts;
    facts.other_rows = other_rows;
    facts.missing_rows = counts.any_missing_rows();
    for (std::size_t i = 0; i < core::kind_count; ++i) {
        const auto kind = static_cast<Kind>(i);
        if (counts.distinct(kind) != 0) facts.kinds.add(kind);
    }
    // Compared again if nothing is counted, which a number of a class with its own operators can observe.
    if (facts.kinds.empty()) facts.missing_rows = counts.any_missing_rows();
    facts.one_text = counts.distinct(Kind::char_str) == 1;
    facts.end_marker = PyList_GET_SIZE(weird_new_missing_values_list.get()) != 0;
    facts.running = running;
    facts.both_number_texts = integer_texts && real_texts;
    return facts;
}

Ref Scan::start_missing_string_values(Object XX) const {
    if (texts_below == 0 && texts_above.empty()) return Ref::share(start_missing_string_values_list);
    Ref texts = item(XX, slice(Py_None, static_cast<Py_ssize_t>(texts_below))).attr("tolist"_py)();
    for (const std::size_t i : texts_above) append(texts, item(XX, static_cast<Py_ssize_t>(i)));
    return texts;
}

Scan scan_distinct_values(Object XX, Object xx_xounts, Object missing_values_list, Object missing_rows) {
    Scan scan(missing_rows);
    if (!scan_memory(XX, xx_xounts, missing_values_list, scan)) {
        InterpreterScan(scan).run(XX, xx_xounts, missing_values_list);
    }
    return scan;
}

}  // namespace quorin::classify
