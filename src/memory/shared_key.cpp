// SPDX-License-Identifier: BSL-1.0

// Shared keys and the cache of a thread's last ones.

#include "memory/shared_key.hpp"

#include "base/key_units.hpp"
#include "memory/thread_cache.hpp"

namespace ruvo::detail {

std::uint32_t hash_of(std::wstring_view key) noexcept { return hash_units(key); }

void release(const shared_key* key) noexcept {
  if (key->uses.fetch_sub(1, std::memory_order_acq_rel) == 1) delete key;
}

key_cache::~key_cache() {
  for (const shared_key* key : keys_) {
    if (key) release(key);
  }
}

const shared_key* key_cache::find_or_make(std::wstring_view text, std::uint32_t hash) {
  const shared_key*& place = keys_[hash % places];
  if (place && place->hash == hash && *place == text) {
    retain(place);
    return place;
  }
  auto* const made = new shared_key(text, hash);
  if (text.size() <= longest) {
    if (place) release(place);
    place = made;
    retain(made);
  }
  return made;
}

const shared_key* key_with(std::wstring_view text, std::uint32_t hash) {
  thread_cache* const cache = thread_cache::local();
  return cache ? cache->keys.find_or_make(text, hash) : new shared_key(text, hash);
}

}  // namespace ruvo::detail
