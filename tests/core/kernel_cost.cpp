// Usage: kernel_cost KERNEL ROUNDS
//
// Runs a kernel ROUNDS times over a generated column, which is the same on every machine. The cost of a round is the
// difference between the instructions of two rounds and of one. Without arguments: prints the number of rows and the
// names of the kernels, one a line.
#include <algorithm>
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
#include <type_traits>
#include <vector>

#include "core/cells/dictionary.hpp"
#include "core/cells/fixed_width.hpp"
#include "core/cells/utf8_offsets.hpp"
#include "core/cells/utf8_views.hpp"
#include "core/distinct/key_order.hpp"
#include "core/distinct/number_runs.hpp"
#include "core/distinct/number_table.hpp"
#include "core/distinct/text_order.hpp"
#include "core/gather/least_distinct.hpp"
#include "core/gather/null_columns.hpp"
#include "core/gather/number_facts.hpp"
#include "core/gather/text_facts.hpp"
#include "core/gather/within_limits.hpp"
#include "core/text/digest.hpp"
#include "core/text/float_text.hpp"
#include "core/text/label_text.hpp"
#include "core/text/number_value.hpp"

namespace {

using namespace quorin::core;

constexpr std::size_t rows = 20000;

// The most distinct plain texts below the marker that ends the scan; gather_below() gives up beyond.
constexpr std::size_t most_plain = 16;

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
        text = {eight_bytes(end - 8), object->length};
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

std::uint64_t random_bits = 1;

// Returns the same numbers on every machine; the distributions of the standard library do not.
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

constexpr CharacterTables script{[](std::uint32_t) { return false; }, [](std::uint32_t) { return -1; }};

ReferenceTexts markers() {
    ReferenceTexts set;
    for (const char* marker : {"?", "", "-"}) set.add({marker, std::strlen(marker), 1});
    return set;
}

// The sum of the kernels' results, which is printed, so that the compiler does not remove the kernels.
std::size_t total = 0;

template <class Cells>
void classify_column(const Cells& cells) {
    const ReferenceTexts set = markers();
    TextFacts facts;
    if (gather_facts(cells, set, script, facts) == Walk::gave_up) std::abort();
    total += facts.references + (facts.integers ? 1U : 0U) + (facts.reals ? 1U : 0U);
    if (!facts.lone_may_be_above) return;
    Ordered least_number;
    Ordered end_marker;
    find_end_marker(cells, set, script, least_number, end_marker);
    if (!end_marker.found) return;
    TextFacts below;
    std::vector<Ordered> plain;
    if (gather_below(cells, set, script, end_marker.text, most_plain, below, plain) == Walk::gave_up) std::abort();
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
    const FixedWidthText column(reinterpret_cast<const char*>(characters.data()), width, rows, longest);
    for (std::size_t round = 0; round < rounds; ++round) classify_column(column);
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

template <class Make>
void classify_offsets(Make make, std::size_t rounds) {
    const ArrowTexts texts(column_of(make));
    for (std::size_t round = 0; round < rounds; ++round) classify_column(texts.with_offsets());
}

template <class Make>
void classify_views(Make make, std::size_t rounds) {
    const ArrowTexts texts(column_of(make));
    for (std::size_t round = 0; round < rounds; ++round) classify_column(texts.with_views());
}

template <class Make>
void classify_dictionary(Make make, std::size_t rounds) {
    const ArrowTexts texts(column_of(make));
    std::vector<std::int32_t> indices(rows);
    for (std::int32_t& index : indices) index = static_cast<std::int32_t>(random_below(rows));
    const std::vector<std::uint8_t> validity(rows / 8 + 1, 0xff);
    using Cells = DictionaryCells<std::int32_t, Utf8Offsets<std::int32_t>>;
    const Cells cells(indices.data(), validity.data(), 0, rows, texts.with_offsets());
    for (std::size_t round = 0; round < rounds; ++round) classify_column(cells);
}

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

// With the baseline instructions: the others are not available on every machine.
template <class Float, class Make>
void gather_floats(Make make, std::size_t rounds) {
    const std::vector<Float> numbers = numbers_of<Float>(make);
    for (std::size_t round = 0; round < rounds; ++round) {
        const NumberFacts facts = gather_numbers<Float>(memory_of(numbers), Instructions::baseline);
        total += facts.fractions ? 1U : 0U;
    }
}

double whole() {
    return static_cast<double>(random_below(1000000));
}

double whole_or_missing() {
    return random_below(10) == 0 ? std::numeric_limits<double>::quiet_NaN() : whole();
}

double eighths() {
    return whole() / 8;
}

void find_members(std::size_t rounds) {
    const ObjectColumn column(column_of(word));
    const ReferenceTexts set = markers();
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t row = 0; row < rows; ++row) {
            column.prefetch(row + prefetch_distance);
            TextView text{};
            if (column.read(row, text) == Cell::text) total += set.find(text);
        }
    }
}

