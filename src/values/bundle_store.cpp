// SPDX-License-Identifier: BSL-1.0

// The entries of a bundle and their order, in arrays while they are few, in leaves beyond.

#include "values/bundle_store.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>

#include "base/simd.hpp"

namespace ruvo::detail {

// --- order of a large store

namespace {

bool same_text(std::wstring_view a, std::wstring_view b) noexcept { return same_units(a, b); }

bool before(const bundle::entry* item, std::wstring_view key) noexcept { return item->first < key; }

void require_places(std::size_t wanted, std::size_t there) {
  if (wanted > there) throw std::length_error("bundle too long");
}

}  // namespace

bundle_store::large_order::place bundle_store::large_order::lower_bound(
    std::wstring_view key) const noexcept {
  if (leaves.back().empty()) return {leaves.size(), 0};
  const auto in = std::lower_bound(leaves.begin(), leaves.end(), key,
                                   [](const leaf& l, std::wstring_view k) { return before(l.back(), k); });
  if (in == leaves.end()) return {leaves.size(), 0};
  const auto at = std::lower_bound(in->begin(), in->end(), key, before);
  return {static_cast<std::size_t>(in - leaves.begin()), static_cast<std::size_t>(at - in->begin())};
}

bundle::entry* bundle_store::large_order::find(const key_view& key) const noexcept {
  entry* const found = index.find(key);
  if (found || !index.is_incomplete()) return found;
  entry* const next = at(lower_bound(key.text));
  return next && next->first == key.text ? next : nullptr;
}

bundle::entry* bundle_store::large_order::at(place where) const noexcept {
  return where.leaf < leaves.size() && where.at < leaves[where.leaf].size() ? leaves[where.leaf][where.at]
                                                                            : nullptr;
}

void bundle_store::large_order::insert(entry* item) {
  index.reserve(order.size() + 1, order);
  place to = lower_bound(item->first);
  if (to.leaf == leaves.size()) to = {leaves.size() - 1, leaves.back().size()};
  if (leaves[to.leaf].size() == leaf_limit) {
    constexpr std::size_t half = leaf_limit / 2;
    leaf upper(leaves[to.leaf].begin() + half, leaves[to.leaf].end());
    leaves.insert(leaves.begin() + static_cast<std::ptrdiff_t>(to.leaf) + 1, std::move(upper));
    leaves[to.leaf].resize(half);
    if (to.at > half) to = {to.leaf + 1, to.at - half};
  }
  leaf& in = leaves[to.leaf];
  in.insert(in.begin() + static_cast<std::ptrdiff_t>(to.at), item);
  order.push_back(item);  // for which there is room
  index.add(item);
}

void bundle_store::large_order::erase(const entry* item) noexcept {
  const place from = lower_bound(item->first);
  leaf& in = leaves[from.leaf];
  in.erase(in.begin() + static_cast<std::ptrdiff_t>(from.at));
  if (in.empty() && leaves.size() > 1) leaves.erase(leaves.begin() + static_cast<std::ptrdiff_t>(from.leaf));
  order.erase(std::find(order.begin(), order.end(), item));
  index.remove(item);
}

// --- memory

bundle_store* bundle_store::make(std::size_t capacity) {
  require_places(capacity, limits::entries);
  std::unique_ptr<large_order> large;
  if (capacity > small_limit) large = empty_large(capacity);
  const std::size_t bytes = sizeof(bundle_store) + sizeof(own_keys) + sizeof(block) +
                            capacity * sizeof(entry) + arrays_bytes(capacity);
  auto* const at = static_cast<bundle_store*>(take_block(bytes));
  auto* const own = new (at + 1) own_keys;
  auto* const store = new (at) bundle_store(own);
  own->bytes = bytes;
  own->blocks = new (own + 1) block{nullptr, 0, static_cast<std::uint32_t>(capacity), 0};
  if (large) {
    store->use_large(std::move(large), capacity);
  } else {
    store->use_arrays(entries_of(own->blocks) + capacity, capacity);
  }
  return store;
}

bundle_store* bundle_store::of_shape(const key_shape& shape, xvar* values) {
  auto* const store = new (take_block(shaped_bytes(shape.size()))) bundle_store(shape);
  entry* const to = store->entries();
  for (std::size_t n = 0; n < shape.size(); ++n) new (to + n) entry(*shape.keys()[n], std::move(values[n]));
  return store;
}

bundle_store* bundle_store::like(const bundle_store& other) {
  if (other.is_large()) return like_large(other);
  const std::size_t size = other.size_;
  if (other.is_shaped()) {
    auto* const store = new (take_block(shaped_bytes(size))) bundle_store(*other.shape_);
    other.shape_->retain();
    for (std::size_t n = 0; n < size; ++n) new (store->entries() + n) entry(*other.shape_->keys()[n]);
    return store;
  }
  bundle_store* const store = make(std::max<std::size_t>(size, 1));
  for (std::size_t n = 0; n < size; ++n) {
    const shared_key* const key = key_of(other.order_[n]);
    retain(key);
    store->order_[n] = new (store->take_place()) entry(*key);
  }
  std::memcpy(store->own_hashes(), other.own_hashes(), size * sizeof(std::uint32_t));
  std::memcpy(store->own_ranks(), other.own_ranks(), size);
  store->size_ = other.size_;
  return store;
}

bundle_store* bundle_store::like_large(const bundle_store& other) {
  bundle_store* const store = make(std::max<std::size_t>(other.size_, 1));
  try {
    for (std::size_t n = 0; n < other.size_; ++n) {
      const shared_key* const key = key_of(other.order_[n]);
      store->add(key_view(*key), key);
    }
  } catch (...) {
    drop(store);
    throw;
  }
  return store;
}

void bundle_store::drop(bundle_store* store) noexcept {
  struct {
    static void before(xvar&) noexcept {}
    static void release(const key_shape& shape) noexcept { shape.release(); }
  } taker;
  if (store) drop(store, taker);
}

/// With keys of its own, and without entries.
void bundle_store::drop_own(bundle_store* store) noexcept {
  own_keys* const own = store->own_;
  const std::size_t bytes = own->bytes;
  while (own->blocks) {
    block* const gone = own->blocks;
    own->blocks = gone->next;
    if (gone->bytes) give_block(gone, gone->bytes);
  }
  if (static_cast<void*>(own) == store + 1) {
    own->~own_keys();
  } else {
    unmake(own);
  }
  give_block(store, bytes);
}

void bundle_store::use_arrays(void* memory, std::size_t capacity) noexcept {
  const std::uint32_t* const old_hashes = order_ ? own_hashes() : nullptr;
  const std::uint8_t* const old_ranks = order_ ? own_ranks() : nullptr;
  entry** const old_order = order_;
  order_ = static_cast<entry**>(memory);
  capacity_ = static_cast<std::uint32_t>(capacity);
  if (size_ == 0) return;
  std::memcpy(order_, old_order, size_ * sizeof *order_);
  std::memcpy(own_hashes(), old_hashes, size_ * sizeof *old_hashes);
  std::memcpy(own_ranks(), old_ranks, size_);
}

/// Without entries, and with positions for `capacity`.
std::unique_ptr<bundle_store::large_order> bundle_store::empty_large(std::size_t capacity) {
  auto large = std::make_unique<large_order>();
  large->order.reserve(capacity);
  large->leaves.emplace_back();
  return large;
}

/// The same with the entries of the arrays.
std::unique_ptr<bundle_store::large_order> bundle_store::large_of_arrays(std::size_t capacity) const {
  auto large = empty_large(capacity);
  large->order.assign(order_, order_ + size_);
  for (std::size_t rank = 0; rank < size_; ++rank) large->leaves.front().push_back(order_[own_ranks()[rank]]);
  large->index.reserve(size_, large->order);
  return large;
}

void bundle_store::use_large(std::unique_ptr<large_order> large, std::size_t capacity) noexcept {
  own_->large = std::move(large);
  order_ = own_->large->order.data();
  capacity_ = static_cast<std::uint32_t>(capacity);
}

/// The keys of the shape become the store's own, in arrays with room for more.
void bundle_store::leave_shape(std::size_t more) {
  const std::size_t capacity = size_ + more;
  const std::size_t bytes = sizeof(block) + more * sizeof(entry) + arrays_bytes(capacity);
  auto* const own = detail::make<own_keys>();
  try {
    own->blocks = new (take_block(bytes)) block{nullptr, bytes, static_cast<std::uint32_t>(more), 0};
  } catch (...) {
    unmake(own);
    throw;
  }
  own->bytes = shaped_bytes(size_);
  const key_shape& shape = *shape_;
  auto** const order = reinterpret_cast<entry**>(entries_of(own->blocks) + more);
  for (std::size_t n = 0; n < size_; ++n) {
    retain(shape.keys()[n]);
    order[n] = entries() + n;
  }
  order_ = order;
  capacity_ = static_cast<std::uint32_t>(capacity);
  own_ = own;
  std::memcpy(own_hashes(), shape.hashes(), size_ * sizeof(std::uint32_t));
  std::memcpy(own_ranks(), shape.ranks(size_), size_);
  shape.release();
}

void bundle_store::make_room(std::size_t more) {
  if (is_shaped()) {
    const bool stays_small = more <= small_limit - size_;
    leave_shape(stays_small ? more : 0);
    if (stays_small) return;
  }
  grow(more);
}

void bundle_store::grow(std::size_t more) {
  require_places(more, limits::entries - capacity_);
  const std::size_t capacity = capacity_ + more;
  std::unique_ptr<large_order> large;
  if (is_large()) {
    auto& order = own_->large->order;
    if (capacity > order.capacity()) order.reserve(std::max(capacity, 2 * order.capacity()));
    order_ = order.data();
  } else if (capacity > small_limit) {
    large = large_of_arrays(capacity);
  }
  const std::size_t bytes = sizeof(block) + more * sizeof(entry) + arrays_bytes(capacity);
  block*& newest = own_->blocks;
  auto* const made = new (take_block(bytes)) block{newest, bytes, static_cast<std::uint32_t>(more), 0};
  // What is left of the newest block goes to the list of free places.
  while (newest->used < newest->capacity) give_place(entries_of(newest) + newest->used++);
  newest = made;
  if (capacity <= small_limit) return use_arrays(entries_of(made) + more, capacity);
  if (large) return use_large(std::move(large), capacity);
  capacity_ = static_cast<std::uint32_t>(capacity);
}

std::size_t bundle_store::usual_growth() const noexcept {
  const std::size_t left = std::max<std::size_t>(1, limits::entries - capacity_);  // one too many is refused
  return std::min(std::max<std::size_t>(4, capacity_ / 2), left);
}

bundle_store* bundle_store::fitted(bundle_store* store) {
  const std::size_t spare = store->capacity_ - store->size_;
  if (store->is_shaped() || store->is_large()) return store;
  if (!store->own_->blocks->next && spare <= store->size_ / 8) return store;
  bundle_store* const made = make(store->size_);
  for (std::size_t n = 0; n < store->size_; ++n) {
    entry* const from = store->order_[n];
    made->order_[n] = new (made->take_place()) entry(from->first, std::move(from->second));
    from->second.~xvar();  // and not the entry: its share of the key went along
  }
  std::memcpy(made->own_hashes(), store->own_hashes(), store->size_ * sizeof(std::uint32_t));
  std::memcpy(made->own_ranks(), store->own_ranks(), store->size_);
  made->size_ = std::exchange(store->size_, 0);
  drop(store);
  return made;
}

void* bundle_store::take_place() noexcept {
  block& newest = *own_->blocks;
  if (newest.used < newest.capacity) return entries_of(&newest) + newest.used++;
  void* const place = own_->free;
  std::memcpy(&own_->free, place, sizeof place);
  return place;
}

void bundle_store::give_place(void* place) noexcept {
  std::memcpy(place, &own_->free, sizeof place);
  own_->free = place;
}

// --- the arrays of a small store

namespace {

/// Where the entry with the key stands among those with these hashes, of which `nth` gives the n-th; or null.
template <class Nth>
bundle::entry* find_among(const std::uint32_t* hashes, std::size_t size, const key_view& key, Nth nth) {
  std::size_t n = 0;
#ifdef KESTA_X64
  const __m128i wanted = _mm_set1_epi32(static_cast<int>(key.hash));
  for (; n + 4 <= size; n += 4) {
    const __m128i four = texto::load_16(hashes + n);
    for (int hits = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(four, wanted))); hits != 0;
         hits &= hits - 1) {
      bundle::entry* const item =
          nth(n + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(hits))));
      if (same_text(item->first, key.text)) return item;
    }
  }
