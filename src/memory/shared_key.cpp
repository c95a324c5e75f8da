// SPDX-License-Identifier: BSL-1.0

// Shared keys and the cache of a thread's last ones.

#include "memory/shared_key.hpp"

#include "base/key_units.hpp"
#include "memory/thread_cache.hpp"

namespace ruvo::detail {

std::uint32_t hash_of(std::wstring_view key) noexcept { return hash_units(key); }

void release(const shared_key* key) noexcept {
  if (key->uses.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  if (key->is_spelled) {
    delete static_cast<const spelled_key*>(key);
  } else {
    delete key;
  }
}

namespace {

const shared_key* make_key(std::wstring_view text, std::uint32_t hash, std::wstring_view spelling) {
  if (spelling.data() == text.data() || same_units(text, spelling)) return new shared_key(text, hash);
  return new spelled_key(text, hash, spelling);
}

/// Whether the key, which has this text, is spelled so.
bool is_spelled_so(const shared_key* key, std::wstring_view text, std::wstring_view spelling) noexcept {
  if (spelling.data() == text.data()) return !key->is_spelled;
  return same_units<wchar_t>(key->spelling(), spelling);
}

}  // namespace

key_cache::~key_cache() {
  for (const shared_key* key : keys_) {
    if (key) release(key);
  }
}

const shared_key* key_cache::find_or_make(std::wstring_view text, std::uint32_t hash,
                                          std::wstring_view spelling) {
  const shared_key*& place = keys_[hash % places];
  if (place && place->hash == hash && *place == text && is_spelled_so(place, text, spelling)) {
    retain(place);
    return place;
  }
  const shared_key* const made = make_key(text, hash, spelling);
  if (text.size() <= longest) {
    if (place) release(place);
    place = made;
    retain(made);
  }
  return made;
}

const shared_key* key_with(std::wstring_view text, std::uint32_t hash, std::wstring_view spelling) {
  thread_cache* const cache = thread_cache::local();
  return cache ? cache->keys.find_or_make(text, hash, spelling) : make_key(text, hash, spelling);
}

}  // namespace ruvo::detail
