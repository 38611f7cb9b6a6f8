// A list of missing-value markers or of other reference values, read for native routes.
#pragma once

#include <optional>
#include <vector>

#include "columns/column.hpp"
#include "columns/object_number.hpp"
#include "kernels/few.hpp"

namespace quorin::columns {

// Every marker of the list has a bit of its own, counted from the first.
struct Markers {
    struct Number {
        double value;  // a marker that is an integer is exact here, or there would be no `Markers`
        std::uint32_t bit;
    };
    Markers() noexcept {}  // NOLINT(*-use-equals-default): one that the compiler made would fill all room with zeros
    kernels::Few<PyObject*, kernels::most_markers> objects;
    kernels::MarkerSet texts;
    kernels::Few<std::uint32_t, kernels::most_markers> text_bits;  // of the texts of the set, in its order
    std::uint32_t null_bits = 0;
    kernels::Few<Number, kernels::most_markers> numbers;

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
std::optional<Markers> plain_markers(Object list);

// As far as they matter to this column: no number equals a text, so that the texts cost next to nothing there.
std::optional<Markers> plain_markers(Object list, const Column& column);

// The same for the members of an exact set without nulls, which match nothing there but themselves.
std::optional<Markers> plain_members(Object set);

// Whether numpy.asarray() leaves the values that are not null as they are when it makes one array of the list: it turns
// numbers beside texts into texts, and texts lose zeros at their end.
bool survive_asarray(const Markers& markers) noexcept;

// The markers of these bits, held: from here on foreign code may take them out of their list.
std::vector<Ref> held(const Markers& markers, std::uint32_t bits);

// The same as a new list.
Ref markers_of(const Markers& markers, std::uint32_t bits);

}  // namespace quorin::columns
