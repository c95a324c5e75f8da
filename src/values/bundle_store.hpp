// SPDX-License-Identifier: BSL-1.0
#pragma once

// The inside of a bundle.
//
// What a reader made has its keys from a shape, which other bundles have, too: the entries stand one behind
// the other in the order of the shape, whose shares of the keys are theirs. The first change of the keys
// gives the store keys of its own.
//
// Then entries lie in blocks and never move. Up to `small_limit` entries, three arrays of one allocation with
// the newest block say in which order: the entries by position, their hashes by position (look-up scans
// these), and the positions by key. Beyond, sorted leaves of entries take over the order, and a table of
// hashes look-up.

#include <ruvo/bundle.hpp>

#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "base/limits.hpp"
#include "memory/block_cache.hpp"
#include "memory/key_shape.hpp"
#include "values/entry_index.hpp"
#include "values/folded_key.hpp"

namespace ruvo::detail {

class bundle_store {
 public:
  using entry = bundle::entry;

  /// With room for `capacity` entries in one allocation. As everything that makes room, throws
  /// std::length_error beyond `limits::entries`.
  static bundle_store* make(std::size_t capacity);
  /// With the keys of `other` in the same positions, and null values.
  static bundle_store* like(const bundle_store& other);
  /// With the keys of the shape, and its values, which are moved out of. Unless this throws, the store has a
  /// share of the shape that the caller has to take for it.
  static bundle_store* of_shape(const key_shape& shape, xvar* values);
  static void drop(bundle_store* store) noexcept;
  /// The same for one that is not null. `taker` is given each value, before() it is destroyed, the last one
  /// first, and then a share of a shape that it has to release().
  template <class Taker>
  static void drop(bundle_store* store, Taker& taker) noexcept;
  /// The same entries in a store without spare room, in other places; `store` is used up unless this throws.
  static bundle_store* fitted(bundle_store* store);

  bundle_store(const bundle_store&) = delete;
  bundle_store& operator=(const bundle_store&) = delete;

  std::size_t size() const noexcept { return size_; }
  entry* find(const key_view& key) const noexcept {
    return is_large() ? own_->large->find(key) : find_in_arrays(key);
  }
  /// The entry with the key, made with a null value when missing. Nothing changes when it throws.
  entry* put(const key_view& key);
  /// put() for a key that is known to be missing; `shared`, when given, is the same key made before.
  entry* add(const key_view& key, const shared_key* shared = nullptr);
  /// Makes room for `count` entries in all.
  void reserve(std::size_t count) {
    if (count > capacity_) make_room(count - capacity_);
  }
  /// Nothing changes when it throws, which it can but once: where the keys are a shape's.
  void erase(entry* item);
  /// By position of first insertion; `n` must be below size().
  entry* nth(std::size_t n) const noexcept { return order_ ? order_[n] : entries() + n; }
  /// The first entry in key order, or null.
  entry* first() const noexcept {
    if (is_large()) return own_->large->at({0, 0});
    return size_ > 0 ? nth(ranks()[0]) : nullptr;
  }
  /// The neighbour in key order of `item` (null: behind the last), or null. `rank` is where `item` was last
  /// seen: its number in key order in a small store, place::rank() in a large one. It is a hint: an entry
  /// that has moved since is looked up by its key.
  entry* step(const entry* item, std::size_t& rank, bool forward) const noexcept;

  /// step() forward through a store that doesn't change, beginning at first() with rank 0.
  entry* next(const entry* item, std::size_t& rank) const noexcept {
    if (is_large()) return step(item, rank, true);
    return ++rank < size_ ? nth(ranks()[rank]) : nullptr;
  }

  static const shared_key* key_of(const entry* item) noexcept {
    return static_cast<const shared_key*>(&item->first);
  }

 private:
  static constexpr std::size_t small_limit = 128, leaf_limit = 512;
  static_assert(limits::entries <= 0xFFFFFFFF && limits::entries > small_limit);  // as counted below
  static_assert(key_shape::most_keys <= small_limit);

  struct block {
    block* next;
    std::size_t bytes;  // 0 in the block that is part of the store's own allocation
    std::uint32_t capacity, used;
  };
  /// The order of a large store: positions, and leaves sorted by key, none of them empty.
  struct large_order {
    using leaf = std::vector<entry*>;
    struct place {
      /// A place in one number, as iterators keep it: the leaf, and in the low 16 bits the index in the leaf.
      std::size_t rank() const noexcept { return leaf << 16 | at; }
      static place of(std::size_t rank) noexcept { return {rank >> 16, rank & 0xFFFF}; }

      std::size_t leaf, at;
    };
    static_assert(leaf_limit <= 0xFFFF);
    std::vector<entry*> order;
    std::vector<leaf> leaves;
    entry_index index;

