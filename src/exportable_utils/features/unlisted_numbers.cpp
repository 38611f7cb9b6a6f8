#include "exportable_utils/features/unlisted_numbers.hpp"

#include <bit>
#include <cstring>

#include "exportable_utils/references/list_membership.hpp"
#include "python/errors.hpp"

namespace quorin::features {

namespace {

// A visitor for visit_unlisted() that collects the elements that are not in the list. Its functions return false, to
// give up, unless all of them are ints of at most 64 bits or all are floats.
class Kept {
  public:
    explicit Kept(std::size_t rows) { bits_.reserve(rows); }
    [[nodiscard]] NumberType type() const noexcept { return type_; }
    // The bits of the int64 or float64 values.
    [[nodiscard]] const std::vector<std::uint64_t>& bits() const noexcept { return bits_; }

    static bool on_listed(std::size_t /*row*/) noexcept { return true; }
    static bool on_text(std::size_t /*row*/, core::TextView /*text*/) noexcept { return false; }
    bool on_float(std::size_t /*row*/, double value) {
        return keep(NumberType::real, std::bit_cast<std::uint64_t>(value));
    }
    bool on_integer(std::size_t /*row*/, PyObject* value) {
        const ObjectNumber number = object_number_of(value);
        return number.type == NumberType::integer &&
               keep(NumberType::integer, static_cast<std::uint64_t>(number.whole));
    }

  private:
    bool keep(NumberType type, std::uint64_t bits) {
        if (type_ == NumberType::none) type_ = type;
        bits_.push_back(bits);
        return type == type_;
    }
    NumberType type_ = NumberType::none;
    std::vector<std::uint64_t> bits_;
};

}  // namespace

Ref numbers_without(const ColumnSource& column, const references::References& references) {
    Kept kept(column.rows());
    const bool known = column.in_blocks([&](const ArrayColumn& borrowed, std::size_t first, std::size_t last) {
        return references::visit_unlisted(rows_of(borrowed, first, last), references, kept);
    });
    if (!known || kept.bits().empty()) return {};
    static_assert(sizeof(long) == sizeof(std::uint64_t), "numpy makes an array of C's long of Python integers");
    Ref array = new_array(kept.bits().size(), kept.type() == NumberType::real ? NPY_DOUBLE : NPY_LONG);
    std::memcpy(PyArray_BYTES(as_array(array)), kept.bits().data(), kept.bits().size() * sizeof(std::uint64_t));
    return array;
}

}  // namespace quorin::features