#endif
  for (; n < size; ++n) {
    if (hashes[n] == key.hash && same_text(nth(n)->first, key.text)) return nth(n);
  }
  return nullptr;
}

}  // namespace

bundle::entry* bundle_store::find_in_arrays(const key_view& key) const noexcept {
  if (is_shaped())
    return find_among(shape_->hashes(), size_, key, [all = entries()](std::size_t n) { return all + n; });
  return find_among(own_hashes(), size_, key, [all = order_](std::size_t n) { return all[n]; });
}

std::size_t bundle_store::rank_of(std::wstring_view key) const noexcept {
  const std::uint8_t* const all = ranks();
  // Documents often bring their keys in order.
  if (size_ > 0 && before(nth(all[size_ - 1]), key)) return size_;
  const auto at = std::lower_bound(all, all + size_, key,
                                   [this](std::uint8_t n, std::wstring_view k) { return before(nth(n), k); });
  return static_cast<std::size_t>(at - all);
}

void bundle_store::insert_in_arrays(entry* item, std::uint32_t hash) noexcept {
  const std::size_t rank = rank_of(item->first);
  std::uint8_t* const all = own_ranks();
  std::memmove(all + rank + 1, all + rank, size_ - rank);
  all[rank] = static_cast<std::uint8_t>(size_);
  order_[size_] = item;
  own_hashes()[size_] = hash;
}