    entry* find(const key_view& key) const noexcept;
    /// The first place whose key is not before `key`; behind the last one, {leaves.size(), 0}.
    place lower_bound(std::wstring_view key) const noexcept;
    entry* at(place where) const noexcept;
    void insert(entry* item);
    void erase(const entry* item) noexcept;
  };

  /// What a store with keys of its own has.
  struct own_keys {
    block* blocks = nullptr;  // the newest first; the one made with the store, if it is, stands behind this
    void* free = nullptr;     // places of erased entries, each pointing to the next
    std::unique_ptr<large_order> large;
    std::size_t bytes;  // of the allocation that begins with the store
  };

  explicit bundle_store(const key_shape& shape) noexcept
      : size_(static_cast<std::uint32_t>(shape.size())), capacity_(size_), shape_(&shape) {}
  explicit bundle_store(own_keys* own) noexcept : own_(own) {}
  ~bundle_store() = default;
  static void drop_own(bundle_store* store) noexcept;

  bool is_shaped() const noexcept { return !order_; }
  bool is_large() const noexcept { return capacity_ > small_limit; }
  static constexpr std::size_t shaped_bytes(std::size_t size) noexcept {
    return sizeof(bundle_store) + size * sizeof(entry);
  }
  /// Where a store with a shape has its entries.
  entry* entries() const noexcept { return reinterpret_cast<entry*>(const_cast<bundle_store*>(this) + 1); }
  /// Of a store that is not large.
  const std::uint8_t* ranks() const noexcept { return order_ ? own_ranks() : shape_->ranks(size_); }
  // The arrays of a store that has keys of its own and is not large.
  std::uint32_t* own_hashes() const noexcept { return reinterpret_cast<std::uint32_t*>(order_ + capacity_); }
  std::uint8_t* own_ranks() const noexcept {
    return reinterpret_cast<std::uint8_t*>(own_hashes() + capacity_);
  }
  static constexpr std::size_t arrays_bytes(std::size_t capacity) noexcept {
    return capacity <= small_limit ? capacity * (sizeof(entry*) + sizeof(std::uint32_t) + 1) : 0;
  }
  static entry* entries_of(block* in) noexcept { return reinterpret_cast<entry*>(in + 1); }
  entry* find_in_arrays(const key_view& key) const noexcept;
  std::size_t rank_of(std::wstring_view key) const noexcept;
  entry* step_in_arrays(std::size_t& rank, bool forward) const noexcept {
    rank += forward ? 1 : std::size_t{0} - 1;
    return rank < size_ ? nth(ranks()[rank]) : nullptr;
  }
  entry* step_in_leaves(const entry* item, std::size_t& rank, bool forward) const noexcept;
  void insert_in_arrays(entry* item, std::uint32_t hash) noexcept;
  void erase_from_arrays(const entry* item) noexcept;
  void use_arrays(void* memory, std::size_t capacity) noexcept;
  static bundle_store* like_large(const bundle_store& other);
  static std::unique_ptr<large_order> empty_large(std::size_t capacity);
  std::unique_ptr<large_order> large_of_arrays(std::size_t capacity) const;
  void use_large(std::unique_ptr<large_order> large, std::size_t capacity) noexcept;
  void leave_shape(std::size_t more);
  void make_room(std::size_t more);
  void grow(std::size_t more);
  std::size_t usual_growth() const noexcept;
  void* take_place() noexcept;
  void give_place(void* place) noexcept;

  std::uint32_t size_ = 0, capacity_ = 0;  // places for entries
  entry** order_ = nullptr;                // by position; null where the keys are a shape's
  union {
    const key_shape* shape_;
    own_keys* own_;
  };
};

template <class Taker>
void bundle_store::drop(bundle_store* store, Taker& taker) noexcept {
  if (!store->is_shaped()) {
    for (std::size_t n = store->size_; n-- > 0;) {
      taker.before(store->order_[n]->second);
      store->order_[n]->~entry();
    }
    return drop_own(store);
  }
  entry* const first = store->entries();
  for (entry* gone = first + store->size_; gone != first;) {
    --gone;
    taker.before(gone->second);
    gone->second.~xvar();  // and not the entry: the share of the key is the shape's
  }
  taker.release(*store->shape_);
  give_block(store, shaped_bytes(store->size_));
}

/// The library's own access to the store of a bundle.
struct bundle_access {
  static bundle_store* store(const bundle& in) noexcept { return in.store_; }
  static bundle_store& made_store(bundle& in, std::size_t capacity = 4) {
    if (!in.store_) in.store_ = bundle_store::make(capacity);
    return *in.store_;
  }
  /// Gives `store` to an empty bundle.
  static void set(bundle& in, bundle_store* store) noexcept { in.store_ = store; }
  /// Gives up the store; the bundle is empty afterwards.
  static bundle_store* detach(bundle& in) noexcept { return std::exchange(in.store_, nullptr); }
};

}  // namespace ruvo::detail
