// MD5 digests compared with known ones, and a digest as a decimal number.
#include "core/text/digest.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "harness.hpp"
#include "stored_text.hpp"

namespace quorin::tests {
namespace {

using core::Digest;

std::string hexadecimal(const Digest& digest) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

void expect(std::string_view expected, const std::u32string& text, const std::vector<Stored>& storages) {
    for (const Stored stored : storages) {
        const StoredText same_text(text, stored);
        Digest digest{};
        const bool done = core::digest_text(same_text.view(), digest);
        check(done && hexadecimal(digest) == expected,
              "digest " + hexadecimal(digest) + " in storage " + std::to_string(static_cast<int>(stored)));
    }
}

void expect_ascii(std::string_view expected, const std::string& text) {
    expect(expected, {text.begin(), text.end()}, {every_storage.begin(), every_storage.end()});
}

// The examples in the definition of MD5, and texts around the lengths that need another block.
void known_digests() {
    expect_ascii("d41d8cd98f00b204e9800998ecf8427e", "");
    expect_ascii("0cc175b9c0f1b6a831c399e269772661", "a");
    expect_ascii("900150983cd24fb0d6963f7d28e17f72", "abc");
    expect_ascii("f96b697d7cb7938d525a2f31aaf161d0", "message digest");
    expect_ascii("c3fcd3d76192e4007dfb496cca67e13b", "abcdefghijklmnopqrstuvwxyz");
    expect_ascii("57edf4a22be3c955ac49da2e2107b67a",
                 "12345678901234567890123456789012345678901234567890123456789012345678901234567890");
    expect_ascii("61ea0974c662328da964d977a8253873", std::string(54, 'x'));
    expect_ascii("04364420e25c512fd958a70738aa8f72", std::string(55, 'x'));
    expect_ascii("668a72d5ba17f08e62dabcafad6db14b", std::string(56, 'x'));
    expect_ascii("693037871c4a9d3d8685018905cb530a", std::string(57, 'x'));
    expect_ascii("7dc2ca208106a2f703567bdff99d8981", std::string(63, 'x'));
    expect_ascii("c1bb4f81d892b2d57947682aeb252456", std::string(64, 'x'));
    expect_ascii("1bc932052302d074bdec39795fe00cf6", std::string(65, 'x'));
    expect_ascii("ab347a5f68c8a443cfcddc633f12c24f", std::string(119, 'x'));
    expect_ascii("fb98667f98096de92620b64f46e1c5b5", std::string(120, 'x'));
    expect_ascii("d69cb61a6ee87200676eb0d4b90edbcb", std::string(128, 'x'));
    expect_ascii("398533d48111e9f664b1f64cb10c4b63", std::string(1000, 'x'));
}

void other_scripts() {
    expect("66ddcd97cfdeabb2f6fb8a999b4bc76f", U"\u00e9",
           {Stored::one_byte, Stored::two_bytes, Stored::four_bytes, Stored::utf8});
    expect("c6a7d19794bee19875d8b15467e76384", U"\u00e9\u6f22\u0661",
           {Stored::two_bytes, Stored::four_bytes, Stored::utf8});
    expect("70a119b81ab8c7b1b6def72df4a66b51", U"\U0001d7d8\uffff\u0800\u07ff\U0010ffff",
           {Stored::four_bytes, Stored::utf8});
    expect("d1a057ec1d420f49983d61d5d8c7eef6", std::u32string(40, U'\u00ff'),
           {Stored::one_byte, Stored::two_bytes, Stored::four_bytes, Stored::utf8});
}

void not_encodable() {
    for (const char32_t c : {char32_t{0xd800}, char32_t{0xdfff}, char32_t{0x110000}, char32_t{0xffffffff}}) {
        const StoredText text({U'a', c}, Stored::four_bytes);
        Digest digest{};
        check(!core::digest_text(text.view(), digest), "a digest of what has no bytes");
    }
}

std::string decimal(const Digest& digest) {
    std::array<char, core::most_decimal_digits> digits{};
    return {digits.data(), core::write_decimal(digest, digits)};
}

void decimal_digits() {
    Digest digest{};
    check(decimal(digest) == "0", "zero");
    digest[15] = 255;
    check(decimal(digest) == "255", "255");
    digest[14] = 1;
    check(decimal(digest) == "511", "511");
    digest.fill(255);
    check(decimal(digest) == "340282366920938463463374607431768211455", "2 ** 128 - 1");
}

const Test known{"known digests", known_digests};
const Test scripts{"digests of texts of other scripts", other_scripts};
const Test refused{"texts without a digest", not_encodable};
const Test numbers{"digests as decimal numbers", decimal_digits};

}  // namespace
}  // namespace quorin::tests
