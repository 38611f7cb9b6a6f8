#include "exportable_utils/transform/compress_labels.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "core/distinct/recent_texts.hpp"
#include "core/text/digest.hpp"
#include "core/text/label_text.hpp"
#include "exportable_utils/references/list_membership.hpp"
#include "exportable_utils/transform/to_text.hpp"
#include "python/inputs/column_source.hpp"
#include "python/inputs/object_slots.hpp"
#include "python/module_names.hpp"
#include "python/native_route.hpp"
#include "python/new_text.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

using core::Digest;
using core::TextView;
using references::References;

enum class Action { keep, squeeze, digest, write_nan };

// Chooses the action for a label.
class Rules {
  public:
    Rules(const References& missing, Object compress_type)
        : missing_(missing),
          squeezes_(equal(compress_type, "string"_py)),
          digests_all_(equal(compress_type, "hash"_py)) {}
    [[nodiscard]] bool digests() const noexcept { return !squeezes_; }
    [[nodiscard]] Action action(TextView text) const noexcept {
        if (references::is_listed(text, missing_)) return digests_all_ ? Action::write_nan : Action::keep;
        if (digests_all_) return Action::digest;
        if (core::is_alphanumeric(text, character_tables)) return Action::keep;
        return squeezes_ ? Action::squeeze : Action::digest;
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

// The texts of the elements of an object array. Owns the texts that it makes of numbers.
class Labels {
  public:
    explicit Labels(const ArrayColumn& column) noexcept : column_(column), cells_(column) {}
    // nullopt if str() of the element may be foreign code, or if its characters cannot be read.
    std::optional<TextView> at(std::size_t row) {
        cells_.prefetch(row + core::prefetch_distance);
        TextView text{};
        if (cells_.read(row, text) == core::Cell::text) return core::without_zeros_at_end(text);
        PyObject* value = column_.object(row);
        Ref made = value == nullptr ? Ref{} : scalar_text_object(value);
        if (!made) return std::nullopt;
        made_.push_back(std::move(made));
        return text_view_of(made_.back().get());
    }

  private:
    ArrayColumn column_;
    ObjectCells cells_;
    std::vector<Ref> made_;
};

// The new object of each row of an object array; empty for a row that is kept.
class CompressedObjects {
  public:
    CompressedObjects(const Rules& rules, std::size_t rows) : rules_(rules), missing_(global("np"_py).attr("nan"_py)) {
        objects_.reserve(rows);
    }

    // Returns false if a label cannot be compressed natively. Equal texts share a result within a block only, because a
    // signal handler may change the column and free the texts.
    bool add(const ArrayColumn& part) {
        Labels labels(part);
        core::RecentTexts<Ref> recent(part.rows);
        for (std::size_t row = 0; row < part.rows; ++row) {
            const std::optional<TextView> text = labels.at(row);
            if (!text) return false;
            const Action action = rules_.action(*text);
            objects_.push_back(compressed(action, *text, recent));
            if (action == Action::digest && !objects_.back()) return false;
        }
        return true;
    }

    // The old objects are kept until nothing is borrowed, because a signal handler may have put any object there.
    void put_into(const ArrayColumn& part, std::size_t first) noexcept {
        for (std::size_t row = 0; row < part.rows; ++row) {
            Ref& object = objects_[first + row];
            if (object) object = replace_object(object_slot(part, row), std::move(object));
        }
    }

    // The same for all rows from `first` on, through X's item assignment, after the memory of X has changed.
    void assign_to(Object X, std::size_t first) const {
        for (std::size_t row = first; row < objects_.size(); ++row) {
            if (objects_[row]) set_item(X, static_cast<Py_ssize_t>(row), objects_[row]);
        }
    }

  private:
    Ref compressed(Action action, TextView text, core::RecentTexts<Ref>& recent) {
        switch (action) {
            case Action::keep:
                return {};
            case Action::write_nan:
                return Ref::share(missing_);
            case Action::squeeze:
                return Ref::share(recent.get(text, [&] { return text_without_white_space(text, room_); }));
            case Action::digest:
                return Ref::share(recent.get(text, [&] { return digest_number(text); }));
        }
        return {};
    }
    const Rules& rules_;
    Ref missing_;
    std::vector<char> room_;
    std::vector<Ref> objects_;
};

// One element of a fixed-width array, four bytes per character.
class FixedElement {
  public:
    FixedElement(const ArrayColumn& column, std::size_t row) noexcept
        : at_(reinterpret_cast<std::uint32_t*>(const_cast<char*>(column.at(row)))),
          length_(column.width / sizeof(std::uint32_t)) {}
    // Truncates the characters to the width of the element.
    void write(const char* characters, std::size_t size) noexcept {
        size = std::min(size, length_);
        for (std::size_t i = 0; i < size; ++i) at_[i] = static_cast<std::uint8_t>(characters[i]);
        end(size);
    }
    void write_digest(TextView text) noexcept {
        Digest digest{};
        core::digest_text(text, digest);
        std::array<char, core::most_decimal_digits> digits{};
        write(digits.data(), core::write_decimal(digest, digits));
    }
    void squeeze(TextView text) noexcept { end(core::remove_white_space(text, character_tables, at_)); }

  private:
    void end(std::size_t size) noexcept { std::memset(at_ + size, 0, (length_ - size) * sizeof(std::uint32_t)); }
    std::uint32_t* at_;
    std::size_t length_;
};

bool all_encodable(const ArrayColumn& part) noexcept {
    const ArrayTextCells cells(part);
    TextView text{};
    for (std::size_t row = 0; row < part.rows; ++row) {
        cells.read(row, text);
        if (!core::is_encodable(text)) return false;
    }
    return true;
}

// Requires all_encodable(part).
void compress_in_place(const ArrayColumn& part, const Rules& rules) noexcept {
    const ArrayTextCells cells(part);
    TextView text{};
    for (std::size_t row = 0; row < part.rows; ++row) {
        cells.read(row, text);
        FixedElement element(part, row);
        switch (rules.action(text)) {
            case Action::keep:
                break;
            case Action::write_nan:
                element.write("nan", 3);
                break;
            case Action::squeeze:
                element.squeeze(text);
                break;
            case Action::digest:
                element.write_digest(text);
                break;
        }
    }
}

// Raises what hashlib.md5() raises, for example in an interpreter that was built without MD5.
void try_digest() {
    const Ref md5 = global("hashlib"_py).attr("md5"_py);
    md5({Ref::take(PyBytes_FromStringAndSize(nullptr, 0))});
}

// One call of the routine, in two passes over the rows. The first pass checks that every label can be compressed
// natively and writes nothing, so it may give up. The second pass writes block by block: if a signal handler raises,
// the rows before are written, as in the interpreter route. It cannot give up, because the interpreter route would
// digest the digests.
class Compression {
  public:
    Compression(Object X, Object misslist, Object compress_type) noexcept
        : X_(X), misslist_(misslist), compress_type_(compress_type) {}

    bool prepare() {
        if (!PyUnicode_CheckExact(compress_type_.get()) || !PyList_CheckExact(misslist_.get())) return false;
        source_ = ColumnSource::flat_writable(X_);
        if (!source_) return false;
        const bool objects = source_->storage() == Storage::objects;
        if (!objects && source_->storage() != Storage::fixed_text) return false;
        missing_ = references::read_references(misslist_);
        if (!missing_) return false;
        rules_.emplace(*missing_, compress_type_);
        if (rules_->digests()) try_digest();
        if (objects) objects_.emplace(*rules_, source_->rows());
        return source_->in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
            const ArrayColumn part = rows_of(column, first, last);
            return objects_ ? objects_->add(part) : all_encodable(part);
        });
    }