// The default list of pandas.read_csv, followed by generated texts.
std::string reference_text(std::size_t i) {
    constexpr std::array<std::string_view, 19> texts{
        "",     "#N/A", "#N/A N/A", "#NA",  "-1.#IND", "-1.#QNAN", "-NaN", "-nan", "1.#IND", "1.#QNAN",
        "<NA>", "N/A",  "NA",       "NULL", "NaN",     "None",     "n/a",  "nan",  "null"};
    return i < texts.size() ? std::string{texts[i]} : "missing " + std::to_string(i);
}

// One row of twenty holds a reference, the others words.
void find_in_list(std::size_t references, std::size_t rounds) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < references; ++i) texts.push_back(reference_text(i));
    ReferenceTexts set;
    for (const std::string& text : texts) set.add({text.data(), text.size(), 1});
    const ObjectColumn column(
        column_of([&] { return random_below(20) == 0 ? texts[random_below(references)] : word(); }));
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

void find_least_distinct(std::size_t rounds) {
    const ObjectColumn column(column_of(word));
    const ReferenceTexts set = markers();
    for (std::size_t round = 0; round < rounds; ++round) {
        std::vector<KeyedText> least;
        bool nulls = false;
        if (least_distinct(column, set, 50, least, nulls)) total += least.size();
    }
}

// Calls `use` with each text of a column, in each round.
template <class Make, class Use>
void with_texts(Make make, std::size_t rounds, Use use) {
    const ObjectColumn column(column_of(make));
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t row = 0; row < rows; ++row) {
            TextView text{};
            if (column.read(row, text) == Cell::text) use(text);
        }
    }
}

void compress_texts(std::size_t rounds) {
    with_texts(word, rounds, [](TextView text) {
        Digest digest{};
        std::array<char, most_decimal_digits> digits{};
        if (digest_text(text, digest)) total += write_decimal(digest, digits);
    });
}

void look_at_labels(std::size_t rounds) {
    with_texts([] { return word() + ' ' + word(); }, rounds,
               [](TextView text) {
                   std::array<char, 32> label{};
                   const std::size_t left = remove_white_space(text, script, label.data());
                   const TextView squeezed{label.data(), left, 1};
                   total += left + (is_encodable(squeezed) && is_alphanumeric(squeezed, script) ? 1U : 0U);
               });
}

void read_floats(std::size_t rounds) {
    with_texts(float_text, rounds, [](TextView text) {
        double value = 0;
        if (value_of_number(text, value)) total += value < 0.5 ? 1U : 0U;
    });
}

void write_floats(std::size_t rounds) {
    const std::vector<double> numbers = numbers_of<double>(eighths);
    FloatText text{};
    for (std::size_t round = 0; round < rounds; ++round) {
        for (const double number : numbers) total += write_float(number, text);
    }
}

void convert_flags(std::size_t rounds) {
    const std::vector<char> flags = numbers_of<char>([] { return random_below(2); });
    std::vector<double> floats(rows);
    for (std::size_t round = 0; round < rounds; ++round) {
        write_flags(memory_of(flags), floats.data());
        total += floats.back() != 0 ? 1U : 0U;
    }
}

void leave_out_nulls(std::size_t rounds) {
    const std::vector<double> numbers = numbers_of<double>(whole_or_missing);
    std::vector<char> mask(rows);
    std::vector<double> kept(rows);
    for (std::size_t round = 0; round < rounds; ++round) {
        const std::size_t left = rows - mark_nulls<double>(memory_of(numbers), mask.data());
        copy_kept<double>(memory_of(numbers), mask.data(), kept.data(), left);
        total += left + (kept.front() < 0.5 ? 1U : 0U);
    }
}

void find_runs(std::size_t rounds) {
    std::vector<double> numbers = numbers_of<double>([] { return random_below(2000); });
    std::sort(numbers.begin(), numbers.end());
    std::vector<double> values(rows);
    std::vector<std::ptrdiff_t> counts(rows);
    for (std::size_t round = 0; round < rounds; ++round) {
        const std::size_t runs = count_runs(numbers.data(), rows);
        write_runs(numbers.data(), rows, runs, values.data(), counts.data());
        total += runs + static_cast<std::size_t>(counts.front());
    }
}

void sort_numbers(std::size_t rounds) {
    std::vector<Keyed> entries;
    for (const double number : numbers_of<double>(eighths)) {
        entries.push_back({key_of_real(number), static_cast<std::uint32_t>(entries.size())});
    }
    for (std::size_t round = 0; round < rounds; ++round) {
        std::vector<Keyed> sorted = entries;
        sort_by_key(sorted);
        total += sorted.front().number;
    }
}

void find_distinct_numbers(std::size_t rounds) {
    const std::vector<double> numbers = numbers_of<double>([] { return random_below(2000); });
    for (std::size_t round = 0; round < rounds; ++round) {
        NumberTable table;
        std::uint32_t distinct = 0;
        for (const double number : numbers) {
            if (table.find_or_add(key_of(number), distinct) == distinct) ++distinct;
        }
        total += distinct;
    }
}

