#include "engine/connect/accounts_cipher.h"

#include <utility>

namespace lomarin {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

const CipherKey& accountCipherKey() {
  static constexpr CipherKey key{0x4c, 0x6f, 0x6d, 0x61, 0x72, 0x69, 0x6e, 0x2d,
                                 0x9e, 0x37, 0x79, 0xb9, 0x7f, 0x4a, 0x7c, 0x15};
  return key;
}

std::string rc4(std::string_view data, const std::uint8_t* key, std::size_t keyLength) {
  std::array<std::uint8_t, 256> s{};
  for (int i = 0; i < 256; ++i) s[i] = static_cast<std::uint8_t>(i);
  std::uint8_t j = 0;
  for (int i = 0; i < 256; ++i) {
    j = static_cast<std::uint8_t>(j + s[i] + key[i % keyLength]);
    std::swap(s[i], s[j]);
  }
  std::string out(data.size(), '\0');
  std::uint8_t i = 0;
  j = 0;
  for (std::size_t n = 0; n < data.size(); ++n) {
    i = static_cast<std::uint8_t>(i + 1);
    j = static_cast<std::uint8_t>(j + s[i]);
    std::swap(s[i], s[j]);
    const std::uint8_t k = s[static_cast<std::uint8_t>(s[i] + s[j])];
    out[n] = static_cast<char>(static_cast<std::uint8_t>(data[n]) ^ k);
  }
  return out;
}

bool looksEnciphered(std::string_view stored) {
  if (stored.size() % 2 != 0) return false;
  for (char c : stored)
    if (hexValue(c) < 0) return false;
  return true;
}

std::string encipher(std::string_view plain, const CipherKey& key) {
  const std::string bytes = rc4(plain, key.data(), key.size());
  std::string text;
  text.reserve(bytes.size() * 2);
  for (unsigned char c : bytes) {
    text += kHexDigits[c >> 4];
    text += kHexDigits[c & 0x0f];
  }
  return text;
}

std::string decipher(std::string_view stored, const CipherKey& key) {
  if (!looksEnciphered(stored)) return std::string(stored);
  std::string bytes(stored.size() / 2, '\0');
  for (std::size_t n = 0; n < bytes.size(); ++n)
    bytes[n] = static_cast<char>(hexValue(stored[2 * n]) * 16 + hexValue(stored[2 * n + 1]));
  return rc4(bytes, key.data(), key.size());
}

}  // namespace lomarin