    void write() {
        std::size_t done = 0;
        source_->in_blocks([&](const ArrayColumn& column, std::size_t first, std::size_t last) {
            if (PyArray_ISWRITEABLE(column.array) == 0) return false;
            const ArrayColumn part = rows_of(column, first, last);
            if (objects_) {
                objects_->put_into(part, first);
            } else {
                // A signal handler may have changed the texts since the first pass.
                if (first != 0 && !all_encodable(part)) return false;
                compress_in_place(part, *rules_);
            }
            done = last;
            return true;
        });
        if (done != source_->rows()) write_slowly(done);
    }

  private:
    // A signal handler changed X: the other rows are written as the interpreter route writes them.
    void write_slowly(std::size_t first) {
        if (objects_) {
            objects_->assign_to(X_, first);
            return;
        }
        for (auto row = static_cast<Py_ssize_t>(first); row < static_cast<Py_ssize_t>(source_->rows()); ++row) {
            compress_row(X_, row, item(X_, row), misslist_, compress_type_);
        }
    }
    Object X_;
    Object misslist_;
    Object compress_type_;
    std::optional<ColumnSource> source_;
    std::optional<References> missing_;
    std::optional<Rules> rules_;
    std::optional<CompressedObjects> objects_;
};

}  // namespace

Ref native_compress_str_column(Object X, Object misslist, Object compress_type) {
    Compression compression(X, misslist, compress_type);
    const Ref prepared = native_route([&] { return compression.prepare() ? Ref::none() : Ref{}; });
    if (!prepared) return {};
    compression.write();
    return Ref::share(X);
}

}  // namespace quorin::transform
