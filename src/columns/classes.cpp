#include "columns/classes.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "columns/membership.hpp"
#include "columns/numbers.hpp"
#include "columns/object_tally.hpp"
#include "interp/errors.hpp"
#include "kernels/number_count.hpp"
#include "kernels/text_order.hpp"

namespace quorin::columns {

namespace {

// Rows that are left out by equality; none where there is no mask.
class LeftOut {
  public:
    explicit LeftOut(Ref mask)
        : mask_(std::move(mask)), marked_(mask_ ? PyArray_BYTES(as_array(mask_)) : nullptr) {}
    [[nodiscard]] bool has(std::size_t row) const noexcept { return marked_ != nullptr && marked_[row] != 0; }

  private:
    Ref mask_;
    const char* marked_;
};

std::optional<std::vector<Distinct>> object_classes(const Column& column, const LeftOut& equal,
                                                    const std::vector<PyObject*>& nulls) {
    ObjectTally tally(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (equal.has(row)) continue;
        if (!nulls.empty() && std::find(nulls.begin(), nulls.end(), column.object(row)) != nulls.end()) continue;
        if (!tally.add(row)) return std::nullopt;
    }
    std::vector<Distinct> classes;
    classes.reserve(tally.entries().size());
    for (const ObjectTally::Entry& entry : tally.entries()) classes.push_back({entry.row, entry.count});
    return classes;
}

std::vector<Distinct> text_classes(const Column& column, const LeftOut& equal) {
    const FixedTextCells cells(column);
    std::vector<Distinct> classes;
    std::vector<kernels::TextView> texts;
    kernels::TextTable table;
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (equal.has(row)) continue;
        kernels::TextView text{};
        cells.read(row, text);
        const auto next = static_cast<std::uint32_t>(texts.size());
        const std::uint32_t found =
            table.find_or_add(text, next, [&](std::uint32_t number) { return texts[number]; });
        if (found == next) {
            texts.push_back(text);
            classes.push_back({row, 0});
        }
        ++classes[found].count;
    }
    return classes;
}

template <class Number>
std::vector<Distinct> number_classes(const Column& column, const LeftOut& equal) {
    std::vector<Distinct> classes;
    kernels::NumberTable table;
    std::uint64_t last_key = 0;
    std::uint32_t last = 0;
    bool any = false;
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (equal.has(row)) continue;
        const Number value = load<Number>(column, row);
        const auto next = static_cast<std::uint32_t>(classes.size());
        std::uint64_t key = 0;
        if constexpr (std::is_floating_point_v<Number>) {
            if (std::isnan(value)) {
                classes.push_back({row, 1});
                continue;
            }
            key = kernels::pattern_of(static_cast<double>(value));
        } else {
            key = static_cast<std::uint64_t>(value);
        }
        // Runs of one value need no search.
        if (!any || key != last_key) {
            last = table.find_or_add(key, next);
            last_key = key;
            any = true;
        }
        if (last == next) classes.push_back({row, 0});
        ++classes[last].count;
    }
    return classes;
}

// Two values, so that counting needs no search. A byte of an array of booleans may be any number but 0 for true.
std::vector<Distinct> boolean_classes(const Column& column, const LeftOut& equal) {
    std::array<Distinct, 2> found{};
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (equal.has(row)) continue;
        Distinct& entry = found[load<std::uint8_t>(column, row) != 0 ? 1 : 0];
        if (entry.count++ == 0) entry.row = row;
    }
    if (found[0].row > found[1].row) std::swap(found[0], found[1]);
    std::vector<Distinct> classes;
    for (const Distinct& entry : found) {
        if (entry.count != 0) classes.push_back(entry);
    }
    return classes;
}

// As the array gives it when it is indexed; the two common types without numpy's detour.
Ref scalar_at(const Column& column, std::size_t row) {
    const int type = PyArray_TYPE(column.array);
    if (type == NPY_DOUBLE) {
        Ref scalar = Ref::take(PyDoubleArrType_Type.tp_alloc(&PyDoubleArrType_Type, 0));
        reinterpret_cast<PyDoubleScalarObject*>(scalar.get())->obval = load<double>(column, row);
        return scalar;
    }
    if (type == NPY_LONG) {
        Ref scalar = Ref::take(PyLongArrType_Type.tp_alloc(&PyLongArrType_Type, 0));
        reinterpret_cast<PyLongScalarObject*>(scalar.get())->obval = load<long>(column, row);
        return scalar;
    }
    auto* data = const_cast<char*>(column.at(row));
    return Ref::take(PyArray_Scalar(data, PyArray_DESCR(column.array), reinterpret_cast<PyObject*>(column.array)));
}

}  // namespace

std::optional<std::vector<Distinct>> classes_of(const Column& column, const Markers& left_out) {
    constexpr std::size_t most_rows = 0x7fffffff;
    if (column.rows > most_rows) return std::nullopt;
    Markers values = left_out;
    values.null_bits = 0;
    std::vector<PyObject*> nulls;
    for (PyObject* value : left_out.objects) {
        if (is_plain_null(value)) nulls.push_back(value);
    }
    Ref mask;
    if (nulls.size() < left_out.objects.size()) {
        std::optional<Ref> marked = membership_mask(column, values);
        if (!marked) return std::nullopt;
        mask = std::move(*marked);
    }
    const LeftOut equal(std::move(mask));
    if (column.storage == Storage::objects) return object_classes(column, equal, nulls);
    if (column.storage == Storage::fixed_text) return text_classes(column, equal);
    if (column.storage == Storage::boolean) return boolean_classes(column, equal);
    std::vector<Distinct> classes;
    const bool counted = with_number_type(column, [&](auto type) {
        classes = number_classes<decltype(type)>(column, equal);
        return true;
    });
    if (!counted) return std::nullopt;
    return classes;
}

std::vector<Ref> elements_of(const Column& column, const std::vector<Distinct>& classes) {
    std::vector<Ref> elements;
    elements.reserve(classes.size());
    for (const Distinct& entry : classes) {
        elements.push_back(column.storage == Storage::objects ? Ref::share(column.object(entry.row))
                                                              : scalar_at(column, entry.row));
    }
    return elements;
}

}  // namespace quorin::columns
