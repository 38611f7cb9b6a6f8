#include "exportable_utils/references/matching_rows.hpp"

#include <bit>
#include <cmath>
#include <utility>

#include "core/column.hpp"
#include "core/distinct/number_runs.hpp"
#include "core/float_bits.hpp"
#include "core/gather/number_facts.hpp"
#include "python/errors.hpp"

namespace quorin::references {

namespace {

// The bytes of a mask. No other code has a reference to a mask that is made here: foreign code cannot change or move
// its bytes.
std::uint8_t* bytes_of(Object mask) noexcept {
    return reinterpret_cast<std::uint8_t*>(PyArray_BYTES(as_array(mask)));
}

// The references that each row equals, as a code of one byte; 0 if none. Equality divides the references into classes,
// so the references of two rows are either the same or disjoint:
//     bits(row) == classes[codes[row] - 1], for all rows with codes[row] != 0.
class RowCodes {
  public:
    RowCodes() noexcept {}  // NOLINT(*-member-init, *-use-equals-default): see `classes_`
    void write_to(std::uint8_t* codes) noexcept { codes_ = codes; }
    // The rows from `first` on. Use a local object, which the compiler keeps in registers.
    class Block {
      public:
        Block(RowCodes& all, std::size_t first) noexcept : classes_(all.classes_.data()), codes_(all.codes_ + first) {}
        void set(std::size_t row, ReferenceBits bits) noexcept {
            const auto code = static_cast<std::size_t>(std::countr_zero(bits));
            classes_[code] = bits;
            bits_ |= bits;
            codes_[row] = static_cast<std::uint8_t>(code + 1);
            ++marked_;
        }

      private:
        friend class RowCodes;
        ReferenceBits* classes_;
        std::uint8_t* codes_;
        ReferenceBits bits_ = 0;
        std::size_t marked_ = 0;
    };
    void add(const Block& block) noexcept {
        bits_ |= block.bits_;
        marked_ += block.marked_;
    }
    // For codes that were written directly: `nulls` more rows have the code 1, and `bits` is the only class.
    void add_only_class(ReferenceBits bits, std::size_t nulls) noexcept {
        if (nulls == 0) return;
        classes_[0] = bits;
        bits_ = bits;
        marked_ += nulls;
        only_class_ = true;
    }
    [[nodiscard]] std::uint8_t* codes() const noexcept { return codes_; }
    [[nodiscard]] ReferenceBits bits() const noexcept { return bits_; }
    [[nodiscard]] std::size_t marked() const noexcept { return marked_; }
    // Whether all codes are 0 or 1, so that they are a mask.
    [[nodiscard]] bool are_mask() const noexcept {
        return marked_ == 0 || only_class_ || ((bits_ & 1U) != 0 && classes_[0] == bits_);
    }
    // The code of the rows that equal one reference, given by its bit.
    [[nodiscard]] std::uint8_t code_of(ReferenceBits bit) const noexcept {
        if (only_class_) return 1;
        ReferenceBits left = bits_;
        while (true) {
            const auto code = static_cast<std::size_t>(std::countr_zero(left));
            if ((classes_[code] & bit) != 0) return static_cast<std::uint8_t>(code + 1);
            left &= ~classes_[code];
        }
    }

