// Columns of numpy arrays in memory, for native routes.
#pragma once

#include <bit>
#include <cmath>
#include <optional>

#include "core/cells/cells.hpp"
#include "core/cells/fixed_width.hpp"
#include "core/column.hpp"
#include "core/float_bits.hpp"
#include "core/gather/text_facts.hpp"
#include "python/borrow.hpp"
#include "python/numpy.hpp"

namespace quorin {

using core::Storage;

// A borrowed column of a numpy array: no foreign code may run while this exists. The caller keeps the array alive.
struct ArrayColumn : core::Column {
    PyArrayObject* array;
    [[no_unique_address]] Borrow
        borrow{};  // NOLINT(readability-redundant-member-init): else -Wmissing-field-initializers

    [[nodiscard]] PyObject* object(std::size_t row) const noexcept {
        return *reinterpret_cast<PyObject* const*>(at(row));
    }
    // Whether `before`, taken before foreign code ran, describes the same memory and type.
    [[nodiscard]] bool is_same_memory(const core::Column& before) const noexcept {
        return data == before.data && stride == before.stride && rows == before.rows && storage == before.storage &&
               width == before.width && is_signed == before.is_signed;
    }
};

// The first column of X, an exact array of at least one dimension; nullopt if it is empty, not aligned, byte-swapped or
// of a dtype that native routes do not read.
std::optional<ArrayColumn> first_column(Object X) noexcept;

// The same for an array of shape (n,) or (n, 1), which numpy_flatten_column() flattens to this column; nullopt if X is
// not an exact array or has another shape.
std::optional<ArrayColumn> single_column(Object X) noexcept;

// The same for an array of one dimension only. The second overload also requires the storage.
std::optional<ArrayColumn> flat_column(Object X) noexcept;
std::optional<ArrayColumn> flat_column(Object X, Storage storage) noexcept;

// Whether no two rows share memory, so that a write to one row does not change another.
bool rows_are_disjoint(const ArrayColumn& column) noexcept;

// Whether value is exactly None or a quiet float NaN. A signalling NaN does not count: numpy warns when it is compared.
inline bool is_exact_null(PyObject* value) noexcept {
    if (!PyFloat_CheckExact(value)) return value == Py_None;
    const double number = PyFloat_AS_DOUBLE(value);
    return std::isnan(number) && !core::is_signalling_nan(number);
}

inline bool is_exact_text(PyObject* value) noexcept {
    return value != nullptr && PyUnicode_CheckExact(value);
}

// Elements of an object array, for kernels over texts.
class ObjectCells {
  public:
    explicit ObjectCells(const ArrayColumn& column) noexcept : column_(column) {}
    [[nodiscard]] std::size_t size() const noexcept { return column_.rows; }
    [[nodiscard]] PyObject* object(std::size_t row) const noexcept { return column_.object(row); }
    // Prefetches the cache lines of the header and of the first characters of a compact ASCII text. gcc removes a call
    // of a function that only prefetches, unless it is inlined early.
    [[gnu::always_inline]] void prefetch(std::size_t row) const noexcept {
        if (row >= column_.rows) return;
        const char* object = reinterpret_cast<const char*>(column_.object(row));
        __builtin_prefetch(object);
        __builtin_prefetch(object + sizeof(PyASCIIObject));
    }
    // False for a legacy text before PyUnicode_READY(): its length is still 0.
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t length) const noexcept {
        PyObject* value = column_.object(row);
        if (value == nullptr) return false;
        // The hint keeps the common path of a loop over texts free of taken branches.
        if (!PyUnicode_CheckExact(value)) [[unlikely]]
            return false;
        return static_cast<std::size_t>(reinterpret_cast<const PyASCIIObject*>(value)->length) > length;
    }
    [[nodiscard]] bool glance(std::size_t row, core::ShortText& text) const noexcept {
        PyObject* value = column_.object(row);
        if (value == nullptr || !PyUnicode_CheckExact(value)) return false;
        const auto* header = reinterpret_cast<const PyASCIIObject*>(value);
        const auto length = static_cast<std::size_t>(header->length);
        if (!(header->state.compact & header->state.ascii) || length - 1 >= 8) return false;
        const char* end = reinterpret_cast<const char*>(value) + sizeof(PyASCIIObject) + length;
        text = {core::eight_bytes(end - 8), length};
        return std::endian::native == std::endian::little;
    }
    core::Cell read(std::size_t row, core::TextView& text) const noexcept {
        PyObject* value = column_.object(row);
        if (value != nullptr && PyUnicode_CheckExact(value)) {
            // The characters of a compact text follow its header, which is longer unless all of them are ASCII.
            const auto* header = reinterpret_cast<const PyASCIIObject*>(value);
            if (header->state.compact) {
                const bool ascii = header->state.ascii;
                const char* characters = reinterpret_cast<const char*>(value) +
                                         (ascii ? sizeof(PyASCIIObject) : sizeof(PyCompactUnicodeObject));
                const bool padded = ascii && std::endian::native == std::endian::little;
                text = {characters, static_cast<std::size_t>(header->length), static_cast<int>(header->state.kind),
                        padded ? core::Encoding::padded_ascii : core::Encoding::fixed_width};
                return core::Cell::text;
            }
        } else if (value != nullptr && is_exact_null(value)) {
            return core::Cell::null;
        }
        const std::optional<core::TextView> uncommon = uncommon_text(value);
        if (!uncommon) return core::Cell::other;
        text = *uncommon;
        return core::Cell::text;
    }

  private:
    static std::optional<core::TextView> uncommon_text(PyObject* value) noexcept;
    ArrayColumn column_;
};

// Elements of an array of fixed-width text.
class ArrayTextCells : public core::FixedWidthText {
  public:
    explicit ArrayTextCells(const ArrayColumn& column) noexcept
        : FixedWidthText(column.data, column.stride, column.rows, column.width / sizeof(std::uint32_t)) {}
};

// The view of an exact str; nullopt for a legacy text whose characters are not contiguous before PyUnicode_READY().
inline std::optional<core::TextView> text_view_of(PyObject* text) noexcept {
#if PY_VERSION_HEX < 0x030C0000
    if (!is_ready_text(text)) return std::nullopt;
#endif
    const Characters characters = characters_of(text);
    return core::TextView{characters.data, static_cast<std::size_t>(characters.length), characters.width};
}

extern const core::CharacterTables character_tables;

}  // namespace quorin
