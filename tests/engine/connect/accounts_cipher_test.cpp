#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

#include "engine/connect/accounts_cipher.h"

namespace lomarin {
namespace {

std::string hex(const std::string& bytes) {
  static const char digits[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : bytes) {
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out;
}

// Published test vectors of the stream cipher.
TEST(AccountsCipher, Rc4KnownAnswers) {
  const auto run = [](const std::string& key, const std::string& plain) {
    return hex(rc4(plain, reinterpret_cast<const std::uint8_t*>(key.data()), key.size()));
  };
  EXPECT_EQ(run("Key", "Plaintext"), "BBF316E8D940AF0AD3");
  EXPECT_EQ(run("Wiki", "pedia"), "1021BF0420");
  EXPECT_EQ(run("Secret", "Attack at dawn"), "45A01F645FC35B383552544B9BF5");
}

TEST(AccountsCipher, DeterministicPrintableAndReversible) {
  for (const std::string& plain : std::vector<std::string>{"", "x", "secret", "pässwörd \t\"'\\", std::string("a\0b", 3),
                                  std::string(300, 'z')}) {
    const std::string stored = encipher(plain);
    EXPECT_EQ(stored, encipher(plain)) << "same input, same output";
    EXPECT_EQ(stored.size(), plain.size() * 2);
    for (char c : stored) EXPECT_TRUE(std::isxdigit(static_cast<unsigned char>(c))) << stored;
    EXPECT_TRUE(looksEnciphered(stored));
    EXPECT_EQ(decipher(stored), plain);
  }
  EXPECT_NE(encipher("secret"), hex("secret")) << "the text must not stand in clear";
}

TEST(AccountsCipher, KeyMatters) {
  CipherKey other = accountCipherKey();
  other[15] ^= 1;
  EXPECT_NE(encipher("secret", other), encipher("secret"));
  EXPECT_NE(decipher(encipher("secret"), other), "secret");
}

TEST(AccountsCipher, TextThatIsNotCipherTextStandsAsItIs) {
  for (const std::string& old : std::vector<std::string>{"plain pw", "ABC", "abcd", "12G4"}) {
    EXPECT_FALSE(looksEnciphered(old)) << old;
    EXPECT_EQ(decipher(old), old);
  }
}

}  // namespace
}  // namespace lomarin
