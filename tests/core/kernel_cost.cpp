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
#include "cost_columns.hpp"

namespace {

using namespace quorin::core;
using namespace quorin::cost;

// The most distinct plain texts below the marker that ends the scan; gather_below() gives up beyond.
constexpr std::size_t most_plain = 16;

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

// With the instructions that every processor has: the others would count differently from machine to machine.
template <class Float, class Make>
void gather_floats(Make make, std::size_t rounds) {
    const std::vector<Float> numbers = numbers_of<Float>(make);
    for (std::size_t round = 0; round < rounds; ++round) {
        const NumberFacts facts = gather_numbers<Float>(memory_of(numbers), Instructions::baseline);
        total += facts.fractions ? 1U : 0U;
    }
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
