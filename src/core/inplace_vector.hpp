// A short list that needs no memory of its own.
#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <type_traits>

namespace quorin::core {

// Up to `Most` plain things, in place. Room that is not used is not touched either: what is made for a single short
// question costs no more than what is put into it.
template <class Thing, std::size_t Most>
class InplaceVector {
    static_assert(std::is_trivially_copyable_v<Thing>);

  public:
    InplaceVector() noexcept {
    }  // NOLINT(*-use-equals-default): no thing is there yet, which a union cannot tell by itself
    void push_back(const Thing& thing) noexcept {
        assert(size_ < Most);
        things_[size_++] = thing;
    }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    [[nodiscard]] const Thing& operator[](std::size_t i) const noexcept { return things_[i]; }
    [[nodiscard]] const Thing* begin() const noexcept { return things_.data(); }
    [[nodiscard]] const Thing* end() const noexcept { return things_.data() + size_; }

  private:
    std::size_t size_ = 0;
    union {
        std::array<Thing, Most> things_;
    };
};

}  // namespace quorin::core