void bundle_store::erase_from_arrays(const entry* item) noexcept {
  const auto n = static_cast<std::size_t>(std::find(order_, order_ + size_, item) - order_);
  const std::size_t behind = size_ - n - 1;
  std::memmove(order_ + n, order_ + n + 1, behind * sizeof *order_);
  std::memmove(own_hashes() + n, own_hashes() + n + 1, behind * sizeof(std::uint32_t));
  std::uint8_t* to = own_ranks();
  for (const std::uint8_t* from = to; from != own_ranks() + size_; ++from) {
    if (*from != n) *to++ = static_cast<std::uint8_t>(*from > n ? *from - 1 : *from);
  }
}

// --- entries

bundle::entry* bundle_store::put(const key_view& key) {
  if (entry* const found = find(key)) return found;
  return add(key);
}

bundle::entry* bundle_store::add(const key_view& key, const shared_key* shared) {
  if (size_ == capacity_) make_room(usual_growth());
  if (shared) {
    retain(shared);
  } else {
    shared = key_with(key.text, key.hash, key.spelling);
  }
  void* const place = take_place();
  auto* const item = new (place) entry(*shared);
  if (!is_large()) {
    insert_in_arrays(item, key.hash);
  } else {
    try {
      own_->large->insert(item);
    } catch (...) {
      item->~entry();
      give_place(place);
      throw;
    }
  }
  ++size_;
  return item;
}

