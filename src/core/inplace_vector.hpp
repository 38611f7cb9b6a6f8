// A vector of limited size that allocates no memory.
#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <type_traits>

namespace quorin::core {

// Up to `Most` values, stored in place. Unused elements are not initialised, so a large `Most` costs no time.
template <class Value, std::size_t Most>
class InplaceVector {
    static_assert(std::is_trivially_copyable_v<Value>);

  public:
    InplaceVector() noexcept {}  // NOLINT(*-use-equals-default): the union has no active member yet
    void push_back(const Value& value) noexcept {
        assert(size_ < Most);
        values_[size_++] = value;
    }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    [[nodiscard]] const Value& operator[](std::size_t i) const noexcept { return values_[i]; }
    [[nodiscard]] const Value* begin() const noexcept { return values_.data(); }
    [[nodiscard]] const Value* end() const noexcept { return values_.data() + size_; }

  private:
    std::size_t size_ = 0;
    union {
        std::array<Value, Most> values_;
    };
};

}  // namespace quorin::core
