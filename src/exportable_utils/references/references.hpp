// Reference values: a list of values that the cells of a column are compared with, such as markers of missing values.
#pragma once

#include <array>
#include <bit>
#include <memory>
#include <optional>
#include <vector>

#include "core/inplace_vector.hpp"
#include "core/references/reference_texts.hpp"
#include "python/inputs/column_source.hpp"
#include "python/inputs/object_number.hpp"

namespace quorin::references {

using core::ReferenceBits;

// Owns the objects of a list, in the order of the list. Unused elements are not initialised.
class OwnedObjects {
  public:
    OwnedObjects() noexcept {}  // NOLINT(*-use-equals-default): the union has no active member yet
    OwnedObjects(OwnedObjects&& other) noexcept { take(other); }
    OwnedObjects& operator=(OwnedObjects&& other) noexcept {
        if (this == &other) return *this;
        clear();
        take(other);
        return *this;
    }
    OwnedObjects(const OwnedObjects&) = delete;
    OwnedObjects& operator=(const OwnedObjects&) = delete;
    ~OwnedObjects() { clear(); }

    void push_back(Object object) noexcept { std::construct_at(&objects_[size_++], Ref::share(object)); }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    [[nodiscard]] const Ref& operator[](std::size_t i) const noexcept { return objects_[i]; }
    [[nodiscard]] const Ref* begin() const noexcept { return objects_.data(); }
    [[nodiscard]] const Ref* end() const noexcept { return objects_.data() + size_; }

  private:
    void take(OwnedObjects& other) noexcept {
        for (; size_ < other.size_; ++size_) std::construct_at(&objects_[size_], std::move(other.objects_[size_]));
        other.clear();
    }
    void clear() noexcept {
        std::destroy_n(objects_.data(), size_);
        size_ = 0;
    }

    std::size_t size_ = 0;
    union {
        std::array<Ref, core::most_references> objects_;
    };
};

// Reference i of the list has the bit 1 << i. The objects are owned, so that the texts stay valid while foreign code
// runs. All are exact str, float, int, bool, None or numpy.str_: releasing them runs no foreign code, so References may
// be destroyed while a column is borrowed.
struct References {
    struct Number {
        double value;  // exact, also for an integer
        ReferenceBits bit;
    };
    References() noexcept {}  // NOLINT(*-use-equals-default): a defaulted one would initialise unused elements
    OwnedObjects objects;
    core::ReferenceTexts texts;
    core::InplaceVector<ReferenceBits, core::most_references> text_bits;  // the bit in the list of each text in `texts`
    ReferenceBits null_bits = 0;
    core::InplaceVector<Number, core::most_references> numbers;

    [[nodiscard]] bool none() const noexcept { return objects.empty(); }
    // Converts bits of `texts` to bits of the list.
    [[nodiscard]] ReferenceBits bits_of_texts(ReferenceBits found) const noexcept {
        ReferenceBits bits = 0;
        for (; found != 0; found &= found - 1) bits |= text_bits[static_cast<std::size_t>(std::countr_zero(found))];
        return bits;
    }
    [[nodiscard]] ReferenceBits bits_of_number(double value) const noexcept {
        ReferenceBits bits = 0;
        for (const Number& number : numbers) {
            if (number.value == value) bits |= number.bit;
        }
        return bits;
    }
    // The references that equal a number that is not NaN. Returns nullopt if the number is an integer that may not be
    // exact as a float64 and beyond_exact().
    [[nodiscard]] std::optional<ReferenceBits> bits_of_object(const ObjectNumber& number) const noexcept {
        if (number.type == NumberType::none) return 0;
        if (number.type == NumberType::real) return bits_of_number(number.real);
        if (!number.beyond_exact()) return bits_of_number(static_cast<double>(number.whole));
        if (beyond_exact()) return std::nullopt;
        return 0;
    }
    // Whether a reference is so large that it may equal an integer that is not exact as a float64.
    [[nodiscard]] bool beyond_exact() const noexcept {
        for (const Number& number : numbers) {
            if (std::fabs(number.value) >= exact_limit) return true;
        }
        return false;
    }
};

// Reads None or an exact list of at most `most_references` texts, nulls and exact numbers. Returns nullopt for any
// other list. Runs no foreign code.
std::optional<References> read_references(Object list);

// The same for a column of this storage. Does not read the texts of the list if no element can equal a text.
std::optional<References> read_references(Object list, Storage storage);
inline std::optional<References> read_references(Object list, const ColumnSource& column) {
    return read_references(list, column.storage());
}
inline std::optional<References> read_references(Object list, const ArrayColumn& column) {
    return read_references(list, column.storage);
}

// The same for the members of an exact set. Returns nullopt if one of them is a null, which a set matches by identity.
std::optional<References> read_members(Object set);

// Whether numpy.asarray() leaves the references that are not null unchanged. It converts numbers to texts if there are
// texts too, and it removes NUL characters at the end of a text.
bool unchanged_by_asarray(const References& references) noexcept;

// The references with these bits, in the order of the list.
std::vector<Ref> held(const References& references, ReferenceBits bits);

// The same as a new list.
Ref list_of_references(const References& references, ReferenceBits bits);

}  // namespace quorin::references