// One column holds nulls, so each block is tested as a whole and then once for each of the other columns.
void find_null_columns(std::size_t rounds) {
    constexpr std::size_t columns = 10;
    std::vector<double> numbers = numbers_of<double>(whole);
    for (std::size_t cell = 0; cell < rows; cell += columns) numbers[cell] = std::numeric_limits<double>::quiet_NaN();
    const StridedMemory first{memory_of(numbers).data, columns * sizeof(double), rows / columns};
    const Table table{first, columns, sizeof(double)};
    for (std::size_t round = 0; round < rounds; ++round) {
        total += null_columns<double>(table, false, Instructions::baseline).front() ? 1U : 0U;
    }
}

void compare_with_ordinary(std::size_t rounds) {
    const std::vector<double> numbers = numbers_of<double>(whole_or_missing);
    for (std::size_t round = 0; round < rounds; ++round) {
        total += all_ordinary<double>(memory_of(numbers), {1e-300, 1e15}) ? 1U : 0U;
    }
}

void find_signalling_nan(std::size_t rounds) {
    const std::vector<double> numbers = numbers_of<double>(whole_or_missing);
    for (std::size_t round = 0; round < rounds; ++round) {
        total += any_signalling_nan<double>(memory_of(numbers), Instructions::baseline) ? 1U : 0U;
    }
}

void compare_with_limits(std::size_t rounds) {
    const std::vector<double> numbers = numbers_of<double>(whole_or_missing);
    const Limits limits{500000, 600000, -1, 1000000};
    for (std::size_t round = 0; round < rounds; ++round) {
        total += all_within<double>(memory_of(numbers), 1.0, limits) ? 1U : 0U;
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
    Kernel{"membership in 4", [](std::size_t rounds) { find_in_list(4, rounds); }},
    Kernel{"membership in 16", [](std::size_t rounds) { find_in_list(16, rounds); }},
    Kernel{"membership in 19", [](std::size_t rounds) { find_in_list(19, rounds); }},
    Kernel{"membership in 64", [](std::size_t rounds) { find_in_list(64, rounds); }},
    Kernel{"UTF-8 offsets: words", [](std::size_t rounds) { classify_offsets(word, rounds); }},
    Kernel{"UTF-8 offsets: integer text", [](std::size_t rounds) { classify_offsets(integer_text, rounds); }},
    Kernel{"UTF-8 offsets: float text", [](std::size_t rounds) { classify_offsets(float_text, rounds); }},
    Kernel{"UTF-8 views: words", [](std::size_t rounds) { classify_views(word, rounds); }},
    Kernel{"UTF-8 views: integer text", [](std::size_t rounds) { classify_views(integer_text, rounds); }},
    Kernel{"UTF-8 views: float text", [](std::size_t rounds) { classify_views(float_text, rounds); }},
    Kernel{"dictionary: words", [](std::size_t rounds) { classify_dictionary(word, rounds); }},
    Kernel{"dictionary: integer text", [](std::size_t rounds) { classify_dictionary(integer_text, rounds); }},
    Kernel{"dictionary: float text", [](std::size_t rounds) { classify_dictionary(float_text, rounds); }},
    Kernel{"few distinct", [](std::size_t rounds) { find_distinct(10, rounds); }},
    Kernel{"some distinct", [](std::size_t rounds) { find_distinct(2000, rounds); }},
    Kernel{"all distinct", [](std::size_t rounds) { find_distinct(rows, rounds); }},
    Kernel{"float64 with fractions", [](std::size_t rounds) { gather_floats<double>(eighths, rounds); }},
    Kernel{"float64 whole", [](std::size_t rounds) { gather_floats<double>(whole, rounds); }},
    Kernel{"float64 whole or missing", [](std::size_t rounds) { gather_floats<double>(whole_or_missing, rounds); }},
    Kernel{"float32 whole or missing", [](std::size_t rounds) { gather_floats<float>(whole_or_missing, rounds); }},
    Kernel{"flags to floats", convert_flags},
    Kernel{"digests of words", compress_texts},
    Kernel{"labels", look_at_labels},
    Kernel{"floats to text", write_floats},
    Kernel{"text to floats", read_floats},
    Kernel{"numbers without nulls", leave_out_nulls},
    Kernel{"runs of numbers", find_runs},
    Kernel{"numbers in order", sort_numbers},
    Kernel{"distinct numbers", find_distinct_numbers},
    Kernel{"columns with nulls", find_null_columns},
    Kernel{"signalling nan", find_signalling_nan},
    Kernel{"ordinary numbers", compare_with_ordinary},
    Kernel{"numbers within limits", compare_with_limits},
    Kernel{"least distinct", find_least_distinct},
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
