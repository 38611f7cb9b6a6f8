// The kinds that a column or one of its values can have, and the words for them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace quorin::core {

// In the order in which counts are reported. `date_str` is reserved; no value has this kind.
enum class Kind : std::uint8_t {
    missing,
    char_str,
    date_str,
    int_str,
    float_str,
    float_num,
    float_int_num,
    int_num,
    boolean,
    unknown
};

constexpr std::size_t kind_count = 10;

// The word that callers see, such as "float_int_num".
const char* word_of(Kind kind) noexcept;

class KindSet {
  public:
    constexpr KindSet() noexcept = default;
    constexpr KindSet(std::initializer_list<Kind> kinds) noexcept {
        for (const Kind kind : kinds) add(kind);
    }
    constexpr void add(Kind kind) noexcept { bits_ |= bit_of(kind); }
    [[nodiscard]] constexpr bool has(Kind kind) const noexcept { return (bits_ & bit_of(kind)) != 0; }
    [[nodiscard]] constexpr bool empty() const noexcept { return bits_ == 0; }
    [[nodiscard]] constexpr int size() const noexcept { return std::popcount(bits_); }
    // The first kind in the order of Kind. Requires !empty().
    [[nodiscard]] constexpr Kind first() const noexcept { return static_cast<Kind>(std::countr_zero(bits_)); }

  private:
    static constexpr std::uint32_t bit_of(Kind kind) noexcept { return 1U << static_cast<unsigned>(kind); }
    std::uint32_t bits_ = 0;
};

}  // namespace quorin::core
