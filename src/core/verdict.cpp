#include "core/verdict.hpp"

namespace quorin::core {

namespace {

// The kind before the rules apply: for a column with several kinds, or without a counted value.
Kind initial_kind(const VerdictFacts& facts) noexcept {
    return facts.other_rows ? Kind::unknown : Kind::missing;
}

// The verdict for a column of several kinds that include char_str.
Verdict decide_texts(const VerdictFacts& facts) noexcept {
    // With a single text beside number texts, or with an end marker, the texts stand for missing values.
    if (facts.one_text || facts.end_marker) {
        if (facts.kinds.has(Kind::float_str)) return {Kind::float_str, true};
        if (facts.kinds.has(Kind::int_str)) return {Kind::int_str, true};
    }
    return {Kind::char_str};
}

Verdict decide_by_counts(const VerdictFacts& facts) noexcept {
    const KindSet kinds = facts.kinds;
    if (kinds.empty()) return {facts.missing_rows ? Kind::missing : Kind::unknown};
    if (kinds.size() == 1) return {kinds.first()};
    Verdict verdict{initial_kind(facts)};
    if (kinds.has(Kind::char_str)) {
        verdict = decide_texts(facts);
    } else if (kinds.has(Kind::float_str)) {
        verdict.kind = Kind::float_str;
    }
    if (kinds.has(Kind::float_num)) verdict.kind = Kind::float_num;
    return verdict;
}

Verdict decide_by_last_value(const VerdictFacts& facts) noexcept {
    if (facts.both_number_texts) return {Kind::float_str, true};
    return {facts.kinds.empty() ? initial_kind(facts) : facts.running, true};
}

}  // namespace

Verdict decide(const VerdictFacts& facts, Rule rule) noexcept {
    return rule == Rule::by_counts ? decide_by_counts(facts) : decide_by_last_value(facts);
}

}  // namespace quorin::core
