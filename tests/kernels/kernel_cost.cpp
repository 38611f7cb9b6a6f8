// Runs one kernel so many times over a generated column, the same on every machine: kernel_cost KERNEL ROUNDS. Who
// counts the instructions of one round and of two knows what one round takes, without the making of the column. Without
// arguments it prints the rows of a column and the names of the kernels, one a line.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "kernels/fixed_text.hpp"
#include "kernels/number_facts.hpp"
#include "kernels/text_facts.hpp"
#include "kernels/text_order.hpp"

namespace {

using namespace quorin::kernels;

constexpr std::size_t rows = 20000;

// Cells as the interpreter keeps them: pointers to objects of a header and, behind it, the characters of a text.
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
        text = {eight_bytes(end - 8), object->length};
        return true;
    }
    Cell read(std::size_t row, TextView& text) const noexcept {
        const Object* object = objects_[row];
        if (object->type != &text_type) return object->type == &null_type ? Cell::null : Cell::other;
        if (object->state == 0) return Cell::other;
        text = {object + 1, object->length, static_cast<int>(object->state), true};
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

std::uint64_t random_bits = 1;

// The same on every machine, which distributions of the standard library are not.
std::size_t random_below(std::size_t limit) {
    random_bits = random_bits * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::size_t>(random_bits >> 33U) % limit;
}

std::string word() {
    std::string made(4 + random_below(9), ' ');
    for (char& c : made) c = static_cast<char>('a' + random_below(26));
    return made;
}

std::string integer_text() {
    return std::to_string(random_below(1000000));
}

std::string float_text() {
    return "0." + std::to_string(random_below(10000));
}

std::string number_or_tilde() {
    return random_below(10) == 0 ? "~" : integer_text();
}

std::string number_or_star() {
    return random_below(10) == 0 ? "*" : integer_text();
}

// A tenth of the cells are missing, in three ways.
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

constexpr Script script{[](std::uint32_t) { return false; }, [](std::uint32_t) { return -1; }};

MarkerSet markers() {
    MarkerSet set;
    for (const char* marker : {"?", "", "-"}) set.add({marker, std::strlen(marker), 1});
    return set;
}

// What a kernel found, so that no compiler takes it for useless.
std::size_t total = 0;

template <class Cells>
void classify_column(const Cells& cells) {
    const MarkerSet set = markers();
    TextFacts facts;
    gather_facts(cells, set, script, facts);
    total += facts.markers + (facts.integers ? 1U : 0U) + (facts.reals ? 1U : 0U);
    if (!facts.lone_may_be_above) return;
    Ordered least_number;
    Ordered end_marker;
    find_end_marker(cells, set, script, least_number, end_marker);
    if (!end_marker.found) return;
    TextFacts below;
    std::vector<Ordered> plain;
    gather_below(cells, set, script, end_marker.text, most_markers, below, plain);
    total += least_number.row + plain.size();
}

template <class Make>
void classify_texts(Make make, std::size_t rounds) {
    const ObjectColumn column(column_of(make));
    for (std::size_t round = 0; round < rounds; ++round) classify_column(column);
}

template <class Make>
void classify_fixed_texts(Make make, std::size_t longest, std::size_t rounds) {
    std::vector<std::uint32_t> characters(rows * longest);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::string text = random_below(20) == 0 ? "?" : make();
        for (std::size_t i = 0; i < text.size(); ++i)
            characters[row * longest + i] = static_cast<std::uint8_t>(text[i]);
    }
    const auto width = static_cast<std::ptrdiff_t>(longest * sizeof(std::uint32_t));
    const FixedText column(reinterpret_cast<const char*>(characters.data()), width, rows, longest);
    for (std::size_t round = 0; round < rounds; ++round) classify_column(column);
}

// With the instructions that every processor has: the others would count differently from machine to machine.
template <class Make>
void gather_floats(Make make, std::size_t rounds) {
    std::vector<double> numbers(rows);
    for (double& number : numbers) number = make();
    for (std::size_t round = 0; round < rounds; ++round) {
        const NumberFacts facts =
            gather_float64(reinterpret_cast<const char*>(numbers.data()), sizeof(double), rows, Instructions::baseline);
        total += facts.fractions ? 1U : 0U;
    }
}

double whole() {
    return static_cast<double>(random_below(1000000));
}

double whole_or_missing() {
    return random_below(10) == 0 ? std::numeric_limits<double>::quiet_NaN() : whole();
}

void find_members(std::size_t rounds) {
    const ObjectColumn column(column_of(word));
    const MarkerSet set = markers();
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t row = 0; row < rows; ++row) {
            column.prefetch(row + prefetch_distance);
            TextView text{};
            if (column.read(row, text) == Cell::text) total += set.find(text);
        }
    }
}

void find_distinct(std::size_t distinct, std::size_t rounds) {
    std::vector<std::string> pool(distinct);
    for (std::string& text : pool) text = word();
    std::vector<std::string> texts(rows);
    for (std::size_t row = 0; row < rows; ++row) texts[row] = pool[distinct == rows ? row : random_below(distinct)];
    const ObjectColumn column(texts);
    for (std::size_t round = 0; round < rounds; ++round) {
        TextTable table(rows);
        add_all(table, column);
        total += ascending(table.entries()).front();
    }
}

struct Kernel {
    std::string_view name;
    void (*run)(std::size_t rounds);
};

const std::array kernels{
    Kernel{"words", [](std::size_t rounds) { classify_texts(word, rounds); }},
    Kernel{"integer text", [](std::size_t rounds) { classify_texts(integer_text, rounds); }},
    Kernel{"float text", [](std::size_t rounds) { classify_texts(float_text, rounds); }},
    Kernel{"lone text below numbers", [](std::size_t rounds) { classify_texts(number_or_star, rounds); }},
    Kernel{"lone text above numbers", [](std::size_t rounds) { classify_texts(number_or_tilde, rounds); }},
    Kernel{"fixed-width words", [](std::size_t rounds) { classify_fixed_texts(word, 12, rounds); }},
    Kernel{"fixed-width integer text", [](std::size_t rounds) { classify_fixed_texts(integer_text, 7, rounds); }},
    Kernel{"membership", find_members},
    Kernel{"few distinct", [](std::size_t rounds) { find_distinct(10, rounds); }},
    Kernel{"some distinct", [](std::size_t rounds) { find_distinct(2000, rounds); }},
    Kernel{"all distinct", [](std::size_t rounds) { find_distinct(rows, rounds); }},
    Kernel{"float64 with fractions", [](std::size_t rounds) { gather_floats([] { return whole() / 8; }, rounds); }},
    Kernel{"float64 whole", [](std::size_t rounds) { gather_floats(whole, rounds); }},
    Kernel{"float64 whole or missing", [](std::size_t rounds) { gather_floats(whole_or_missing, rounds); }},
};

int run(std::string_view name, std::size_t rounds) {
    for (const Kernel& kernel : kernels) {
        if (kernel.name != name) continue;
        kernel.run(rounds);
        std::cout << total << '\n';
        return 0;
    }
    std::cerr << "no kernel of this name: " << name << '\n';
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3) return run(argv[1], std::strtoul(argv[2], nullptr, 10));
    std::cout << rows << '\n';
    for (const Kernel& kernel : kernels) std::cout << kernel.name << '\n';
    return argc == 1 ? 0 : 1;
}