  private:
    std::uint8_t* codes_ = nullptr;
    std::array<ReferenceBits, core::most_references> classes_;  // initialised only for the codes in use
    ReferenceBits bits_ = 0;
    std::size_t marked_ = 0;
    bool only_class_ = false;
};

// The references to compare with. `null_bits` is 0 if nulls do not match.
struct Wanted {
    const References& references;
    ReferenceBits null_bits;
};

// The references that equal an element that is neither a str nor null, such as a numpy scalar. Returns nullopt if that
// is not known.
std::optional<ReferenceBits> bits_of_other(PyObject* value, const Wanted& wanted) noexcept {
    const References& references = wanted.references;
    if (value == nullptr) return std::nullopt;
    const ObjectNumber number = object_number_of(value);
    if (number.type == NumberType::none) {
        if (!is_plain_text(value)) return std::nullopt;
        const std::optional<core::TextView> text = text_view_of(value);
        if (!text) return std::nullopt;
        return references.bits_of_texts(references.texts.find(*text));
    }
    if (std::isnan(number.real)) return wanted.null_bits;
    if (references.numbers.empty()) return 0;
    // numpy rounds large integers when it compares them with a scalar.
    if (number.scalar && number.beyond_exact()) return std::nullopt;
    return references.bits_of_object(number);
}

// A signalling NaN does not count: numpy warns at any comparison with it.
bool is_exact_number(PyObject* value) noexcept {
    if (PyFloat_CheckExact(value)) return !core::is_signalling_nan(PyFloat_AS_DOUBLE(value));
    return PyLong_CheckExact(value);
}

// Each match function calls on_match(row, bits) for the rows that equal a reference, and returns false to give up.

template <class OnMatch>
bool match_objects(const ArrayColumn& column, const Wanted& wanted, OnMatch on_match) {
    const References& references = wanted.references;
    const ObjectCells cells(column);
    const bool numbers = !references.numbers.empty();
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.prefetch(row + core::prefetch_distance);
        core::TextView text{};
        switch (cells.read(row, text)) {
            case core::Cell::text:
                if (const ReferenceBits found = references.texts.find(text); found != 0) {
                    on_match(row, references.bits_of_texts(found));
                }
                break;
            case core::Cell::null:
                if (wanted.null_bits != 0) on_match(row, wanted.null_bits);
                break;
            case core::Cell::other: {
                PyObject* value = column.object(row);
                // Exact numbers equal no text.
                if (!numbers && value != nullptr && is_exact_number(value)) break;
                const std::optional<ReferenceBits> bits = bits_of_other(value, wanted);
                if (!bits) return false;
                if (*bits != 0) on_match(row, *bits);
                break;
            }
        }
    }
    return true;
}

template <class OnMatch>
bool match_fixed_texts(const ArrayColumn& column, const Wanted& wanted, OnMatch on_match) {
    const References& references = wanted.references;
    const ArrayTextCells cells(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (cells.longer_than(row, references.texts.longest())) [[likely]]
            continue;
        core::TextView text{};
        cells.read(row, text);
        if (const ReferenceBits found = references.texts.find(text); found != 0) {
            on_match(row, references.bits_of_texts(found));
        }
    }
    return true;
}

template <class Float, class OnMatch>
bool match_floats(const ArrayColumn& column, const Wanted& wanted, OnMatch on_match) {
    if (wanted.null_bits == 0 && wanted.references.numbers.empty()) return !core::any_signalling_nan<Float>(column);
    for (std::size_t row = 0; row < column.rows; ++row) {
        const Float value = core::load<Float>(column, row);
        ReferenceBits bits = 0;
        if (std::isnan(value)) {
            if (core::is_signalling_nan(value)) return false;
            bits = wanted.null_bits;
        } else {
            bits = wanted.references.bits_of_number(static_cast<double>(value));
        }
        if (bits != 0) on_match(row, bits);
    }
    return true;
}

// Only whole references can equal an integer. They are compared as integers, so that no element is rounded.
template <class Integer, class OnMatch>
bool match_integers(const ArrayColumn& column, const Wanted& wanted, OnMatch on_match) {
    struct Whole {
        long long value;
        ReferenceBits bit;
    };
    core::InplaceVector<Whole, core::most_references> whole_references;
    for (const References::Number& number : wanted.references.numbers) {
        if (!is_whole(number.value)) continue;
        if (std::fabs(number.value) > exact_limit) return false;
        whole_references.push_back({static_cast<long long>(number.value), number.bit});
    }
    if (whole_references.empty()) return true;
    for (std::size_t row = 0; row < column.rows; ++row) {
        const auto value = +core::load<Integer>(column, row);  // promotes a boolean to int
        ReferenceBits bits = 0;
        for (const Whole& whole : whole_references) {
            if (std::cmp_equal(value, whole.value)) bits |= whole.bit;
        }
        if (bits != 0) on_match(row, bits);
    }
    return true;
}

template <class OnMatch>
bool match_rows(const ArrayColumn& column, const Wanted& wanted, OnMatch on_match) {
    if (column.storage == Storage::objects) return match_objects(column, wanted, on_match);
    if (column.storage == Storage::fixed_text) return match_fixed_texts(column, wanted, on_match);
    return core::with_number_type(column, [&](auto type) {
        using Number = decltype(type);
        if constexpr (std::is_floating_point_v<Number>) {
            return match_floats<Number>(column, wanted, on_match);
        } else {
            return match_integers<Number>(column, wanted, on_match);
        }
    });
}

bool is_float(Storage storage) noexcept {
    return storage == Storage::float64 || storage == Storage::float32;
}

// Marks and counts the NaN; returns nullopt if one is signalling. Works in blocks, so that the second test reads from
// the cache.
template <class Float>
std::optional<std::size_t> mark_nulls(const ArrayColumn& column, std::uint8_t* mask) noexcept {
    constexpr std::size_t block_size = 2048;
    std::size_t marked = 0;
    for (std::size_t first = 0; first < column.rows; first += block_size) {
        const core::StridedMemory block = column.part(first, std::min(column.rows, first + block_size));
        const std::size_t nulls = core::mark_nulls<Float>(block, reinterpret_cast<char*>(mask) + first);
        if (nulls != 0 && core::any_signalling_nan<Float>(block)) return std::nullopt;
        marked += nulls;
    }
    return marked;
}

// Writes the codes of a column of floats in which only nulls match.
bool find_null_codes(const ColumnSource& column, ReferenceBits null_bits, RowCodes& codes) {
    return column.in_blocks([&](const ArrayColumn& rows, std::size_t first, std::size_t last) {
        const ArrayColumn block = rows_of(rows, first, last);
        const auto marked = column.storage() == Storage::float64 ? mark_nulls<double>(block, codes.codes() + first)
                                                                 : mark_nulls<float>(block, codes.codes() + first);
        if (!marked) return false;
        codes.add_only_class(null_bits, *marked);
        return true;
    });
}

bool find_row_codes(const ColumnSource& column, const Wanted& wanted, RowCodes& codes) {
    return column.in_blocks([&](const ArrayColumn& rows, std::size_t first, std::size_t last) {
        RowCodes::Block block(codes, first);
        const auto on_match = [&](std::size_t row, ReferenceBits bits) { block.set(row, bits); };
        const bool known = match_rows(rows_of(rows, first, last), wanted, on_match);
        codes.add(block);
        return known;
    });
}

// Returns the array of codes, or an empty Ref to give up.
Ref find_codes(const ColumnSource& column, const Wanted& wanted, RowCodes& codes) {
    const bool nulls_only = is_float(column.storage()) && wanted.references.numbers.empty() && wanted.null_bits != 0;
    Ref array = nulls_only ? new_array(column.rows(), NPY_BOOL) : new_zeros(column.rows(), NPY_BOOL);
    codes.write_to(bytes_of(array));
    const bool done =
        nulls_only ? find_null_codes(column, wanted.null_bits, codes) : find_row_codes(column, wanted, codes);
    return done ? std::move(array) : Ref();
}

void codes_to_mask(const RowCodes& codes, std::size_t rows) {
    if (codes.are_mask()) return;
    in_blocks(rows, [&](std::size_t first, std::size_t last) {
        core::codes_to_marks(codes.codes() + first, last - first);
        return true;
    });
}

// A mask of the rows of one code.
Ref code_mask(const RowCodes& codes, std::size_t rows, std::uint8_t code) {
    Ref mask = new_array(rows, NPY_BOOL);
    in_blocks(rows, [&](std::size_t first, std::size_t last) {
        core::mark_code(codes.codes() + first, last - first, code, bytes_of(mask) + first);
        return true;
    });
    return mask;
}

// Converts the codes in place into the mask of the rows of one code. Returns the number of these rows.
std::size_t keep_code(const RowCodes& codes, std::size_t rows, std::uint8_t code) {
    std::size_t marked = 0;
    in_blocks(rows, [&](std::size_t first, std::size_t last) {
        core::keep_code(codes.codes() + first, last - first, code);
        marked += core::count_marked(reinterpret_cast<const char*>(codes.codes()) + first, last - first);
        return true;
    });
    return marked;
}

}  // namespace

