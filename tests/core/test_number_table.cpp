// The table of numbers compared with std::unordered_map, at sizes that make it grow several times.
#include "core/distinct/number_table.hpp"

#include <cstddef>
#include <random>
#include <string>
#include <unordered_map>

#include "harness.hpp"

namespace quorin::tests {
namespace {

void expect_as_a_map(std::uint64_t mask, std::uint64_t factor, std::size_t rows) {
    core::NumberTable table;
    std::unordered_map<std::uint64_t, std::uint32_t> expected;
    std::mt19937_64 random{mask};
    std::size_t wrong = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::uint64_t key = (random() & mask) * factor;
        const auto next = static_cast<std::uint32_t>(expected.size());
        const std::uint32_t known = expected.try_emplace(key, next).first->second;
        wrong += static_cast<std::size_t>(table.find_or_add(key, next) != known);
    }
    check(wrong == 0, "mask " + std::to_string(mask) + ", factor " + std::to_string(factor));
}

// Room that is made in steps between two blocks of keys loses none of them.
void room_in_steps() {
    core::NumberTable table;
    constexpr std::size_t block = 1000;
    std::size_t steps = 0;
    for (std::uint32_t next = 0; next < 400 * block;) {
        const std::uint32_t last = next + block;
        while (!table.make_room(block)) ++steps;
        check(table.make_room(block), "room is made once");
        for (; next < last; ++next) check(table.find_or_add(std::uint64_t{next} << 32U, next) == next, "a new key");
    }
    check(steps > 10, "large tables grow in several steps");
    check(table.size() == 400 * block, "number of keys");
    for (std::uint32_t key = 0; key < 400 * block; ++key) {
        check(table.find_or_add(std::uint64_t{key} << 32U, 0) == key, "a known key");
    }
}

const Test room_is_made_in_steps{"room is made in steps", room_in_steps};

const Test numbers_as_a_map{"numbers as a map gives them", [] {
                                constexpr std::size_t rows = 50000;
                                for (const std::uint64_t mask : {0x0ULL, 0x7fULL, 0xffffULL, ~0ULL}) {
                                    for (const std::uint64_t factor : {1ULL, 1ULL << 32U, 1ULL << 52U}) {
                                        expect_as_a_map(mask, factor, rows);
                                    }
                                }
                            }};

}  // namespace
}  // namespace quorin::tests
