#include "core/text/digest.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace quorin::core {

namespace {

__extension__ using Whole = unsigned __int128;

using State = std::array<std::uint32_t, 4>;
constexpr std::size_t block_size = 64;

// floor(2 ** 32 * abs(sin(i + 1)))
constexpr std::array<std::uint32_t, 64> sines{
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr std::array<std::array<int, 4>, 4> rotations{
    {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};

std::uint32_t word_at(const std::uint8_t* bytes) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        std::uint32_t word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
    return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8U | static_cast<std::uint32_t>(bytes[2]) << 16U |
           static_cast<std::uint32_t>(bytes[3]) << 24U;
}

// One of the 64 steps. Step is a template parameter, so that everything except the words is a constant.
template <std::size_t Step>
[[gnu::always_inline]] inline void step(State& state, const std::uint8_t* block) noexcept {
    constexpr std::size_t round = Step / 16;
    constexpr std::array<std::size_t, 4> word_of{Step % 16, (5 * Step + 1) % 16, (3 * Step + 5) % 16, 7 * Step % 16};
    constexpr std::size_t first = (64 - Step) % 4;
    std::uint32_t& a = state[first];
    const std::uint32_t b = state[(first + 1) % 4];
    const std::uint32_t c = state[(first + 2) % 4];
    const std::uint32_t d = state[(first + 3) % 4];
    std::uint32_t mixed = 0;
    if constexpr (round == 0) {
        mixed = d ^ (b & (c ^ d));
    } else if constexpr (round == 1) {
        // The operands have no common bit, so `+` equals `|`; it lets the compiler reassociate the sum below.
        mixed = (c & ~d) + (b & d);
    } else if constexpr (round == 2) {
        mixed = b ^ c ^ d;
    } else {
        mixed = c ^ (b | ~d);
    }
    a += mixed + sines[Step] + word_at(block + 4 * word_of[round]);
    a = std::rotl(a, rotations[round][Step % 4]) + b;
}

template <std::size_t... Steps>
[[gnu::always_inline]] inline void all_steps(State& state, const std::uint8_t* block,
                                             std::index_sequence<Steps...> /*steps*/) noexcept {
    (step<Steps>(state, block), ...);
}

void add_block(State& state, const std::uint8_t* block) noexcept {
    State mixed = state;
    all_steps(mixed, block, std::make_index_sequence<64>{});
    for (std::size_t i = 0; i < state.size(); ++i) state[i] += mixed[i];
}

// Collects bytes in blocks of 64. end() appends a one bit, zeros, and the number of bits in the last eight bytes.
class Blocks {
  public:
    void add(std::uint8_t byte) noexcept {
        block_[filled_++] = byte;
        if (filled_ == block_size) flush();
    }
    void add(const std::uint8_t* bytes, std::size_t size) noexcept {
        while (size != 0) {
            const std::size_t part = std::min(size, block_size - filled_);
            std::memcpy(block_.data() + filled_, bytes, part);
            filled_ += part;
            bytes += part;
            size -= part;
            if (filled_ == block_size) flush();
        }
    }
    Digest end() noexcept {
        const std::uint64_t bits = 8 * (flushed_ + filled_);
        block_[filled_++] = 0x80;
        if (filled_ > block_size - 8) {
            std::memset(block_.data() + filled_, 0, block_size - filled_);
            add_block(state_, block_.data());
            filled_ = 0;
        }
        std::memset(block_.data() + filled_, 0, block_size - 8 - filled_);
        for (unsigned i = 0; i < 8; ++i) block_[block_size - 8 + i] = static_cast<std::uint8_t>(bits >> 8U * i);
        add_block(state_, block_.data());
        Digest digest{};
        for (unsigned i = 0; i < digest.size(); ++i) {
            digest[i] = static_cast<std::uint8_t>(state_[i / 4] >> 8U * (i % 4));
        }
        return digest;
    }

  private:
    void flush() noexcept {
        add_block(state_, block_.data());
        flushed_ += block_size;
        filled_ = 0;
    }
    State state_{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    std::array<std::uint8_t, block_size> block_{};
    std::size_t filled_ = 0;
    std::uint64_t flushed_ = 0;
};

// The UTF-8 continuation byte with bits shift to shift + 5 of c.
std::uint8_t continuation(std::uint32_t c, unsigned shift) noexcept {
    return static_cast<std::uint8_t>(0x80U | (c >> shift & 0x3fU));
}

bool add_character(Blocks& blocks, std::uint32_t c) noexcept {
    if (c < 0x80) {
        blocks.add(static_cast<std::uint8_t>(c));
    } else if (c < 0x800) {
        blocks.add(static_cast<std::uint8_t>(0xc0U | c >> 6U));
        blocks.add(continuation(c, 0));
    } else if (c < 0x10000) {
        if (c >= 0xd800 && c < 0xe000) return false;
        blocks.add(static_cast<std::uint8_t>(0xe0U | c >> 12U));
        blocks.add(continuation(c, 6));
        blocks.add(continuation(c, 0));
    } else if (c < 0x110000) {
        blocks.add(static_cast<std::uint8_t>(0xf0U | c >> 18U));
        blocks.add(continuation(c, 12));
        blocks.add(continuation(c, 6));
        blocks.add(continuation(c, 0));
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool digest_text(TextView text, Digest& digest) noexcept {
    Blocks blocks;
    if (text.is_ascii() || text.is_utf8()) {
        blocks.add(text.bytes(), text.size);
    } else {
        for (std::size_t i = 0; i < text.size; ++i) {
            if (!add_character(blocks, unit(text, i))) return false;
        }
    }
    digest = blocks.end();
    return true;
}

std::size_t write_decimal(const Digest& digest, std::array<char, most_decimal_digits>& digits) noexcept {
    Whole number = 0;
    for (const std::uint8_t byte : digest) number = number << 8U | byte;
    // Splits off 19 digits at a time, which fit in 64 bits: a 128-bit division is much slower.
    constexpr std::size_t at_once = 19;
    constexpr std::uint64_t scale = 10'000'000'000'000'000'000U;
    std::size_t start = digits.size();
    for (; number >= scale; number /= scale) {
        auto part = static_cast<std::uint64_t>(number % scale);
        for (std::size_t i = 0; i < at_once; ++i, part /= 10) digits[--start] = static_cast<char>('0' + part % 10);
    }
    auto first = static_cast<std::uint64_t>(number);
    do {
        digits[--start] = static_cast<char>('0' + first % 10);
        first /= 10;
    } while (first != 0);
    std::copy(digits.begin() + static_cast<std::ptrdiff_t>(start), digits.end(), digits.begin());
    return digits.size() - start;
}

}  // namespace quorin::core
