// A list of missing-value markers or of other reference values, read for native routes.
#pragma once

#include <optional>
#include <vector>

#include "core/inplace_vector.hpp"
#include "python/inputs/array_column.hpp"
#include "python/inputs/object_number.hpp"

namespace quorin::references {

// Every marker of the list has a bit of its own, counted from the first.
struct References {
    struct Number {
        double value;  // a marker that is an integer is exact here, or there would be no `References`
        std::uint32_t bit;
    };
    References() noexcept {}  // NOLINT(*-use-equals-default): one that the compiler made would fill all room with zeros
    core::InplaceVector<PyObject*, core::most_references> objects;
    core::ReferenceTexts texts;
    core::InplaceVector<std::uint32_t, core::most_references> text_bits;  // of the texts of the set, in its order
    std::uint32_t null_bits = 0;
    core::InplaceVector<Number, core::most_references> numbers;

    [[nodiscard]] bool none() const noexcept { return objects.empty(); }
    // From the bits of the set to those of the list.
    [[nodiscard]] std::uint32_t bits_of_texts(std::uint32_t found) const noexcept {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; found >> i != 0; ++i) {
            if ((found >> i & 1U) != 0) bits |= text_bits[i];
        }
        return bits;
    }
    [[nodiscard]] std::uint32_t bits_of_number(double value) const noexcept {
        std::uint32_t bits = 0;
        for (const Number& number : numbers) {
            if (number.value == value) bits |= number.bit;
        }
        return bits;
    }
    // Of an object that is not NaN. Nothing where a float is compared with an integer that a 64-bit float
    // might not hold.
    [[nodiscard]] std::optional<std::uint32_t> bits_of_object(const ObjectNumber& number) const noexcept {
        if (number.type == NumberType::none) return 0;
        if (number.type == NumberType::real) return bits_of_number(number.real);
        if (!number.beyond_exact()) return bits_of_number(static_cast<double>(number.whole));
        if (beyond_exact()) return std::nullopt;
        return 0;
    }
    // Whether any marker is so large that an integer that is not exact as a 64-bit float might equal it.
    [[nodiscard]] bool beyond_exact() const noexcept {
        for (const Number& number : numbers) {
            if (std::fabs(number.value) >= exact_limit) return true;
        }
        return false;
    }
};

// Nothing for any list but None and an exact list of texts, nulls and plain numbers.
std::optional<References> read_references(Object list);

// As far as they matter to this column: no number equals a text, so that the texts cost next to nothing there.
std::optional<References> read_references(Object list, const ArrayColumn& column);

// The same for the members of an exact set without nulls, which match nothing there but themselves.
std::optional<References> read_members(Object set);

// Whether numpy.asarray() leaves the values that are not null as they are when it makes one array of the list: it turns
// numbers beside texts into texts, and texts lose zeros at their end.
bool unchanged_by_asarray(const References& markers) noexcept;

// The markers of these bits, held: from here on foreign code may take them out of their list.
std::vector<Ref> held(const References& markers, std::uint32_t bits);

// The same as a new list.
Ref list_of_references(const References& markers, std::uint32_t bits);

}  // namespace quorin::references
