// SPDX-License-Identifier: BSL-1.0

// The generator, its bounded draws, and the one that each thread has.

#include <ruvo/exc.hpp>
#include <ruvo/rdn.hpp>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "base/civil.hpp"
#include "rdn/tables.hpp"
#include "system/random.hpp"

namespace ruvo::rdn {

namespace {

std::uint64_t system_seed() {
  unsigned char bytes[sizeof(std::uint64_t)];
  if (!platform::fill_random(bytes, sizeof bytes)) throw exc::RunTime(L"El sistema no da números aleatorios");
  std::uint64_t seed;
  std::memcpy(&seed, bytes, sizeof seed);
  return seed;
}

/// splitmix64 (Steele, Lea, Flood 2014).
std::uint64_t next_split(std::uint64_t& state) noexcept {
  state += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

[[noreturn]] void refuse_limits(const std::wstring& from, const std::wstring& to) {
  throw exc::BadArgument(L"límites " + from + L" y " + to);
}

}  // namespace

generator::generator() : generator(system_seed()) {}
generator::generator(std::uint64_t seed) noexcept { reseed(seed); }
generator::generator(const generator& other) noexcept = default;
generator& generator::operator=(const generator& other) noexcept = default;

void generator::reseed(std::uint64_t seed) noexcept {
  seed_ = seed;
  for (std::uint64_t& word : state_) word = next_split(seed);
}

// xoshiro256** 1.0 (Blackman, Vigna 2018).
std::uint64_t generator::next() noexcept {
  const std::uint64_t result = std::rotl(state_[1] * 5, 7) * 9;
  const std::uint64_t shifted = state_[1] << 17;
  state_[2] ^= state_[0];
  state_[3] ^= state_[1];
  state_[1] ^= state_[2];
  state_[0] ^= state_[3];
  state_[2] ^= shifted;
  state_[3] = std::rotl(state_[3], 45);
  return result;
}

// Up to 32 bits the upper half of a product is the number, and the lower halves that would favour some
// numbers are drawn again (Lemire 2019): nearly always without a division. Above them, numbers of as many
// bits are drawn until one fits, which needs no product of 128 bits.
std::uint64_t generator::below(std::uint64_t bound) noexcept {
  if (bound < 2) return 0;
  if (bound <= std::numeric_limits<std::uint32_t>::max()) {
    std::uint64_t product = (next() >> 32) * bound;
    if (static_cast<std::uint32_t>(product) < bound) {
      const auto favoured = static_cast<std::uint32_t>((std::uint64_t{1} << 32) % bound);
      while (static_cast<std::uint32_t>(product) < favoured) product = (next() >> 32) * bound;
    }
    return product >> 32;
  }
  const int unused = std::countl_zero(bound - 1);
  for (;;) {
    const std::uint64_t drawn = next() >> unused;
    if (drawn < bound) return drawn;
  }
}

long long generator::integer(long long from, long long to) {
  if (from > to) refuse_limits(std::to_wstring(from), std::to_wstring(to));
  const auto first = static_cast<std::uint64_t>(from);
  const std::uint64_t width = static_cast<std::uint64_t>(to) - first;
  const bool is_any = width == std::numeric_limits<std::uint64_t>::max();
  return static_cast<long long>(first + (is_any ? next() : below(width + 1)));
}

ruvo::decimal generator::decimal(const ruvo::decimal& from, const ruvo::decimal& to) {
  if (from > to) refuse_limits(from.to_string(), to.to_string());
  const int scale = std::max(from.get_scale(), to.get_scale());
  const auto units = [scale](const ruvo::decimal& limit) {
    return static_cast<long long>(limit.divided(ruvo::decimal(1, scale), 0, rounding::none));
  };
  return ruvo::decimal(integer(units(from), units(to)), scale);
}

ruvo::date generator::date(const ruvo::date& from, const ruvo::date& to) {
  const long long first = days_of(from), last = days_of(to);
  if (first > last) refuse_limits(from.to_string(), to.to_string());
  return date_of(integer(first, last));
}

std::size_t generator::index_below(std::size_t count) {
  if (count == 0) throw exc::BadArgument(L"all: sin elementos");
  return static_cast<std::size_t>(below(count));
}

std::size_t generator::index_by(const std::vector<unsigned>& weights, std::size_t count) {
  std::uint64_t sum = 0;
  for (const unsigned weight : weights) sum += weight;
  if (weights.size() != count || sum == 0) throw exc::BadArgument(L"weights");
  std::uint64_t left = below(sum);
  std::size_t index = 0;
  while (left >= weights[index]) left -= weights[index++];
  return index;
}

void generator::refuse_more(std::size_t found, std::size_t wanted) {
  throw exc::RunTime(L"Se pedían " + std::to_wstring(wanted) + L" valores distintos y solo se han obtenido " +
                     std::to_wstring(found));
}

long long days_of(const ruvo::date& day) {
  return civil::days_from_date(day.get_year(), day.get_month(), day.get_day());
}

ruvo::date date_of(long long days) {
  const civil::date_fields fields = civil::date_from_days(days);
  return {static_cast<long>(fields.year), static_cast<long>(fields.month), static_cast<long>(fields.day)};
}

// Never destroyed, for it owns nothing: so it serves the thread until its very end.
generator& mine() {
  alignas(generator) static thread_local unsigned char room[sizeof(generator)];
  static constinit thread_local generator* made = nullptr;
  if (!made) made = new (room) generator();
  return *made;
}

}  // namespace ruvo::rdn
