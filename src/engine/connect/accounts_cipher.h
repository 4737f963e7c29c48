#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace lomarin {

using CipherKey = std::array<std::uint8_t, 16>;

// The key stored account passwords are enciphered with. Changing it makes every stored password
// unreadable, so it never changes.
const CipherKey& accountCipherKey();

// RC4 keystream XORed over the text, written as upper-case hex: symmetric, deterministic (the
// same text always gives the same stored value) and printable, so it fits a string value.
// This hides passwords from a casual look at the settings file; it is not protection against
// someone who has the program.
std::string encipher(std::string_view plain, const CipherKey& key = accountCipherKey());

// The inverse of encipher. A text that is not upper-case hex of whole bytes is returned as it
// stands: such a value was stored in clear by an older version.
std::string decipher(std::string_view stored, const CipherKey& key = accountCipherKey());

// True when decipher would read the text as enciphered.
bool looksEnciphered(std::string_view stored);

// The raw stream cipher, exposed for its known-answer tests.
std::string rc4(std::string_view data, const std::uint8_t* key, std::size_t keyLength);

}  // namespace lomarin
