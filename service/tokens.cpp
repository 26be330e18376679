#include "service/tokens.h"

#include <array>
#include <bit>
#include <cstdint>
#include <fstream>
#include <random>
#include <stdexcept>

namespace mirvane::service {
namespace {

std::string hexadecimal(std::uint32_t word) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (int shift = 28; shift >= 0; shift -= 4) text += kDigits[word >> shift & 15];
  return text;
}

/// The digits of the cube roots of the first primes, as the standard has them.
constexpr std::array<std::uint32_t, 64> kRound = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

void mix(std::array<std::uint32_t, 8>& state, const unsigned char* block) {
  std::array<std::uint32_t, 64> words{};
  for (std::size_t i = 0; i < 64; ++i) words[i / 4] = words[i / 4] << 8 | block[i];
  for (std::size_t i = 16; i < 64; ++i) {
    const std::uint32_t a = words[i - 15];
    const std::uint32_t b = words[i - 2];
    words[i] = words[i - 16] + words[i - 7] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3) +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10);
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t i = 0; i < 64; ++i) {
    const std::uint32_t first =
        h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g)) + kRound[i] + words[i];
    const std::uint32_t second =
        (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
  }
  const std::array<std::uint32_t, 8> sum = {a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < 8; ++i) state[i] += sum[i];
}

/// Tells nothing by how long it takes.
bool isEqual(const std::string& a, const std::string& b) {
  unsigned difference = a.size() == b.size() ? 0 : 1;
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) difference |= static_cast<unsigned>(a[i] ^ b[i]);
  return difference == 0;
}

}  // namespace

std::string sha256(const std::string& bytes) {
  std::array<std::uint32_t, 8> state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::string padded = bytes + '\x80';
  padded.resize((padded.size() + 8 + 63) / 64 * 64 - 8);
  for (int shift = 56; shift >= 0; shift -= 8) padded += static_cast<char>(std::uint64_t{bytes.size()} * 8 >> shift);
  for (std::size_t i = 0; i < padded.size(); i += 64) {
    mix(state, reinterpret_cast<const unsigned char*>(padded.data()) + i);
  }
  std::string digits;
  for (const std::uint32_t word : state) digits += hexadecimal(word);
  return digits;
}

std::string Tokens::add(const std::string& name) {
  if (hashes_.contains(name)) return {};
  std::random_device random;
  std::string token = "mv_";
  for (int i = 0; i < 8; ++i) token += hexadecimal(random());
  hashes_[name] = sha256(token);
  write();
  return token;
}

bool Tokens::remove(const std::string& name) {
  if (hashes_.erase(name) == 0) return false;
  write();
  return true;
}

std::string Tokens::ownerOf(const std::string& token) {
  std::error_code gone;
  if (std::filesystem::last_write_time(file_, gone) != changed_) read();
  const std::string hash = sha256(token);
  std::string owner;
  for (const auto& [name, known] : hashes_) {
    if (isEqual(hash, known)) owner = name;
  }
  return owner;
}

void Tokens::read() {
  std::error_code gone;
  changed_ = std::filesystem::last_write_time(file_, gone);
  hashes_.clear();
  std::ifstream file(file_);
  for (std::string hash, name; file >> hash && std::getline(file >> std::ws, name);) hashes_[name] = hash;
}

void Tokens::write() const {
  std::filesystem::path fresh = file_;
  fresh += ".new";
  {
    std::ofstream file(fresh);
    for (const auto& [name, hash] : hashes_) file << hash << " " << name << "\n";
    if (!file.flush()) throw std::runtime_error(file_.string() + ": cannot be written");
  }
  std::filesystem::permissions(fresh, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  std::filesystem::rename(fresh, file_);
}

}  // namespace mirvane::service
