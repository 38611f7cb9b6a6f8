// Sorting by keys compared with std::sort: few and many entries, keys with common digits, keys of numbers.
#include "core/distinct/key_order.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "harness.hpp"

namespace quorin::tests {
namespace {

using core::Keyed;

void expect_sorted(std::vector<Keyed> entries, const std::string& what) {
    std::vector<Keyed> expected = entries;
    std::sort(expected.begin(), expected.end(), [](const Keyed& left, const Keyed& right) {
        return left.key != right.key ? left.key < right.key : left.number < right.number;
    });
    std::size_t pauses = 0;
    core::sort_by_key(entries, [&] { ++pauses; });
    check(entries.size() < 512 || pauses != 0, what + ": pauses");
    check(std::equal(entries.begin(), entries.end(), expected.begin(), expected.end(),
                     [](const Keyed& left, const Keyed& right) {
                         return left.key == right.key && left.number == right.number;
                     }),
          what);
}

const Test sorts_any_keys{"sorts any keys", [] {
                              std::mt19937_64 random{20240601};
                              const std::array<std::uint64_t, 5> masks = {~std::uint64_t{0}, 0xff, 0xff00ff,
                                                                          0x8000000000000001, 0};
                              for (const std::size_t size : {0U, 1U, 2U, 511U, 512U, 513U, 3000U, 70000U}) {
                                  for (const std::uint64_t mask : masks) {
                                      std::vector<Keyed> entries;
                                      for (std::uint32_t i = 0; i < size; ++i) entries.push_back({random() & mask, i});
                                      expect_sorted(entries, std::to_string(size) + " entries");
                                  }
                              }
                          }};

const Test keys_sort_as_reals_do{
    "keys sort as reals do", [] {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        const std::vector<double> ascending = {-infinity, -1e300, -2.5, -1.0, -1e-320, 0.0,
                                               1e-320,    1.0,    2.5,  1e16, 1e300,   infinity};
        for (const double left : ascending) {
            for (const double right : ascending) {
                check((core::key_of_real(left) < core::key_of_real(right)) == (left < right),
                      std::to_string(left) + " and " + std::to_string(right));
            }
        }
        check(core::key_of_real(0.0) == core::key_of_real(-0.0), "zeros");
    }};

const Test keys_sort_as_whole_numbers_do{
    "keys sort as whole numbers do", [] {
        using Limits = std::numeric_limits<std::int64_t>;
        const std::vector<std::int64_t> ascending = {Limits::min(), -256, -1, 0, 1, 255, 256, Limits::max()};
        for (std::size_t i = 1; i < ascending.size(); ++i) {
            check(core::key_of_whole(ascending[i - 1]) < core::key_of_whole(ascending[i]),
                  std::to_string(ascending[i]));
        }
    }};

}  // namespace
}  // namespace quorin::tests
