// SPDX-License-Identifier: BSL-1.0
#pragma once

// Keys that entries share: documents repeat theirs, so a thread keeps the keys that it saw last. A key may be
// released by another thread than the one that made it.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::detail {

/// A key, shared by all entries that carry it.
struct shared_key : std::wstring {
  shared_key(std::wstring_view text, std::uint32_t its_hash) : std::wstring(text), hash(its_hash) {}

  mutable std::atomic<std::uint64_t> uses{1};
  const std::uint32_t hash;
};

void release(const shared_key* key) noexcept;
inline void retain(const shared_key* key) noexcept { key->uses.fetch_add(1, std::memory_order_relaxed); }

/// The key with this text and the hash of it, retained for the caller: from those that the calling thread
/// keeps, or a new one. Throws std::bad_alloc.
const shared_key* key_with(std::wstring_view text, std::uint32_t hash);

/// A spread-out number for a folded key.
std::uint32_t hash_of(std::wstring_view key) noexcept;

/// The keys that one thread saw last, one for each place that hashes share.
class key_cache {
 public:
  key_cache() = default;
  key_cache(const key_cache&) = delete;
  key_cache& operator=(const key_cache&) = delete;
  ~key_cache();

  /// key_with() from this cache.
  const shared_key* find_or_make(std::wstring_view text, std::uint32_t hash);

 private:
  static constexpr std::size_t places = 512, longest = 64;  // of what is kept

  const shared_key* keys_[places] = {};
};

}  // namespace ruvo::detail
