#include "exportable_utils/classify/verdict.hpp"

#include "python/operations.hpp"

namespace quorin::classify {

namespace {

class KindsFound {
  public:
    explicit KindsFound(const KindCounts& counts) {
        for (std::size_t i = 0; i < kinds; ++i) {
            const Kind kind = static_cast<Kind>(i);
            if (!counts.any(kind) || kind == Kind::missing) continue;
            found_[i] = true;
            if (size_++ == 0) first_ = kind;
        }
    }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] Kind first() const { return first_; }
    [[nodiscard]] bool has(Kind kind) const { return found_[static_cast<std::size_t>(kind)]; }

  private:
    std::array<bool, kinds> found_{};
    std::size_t size_ = 0;
    Kind first_ = Kind::unknown;
};

}  // namespace

Verdict decide(const Scan& scan, Kind initial) {
    const KindsFound found(scan.dtypes_cnt);
    if (found.size() == 0) return {scan.dtypes_cnt.any(Kind::missing) ? Kind::missing : Kind::unknown};
    if (found.size() == 1) return {found.first()};

    Verdict verdict{initial};
    if (found.has(Kind::char_str)) {
        verdict.dtype_str1 = Kind::char_str;
        // A single text among number texts, or a marker behind them: the text stands for "missing".
        if (equal(scan.dtypes_cnt[Kind::char_str], 1) || length(scan.weird_new_missing_values_list) != 0) {
            for (const Kind number_text : {Kind::float_str, Kind::int_str}) {
                if (!found.has(number_text)) continue;
                verdict = {number_text, true};
                break;
            }
        }
    } else if (found.has(Kind::float_str)) {
        verdict.dtype_str1 = Kind::float_str;
    }
    if (found.has(Kind::float_num)) verdict.dtype_str1 = Kind::float_num;
    return verdict;
}

}  // namespace quorin::classify
