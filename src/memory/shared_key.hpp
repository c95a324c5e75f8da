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

/// A folded key, shared by all entries that carry it and were spelled alike.
struct shared_key : std::wstring {
  shared_key(std::wstring_view text, std::uint32_t its_hash, bool spelled = false)
      : std::wstring(text), hash(its_hash), is_spelled(spelled) {}

  /// The key as it was written; where that is the key itself, it costs nothing.
  const std::wstring& spelling() const noexcept;

  mutable std::atomic<std::uint64_t> uses{1};
  const std::uint32_t hash;
  const bool is_spelled;  // a spelled_key
};

/// A key that was written in other letters.
struct spelled_key : shared_key {
  spelled_key(std::wstring_view text, std::uint32_t its_hash, std::wstring_view its_spelling)
      : shared_key(text, its_hash, true), written(its_spelling) {}

  const std::wstring written;
};

inline const std::wstring& shared_key::spelling() const noexcept {
  return is_spelled ? static_cast<const spelled_key*>(this)->written : *this;
}

void release(const shared_key* key) noexcept;
inline void retain(const shared_key* key) noexcept { key->uses.fetch_add(1, std::memory_order_relaxed); }

/// The key with this text, the hash of it and this spelling, retained for the caller: from those that the
/// calling thread keeps, or a new one. A spelling that is the text had best be the same view. Throws
/// std::bad_alloc.
const shared_key* key_with(std::wstring_view text, std::uint32_t hash, std::wstring_view spelling);

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
  const shared_key* find_or_make(std::wstring_view text, std::uint32_t hash, std::wstring_view spelling);

 private:
  static constexpr std::size_t places = 512, longest = 64;  // of what is kept

  const shared_key* keys_[places] = {};
};

}  // namespace ruvo::detail