std::optional<Members> find_members(const ColumnSource& column, const References& references, Match match) {
    std::optional<Members> members;
    const ReferenceBits null_bits = match == Match::without_nulls ? 0 : references.null_bits;
    RowCodes codes;
    Ref array = find_codes(column, {references, null_bits}, codes);
    if (!array) return members;
    members.emplace();
    members->bits = codes.bits();
    members->marked = codes.marked();
    if (match == Match::first_only) members->bits = first_bit(codes.bits());
    if (match == Match::first_only && !codes.are_mask()) {
        members->marked = keep_code(codes, column.rows(), codes.code_of(members->bits));
    } else {
        codes_to_mask(codes, column.rows());
    }
    members->mask = std::move(array);
    return members;
}

std::optional<Members> find_nulls(const ColumnSource& column) {
    References null;
    null.null_bits = 1;
    return find_members(column, null);
}

Ref membership_mask(const ColumnSource& column, const References& references, Match match) {
    std::optional<Members> members = find_members(column, references, match);
    return members ? std::move(members->mask) : Ref();
}

std::optional<MatchedRows> matched_rows(const ColumnSource& column, const References& references) {
    std::optional<MatchedRows> rows;
    RowCodes codes;
    Ref array = find_codes(column, {references, references.null_bits}, codes);
    if (!array) return rows;
    rows.emplace();
    rows->bits = codes.bits();
    for (ReferenceBits left = rows->bits; left != 0 && !std::has_single_bit(rows->bits); left &= left - 1) {
        rows->masks.push_back(code_mask(codes, column.rows(), codes.code_of(first_bit(left))));
    }
    codes_to_mask(codes, column.rows());
    if (std::has_single_bit(rows->bits)) rows->masks.push_back(Ref::share(array));
    rows->mask = std::move(array);
    return rows;
}

}  // namespace quorin::references