void bundle_store::erase(entry* item) {
  if (is_shaped()) leave_shape(0);
  if (is_large()) {
    own_->large->erase(item);
  } else {
    erase_from_arrays(item);
  }
  --size_;
  item->~entry();
  give_place(item);
}

bundle::entry* bundle_store::step(const entry* item, std::size_t& rank, bool forward) const noexcept {
  if (is_large()) return step_in_leaves(item, rank, forward);
  if (rank < size_ && nth(ranks()[rank]) == item) return step_in_arrays(rank, forward);
  rank = item ? rank_of(item->first) : size_;
  return step_in_arrays(rank, forward);
}

bundle::entry* bundle_store::step_in_leaves(const entry* item, std::size_t& rank,
                                            bool forward) const noexcept {
  const large_order& large = *own_->large;
  large_order::place at = large_order::place::of(rank);
  if (!item) {
    at = {large.leaves.size() - 1, large.leaves.back().size()};
  } else if (large.at(at) != item) {
    at = large.lower_bound(item->first);
  }
  if (forward) {
    if (++at.at >= large.leaves[at.leaf].size()) at = {at.leaf + 1, 0};
  } else if (at.at > 0) {
    --at.at;
  } else {
    if (at.leaf == 0) return nullptr;
    --at.leaf;
    at.at = large.leaves[at.leaf].size() - 1;
  }
  rank = at.rank();
  return large.at(at);
}

}  // namespace ruvo::detail
