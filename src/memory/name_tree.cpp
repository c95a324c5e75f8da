// SPDX-License-Identifier: BSL-1.0

// The tree of names that a reader met.

#include "memory/name_tree.hpp"

#include <algorithm>
#include <cstdint>
#include <new>

namespace ruvo::detail {

void name_tree::clear() noexcept {
  for (name_node* const node : nodes_) {
    if (node->shape) node->shape->release(node->stock + std::uint64_t{1});
    release(node->key);
    node->~name_node();
    ::operator delete(node);
  }
  nodes_.clear();
  branches_.clear();
  top = name_branch();
}

name_node* name_tree::add(name_branch& at, name_node* before, const void* written, std::size_t bytes,
                          const shared_key* key) {
  if (is_full() || bytes > longest || at.count >= widest || (before && before->depth >= most_depth))
    return nullptr;
  if (nodes_.size() == nodes_.capacity()) nodes_.reserve(std::max<std::size_t>(64, 2 * nodes_.size()));
  void* const memory = ::operator new(sizeof(name_node) + bytes);
  auto* const node = new (memory) name_node(before, key, bytes);
  if (bytes > 0) std::memcpy(node->written(), written, bytes);
  nodes_.push_back(node);
  node->next = at.first;
  at.first = at.last = node;
  ++at.count;
  return node;
}

name_node* name_tree::find(name_branch& in, const void* written, std::size_t bytes) noexcept {
  name_node* node = in.first;
  while (node && !node->is_written(written, bytes)) node = node->next;
  if (node) in.last = node;
  return node;
}

name_branch& name_tree::inside_of(name_node& holder, const void* written, std::size_t bytes) {
  if (holder.inside) return *holder.inside;
  name_branch* const alike = holder.before ? holder.before->inside : nullptr;
  if (alike && find(*alike, written, bytes)) return *(holder.inside = alike);
  return *(holder.inside = &branches_.emplace_front());
}

void name_tree::make_shape(name_node& end) {
  const shared_key* keys[most_depth];
  for (const name_node* node = &end; node; node = node->before) keys[node->depth - 1] = node->key;
  end.shape = key_shape::make(keys, end.depth);
}

}  // namespace ruvo::detail
