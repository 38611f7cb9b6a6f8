// Generated columns for the count of instructions, the same on every machine.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "core/cells/cells.hpp"
#include "core/cells/utf8_offsets.hpp"
#include "core/cells/utf8_views.hpp"
#include "core/column.hpp"

namespace quorin::cost {

using core::Cell;
using core::Encoding;
using core::ShortText;
using core::StridedMemory;
using core::TextView;
using core::Utf8Offsets;
using core::Utf8Views;

constexpr std::size_t rows = 20000;

// A column as the interpreter stores it: pointers to objects, each a header followed by the characters of the text.
struct Object {
    std::uint64_t references;
    const void* type;
    std::uint64_t length;
    std::int64_t hash;
    std::uint64_t state;
    const void* unused;
};

constexpr char text_type = 't';
constexpr char null_type = 'n';

class ObjectColumn {
  public:
    explicit ObjectColumn(const std::vector<std::string>& texts) {
        std::size_t words = 0;
        for (const std::string& text : texts) words += words_of(text);
        memory_.resize(words);
        std::uint64_t* at = memory_.data();
        for (const std::string& text : texts) {
            const bool null = text == null_text;
            const Object header{1, null ? &null_type : &text_type, text.size(), -1, 1, nullptr};
            std::memcpy(at, &header, sizeof header);
            std::memcpy(at + sizeof header / sizeof *at, text.data(), text.size());
            objects_.push_back(reinterpret_cast<const Object*>(at));
            at += words_of(text);
        }
    }
    [[nodiscard]] std::size_t size() const noexcept { return objects_.size(); }
    [[gnu::always_inline]] void prefetch(std::size_t row) const noexcept {
        if (row >= objects_.size()) return;
        const char* object = reinterpret_cast<const char*>(objects_[row]);
        __builtin_prefetch(object);
        __builtin_prefetch(object + sizeof(Object));
    }
    [[nodiscard]] bool longer_than(std::size_t row, std::size_t length) const noexcept {
        return objects_[row]->type == &text_type && objects_[row]->length > length;
    }
    [[nodiscard]] bool glance(std::size_t row, ShortText& text) const noexcept {
        const Object* object = objects_[row];
        if (object->type != &text_type || object->state != 1 || object->length - 1 >= 8) return false;
        const char* end = reinterpret_cast<const char*>(object + 1) + object->length;
        text = {core::eight_bytes(end - 8), object->length};
        return true;
    }
    Cell read(std::size_t row, TextView& text) const noexcept {
        const Object* object = objects_[row];
        if (object->type != &text_type) return object->type == &null_type ? Cell::null : Cell::other;
        if (object->state == 0) return Cell::other;
        text = {object + 1, object->length, static_cast<int>(object->state), Encoding::padded_ascii};
        return Cell::text;
    }
    static constexpr std::string_view null_text{"null"};

  private:
    static std::size_t words_of(const std::string& text) {
        return sizeof(Object) / sizeof(std::uint64_t) + text.size() / sizeof(std::uint64_t) + 1;
    }
    std::vector<std::uint64_t> memory_;
    std::vector<const Object*> objects_;
};

inline std::uint64_t random_bits = 1;

// Returns the same numbers on every machine; the distributions of the standard library do not.
inline std::size_t random_below(std::size_t limit) {
    random_bits = random_bits * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::size_t>(random_bits >> 33U) % limit;
}

inline std::string word() {
    std::string made(4 + random_below(9), ' ');
    for (char& c : made) c = static_cast<char>('a' + random_below(26));
    return made;
}

inline std::string integer_text() {
    return std::to_string(random_below(1000000));
}

inline std::string float_text() {
    return "0." + std::to_string(random_below(10000));
}

inline std::string number_or_tilde() {
    return random_below(10) == 0 ? "~" : integer_text();
}

inline std::string number_or_star() {
    return random_below(10) == 0 ? "*" : integer_text();
}

// A tenth of the cells are missing: "?", the empty text or null.
template <class Make>
std::vector<std::string> column_of(Make make) {
    std::vector<std::string> texts;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t missing = random_below(30);
        texts.push_back(missing == 0   ? "?"
                        : missing == 1 ? ""
                        : missing == 2 ? std::string{ObjectColumn::null_text}
                                       : make());
    }
    return texts;
}

// The texts of ObjectColumn in Arrow's layouts.
struct ArrowTexts {
    explicit ArrowTexts(const std::vector<std::string>& texts) : validity((texts.size() + 7) / 8) {
        offsets.push_back(0);
        for (const std::string& text : texts) {
            const std::size_t row = offsets.size() - 1;
            const bool null = text == ObjectColumn::null_text;
            if (!null) validity[row / 8] = static_cast<std::uint8_t>(validity[row / 8] | 1U << row % 8);
            if (!null) bytes += text;
            const auto start = static_cast<std::size_t>(offsets.back());
            offsets.push_back(static_cast<std::int32_t>(bytes.size()));
            add_view(null ? std::string_view{} : text, start);
        }
        // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): the bytes are complete only now
        buffer = reinterpret_cast<const std::uint8_t*>(bytes.data());
    }
    void add_view(std::string_view text, std::size_t start) {
        std::array<std::uint32_t, 4> view{static_cast<std::uint32_t>(text.size())};
        if (text.size() <= 12) {
            std::memcpy(view.data() + 1, text.data(), text.size());
        } else {
            std::memcpy(view.data() + 1, text.data(), 4);
            view[3] = static_cast<std::uint32_t>(start);
        }
        views.insert(views.end(), view.begin(), view.end());
    }
    [[nodiscard]] Utf8Offsets<std::int32_t> with_offsets() const {
        return {offsets.data(), buffer, validity.data(), 0, offsets.size() - 1};
    }
    [[nodiscard]] Utf8Views with_views() const {
        return {views.data(), &buffer, validity.data(), 0, offsets.size() - 1};
    }
    std::vector<std::int32_t> offsets;
    std::string bytes;
    std::vector<std::uint8_t> validity;
    std::vector<std::uint32_t> views;
    const std::uint8_t* buffer = nullptr;
};

template <class Number, class Make>
std::vector<Number> numbers_of(Make make) {
    std::vector<Number> numbers(rows);
    for (Number& number : numbers) number = static_cast<Number>(make());
    return numbers;
}

template <class Number>
StridedMemory memory_of(const std::vector<Number>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()), sizeof(Number), numbers.size()};
}

inline double whole() {
    return static_cast<double>(random_below(1000000));
}

inline double whole_or_missing() {
    return random_below(10) == 0 ? std::numeric_limits<double>::quiet_NaN() : whole();
}

inline double eighths() {
    return whole() / 8;
}

}  // namespace quorin::cost
