#include "exportable_utils/transform/compression_native.hpp"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "core/distinct/recent_texts.hpp"
#include "core/text/digest.hpp"
#include "core/text/label_text.hpp"
#include "exportable_utils/references/references.hpp"
#include "python/errors.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

using core::Digest;
using core::TextView;
using references::References;

// What happens to a label.
enum class Fate { kept, squeezed, digested, missing };

class Rules {
  public:
    Rules(const References& missing, Object compress_type)
        : missing_(missing),
          squeezes_(equal(compress_type, "string"_py)),
          digests_all_(equal(compress_type, "hash"_py)) {}
    [[nodiscard]] bool digests() const noexcept { return !squeezes_; }
    [[nodiscard]] Fate of(TextView text) const noexcept {
        if (missing_.texts.find(text) != 0) return digests_all_ ? Fate::missing : Fate::kept;
        if (digests_all_) return Fate::digested;
        if (core::is_alphanumeric(text, character_tables)) return Fate::kept;
        return squeezes_ ? Fate::squeezed : Fate::digested;
    }

  private:
    const References& missing_;
    bool squeezes_;
    bool digests_all_;
};

Ref digest_number(TextView text) {
    Digest digest{};
    if (!core::digest_text(text, digest)) return {};
    return Ref::take(whole_from_bytes(digest.data(), digest.size()));
}

// Texts of the elements of an object array. Those of numbers are made here, and live as long as this.
class Labels {
  public:
    explicit Labels(const ArrayColumn& column) noexcept : column_(column), cells_(column) {}
    // Nothing for an element whose str() may be foreign code, and where it fails.
    std::optional<TextView> at(std::size_t row) {
        cells_.prefetch(row + core::prefetch_distance);
        TextView text{};
        if (cells_.read(row, text) == core::Cell::text) return core::without_zeros_at_end(text);
        PyObject* value = column_.object(row);
        if (value == nullptr) return std::nullopt;
        if (!value_has_plain_text(value)) return std::nullopt;
        made_.push_back(Ref::take(PyObject_Str(value)));
        return text_view_of(made_.back().get());
    }

  private:
    static bool value_has_plain_text(PyObject* value) noexcept {
        return value == Py_None || PyFloat_CheckExact(value) || PyLong_CheckExact(value) || PyBool_Check(value);
    }
    ArrayColumn column_;
    ObjectCells cells_;
    std::vector<Ref> made_;
};

Ref compress_objects(const ArrayColumn& column, const Rules& rules) {
    const Ref missing = global("np"_py).attr("nan"_py);
    Labels labels(column);
    core::RecentTexts<Ref> recent(column.rows);
    std::vector<char> room;
    std::vector<Ref> compressed(column.rows);  // empty where the element stays
    for (std::size_t row = 0; row < column.rows; ++row) {
        const std::optional<TextView> text = labels.at(row);
        if (!text) return {};
        switch (rules.of(*text)) {
            case Fate::kept:
                break;
            case Fate::missing:
                compressed[row] = Ref::share(missing);
                break;
            case Fate::squeezed:
                compressed[row] = Ref::share(recent.get(*text, [&] { return text_without_white_space(*text, room); }));
                break;
            case Fate::digested:
                compressed[row] = Ref::share(recent.get(*text, [&] { return digest_number(*text); }));
                if (!compressed[row]) return {};
                break;
        }
    }
    for (std::size_t row = 0; row < column.rows; ++row) {
        if (!compressed[row]) continue;
        auto* place = reinterpret_cast<PyObject**>(const_cast<char*>(column.at(row)));
        compressed[row] = Ref::adopt(std::exchange(*place, compressed[row].give()));
    }
    return Ref::share(reinterpret_cast<PyObject*>(column.array));
}

// One element of a fixed-width array, four bytes a character.
class FixedPlace {
  public:
    FixedPlace(const ArrayColumn& column, std::size_t row) noexcept
        : at_(reinterpret_cast<std::uint32_t*>(const_cast<char*>(column.at(row)))),
          length_(column.width / sizeof(std::uint32_t)) {}
    // What is too long for the element is cut off.
    void write(const char* characters, std::size_t size) noexcept {
        size = std::min(size, length_);
        for (std::size_t i = 0; i < size; ++i) at_[i] = static_cast<std::uint8_t>(characters[i]);
        end(size);
    }
    void squeeze(TextView text) noexcept { end(core::remove_white_space(text, character_tables, at_)); }

  private:
    void end(std::size_t size) noexcept { std::memset(at_ + size, 0, (length_ - size) * sizeof(std::uint32_t)); }
    std::uint32_t* at_;
    std::size_t length_;
};

void write_digest(FixedPlace place, TextView text) noexcept {
    Digest digest{};
    core::digest_text(text, digest);
    std::array<char, core::most_decimal_digits> digits{};
    place.write(digits.data(), core::write_decimal(digest, digits));
}

Ref compress_fixed_texts(const ArrayColumn& column, const Rules& rules) {
    const ArrayTextCells cells(column);
    TextView text{};
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.read(row, text);
        if (!core::is_encodable(text)) return {};
    }
    for (std::size_t row = 0; row < column.rows; ++row) {
        cells.read(row, text);
        FixedPlace place(column, row);
        switch (rules.of(text)) {
            case Fate::kept:
                break;
            case Fate::missing:
                place.write("nan", 3);
                break;
            case Fate::squeezed:
                place.squeeze(text);
                break;
            case Fate::digested:
                write_digest(place, text);
                break;
        }
    }
    return Ref::share(reinterpret_cast<PyObject*>(column.array));
}

// An interpreter that was set up to do without MD5 has to say so itself.
bool allows_digests() {
    const Ref md5 = global("hashlib"_py).attr("md5"_py);
    const Ref empty = Ref::take(PyBytes_FromStringAndSize(nullptr, 0));
    md5({empty});
    return true;
}

}  // namespace

Ref native_compress_str_column(Object X, Object misslist, Object compress_type) {
    if (!lookups_unchanged() || !PyUnicode_CheckExact(compress_type.get())) return {};
    if (!PyList_CheckExact(misslist.get())) return {};
    const std::optional<ArrayColumn> column = flat_column(X);
    if (!column || PyArray_ISWRITEABLE(column->array) == 0 || !rows_are_disjoint(*column)) return {};
    const bool objects = column->storage == Storage::objects;
    if (!objects && column->storage != Storage::fixed_text) return {};
    const std::optional<References> missing = references::read_references(misslist);
    if (!missing) return {};
    return unless_it_fails([&]() -> Ref {
        const Rules rules(*missing, compress_type);
        if (rules.digests() && !allows_digests()) return {};
        return objects ? compress_objects(*column, rules) : compress_fixed_texts(*column, rules);
    });
}

}  // namespace quorin::transform
