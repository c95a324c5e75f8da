// SPDX-License-Identifier: BSL-1.0
#pragma once

// The names of the objects that a reader met, as a tree: documents repeat their objects, so the name that
// came next the last time is the one to expect. A name that is met where it was before costs a comparison
// with its spelling: no folding, no look-up, no search for another one like it in the same object.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <forward_list>
#include <vector>

#include "memory/key_shape.hpp"
#include "memory/shared_key.hpp"

namespace ruvo::detail {

struct name_node;

/// The names that came next at one place.
struct name_branch {
  name_node* last = nullptr;  // the one that was taken last
  name_node* first = nullptr;
  std::uint32_t count = 0;
};

/// A name behind certain other ones of an object. The way to it has no name twice.
struct name_node {
  /// The caller's share of the shape, which is made already.
  void take_share() noexcept {
    if (stock == 0) {  // one atomic step for many bundles
      shape->retain(stock_step);
      stock = stock_step;
    }
    --stock;
  }
  /// Whether the `size` bytes are how the name is written.
  bool is_written(const void* bytes, std::size_t size) const noexcept {
    return size == written_bytes && begins(bytes);
  }
  /// Whether what begins there, which is at least as long, begins with the name as it is written.
  bool begins(const void* bytes) const noexcept {
    return same_bytes(static_cast<const unsigned char*>(bytes), written(), written_bytes);
  }

  static constexpr std::uint32_t stock_step = 4096;

  name_node(name_node* its_before, const shared_key* its_key, std::size_t bytes) noexcept
      : before(its_before),
        key(its_key),
        written_bytes(static_cast<std::uint32_t>(bytes)),
        depth(its_before ? its_before->depth + 1 : 1) {}

  name_node* const before;  // null for the first name of an object
  name_node* next = nullptr;
  const shared_key* const key;
  const key_shape* shape = nullptr;  // of the objects that end here
  std::uint32_t stock = 0;           // shares of it beside its own
  const std::uint32_t written_bytes;
  const std::uint32_t depth;      // names on the way, this one included
  name_branch after;              // the names that followed it
  name_branch* inside = nullptr;  // the first names of the objects that it held

  /// Stands behind the node.
  unsigned char* written() noexcept { return reinterpret_cast<unsigned char*>(this + 1); }
  const unsigned char* written() const noexcept { return reinterpret_cast<const unsigned char*>(this + 1); }

 private:
  /// Without a call: names are short.
  static bool same_bytes(const unsigned char* a, const unsigned char* b, std::size_t size) noexcept {
    if (size >= 8) {
      std::size_t at = 0;
      for (; at + 8 < size; at += 8) {
        if (word(a + at) != word(b + at)) return false;
      }
      return word(a + size - 8) == word(b + size - 8);
    }
    for (std::size_t at = 0; at < size; ++at) {
      if (a[at] != b[at]) return false;
    }
    return true;
  }
  static std::uint64_t word(const unsigned char* at) noexcept {
    std::uint64_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
};

class name_tree {
 public:
  /// Names on one way.
  static constexpr std::size_t most_depth = key_shape::most_keys;
  /// Bytes of a name as it is written.
  static constexpr std::size_t longest = 128;

  name_tree() noexcept = default;
  name_tree(const name_tree&) = delete;
  name_tree& operator=(const name_tree&) = delete;
  ~name_tree() { clear(); }

  /// Forgets all; for when nobody has a node of it.
  void clear() noexcept;
  /// Whether it is time for that.
  bool is_full() const noexcept { return nodes_.size() >= most_nodes; }

  /// A further name of the branch, behind `before` (null: the first of its object). The node takes over the
  /// share of the key that it is given. Null, with nothing done, where that is too much. Throws
  /// std::bad_alloc.
  name_node* add(name_branch& at, name_node* before, const void* written, std::size_t bytes,
                 const shared_key* key);
  /// The name of the branch that is written so, or null.
  static name_node* find(name_branch& in, const void* written, std::size_t bytes) noexcept;
  /// The first names of the objects that `holder` holds. Where none is known yet they are those in the member
  /// before it, if the given name is one of them: the members of a dictionary are alike. Throws
  /// std::bad_alloc.
  name_branch& inside_of(name_node& holder, const void* written, std::size_t bytes);
  /// The names of an object that ends at the node. Throws std::bad_alloc.
  static const key_shape& shape_of(name_node& end) {
    if (!end.shape) make_shape(end);
    return *end.shape;
  }

  name_branch top;  // of objects that no name holds

 private:
  static constexpr std::size_t most_nodes = 2048;
  static constexpr std::uint32_t widest = 24;  // names in one branch

  static void make_shape(name_node& end);

  std::vector<name_node*> nodes_;
  std::forward_list<name_branch> branches_;
};

}  // namespace ruvo::detail
