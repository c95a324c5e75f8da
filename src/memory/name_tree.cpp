// SPDX-License-Identifier: BSL-1.0

// The tree of names that a reader met.

#include "memory/name_tree.hpp"

#include <algorithm>
#include <atomic>
#include <new>
#include <string>
#include <utility>

namespace ruvo::detail {

void name_tree::clear() noexcept {
  for (name_node* const node : nodes_) {
    node->key->uses.fetch_sub(node->stock, std::memory_order_relaxed);
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

const std::uint8_t* name_tree::ranks_of(name_node& end) {
  if (end.ranks) return end.ranks.get();
  const shared_key* keys[most_depth];
  for (const name_node* node = &end; node; node = node->before) keys[node->depth - 1] = node->key;
  auto ranks = std::make_unique<std::uint8_t[]>(end.depth);
  for (std::uint32_t n = 0; n < end.depth; ++n) ranks[n] = static_cast<std::uint8_t>(n);
  std::sort(ranks.get(), ranks.get() + end.depth, [&keys](std::uint8_t a, std::uint8_t b) {
    return static_cast<const std::wstring&>(*keys[a]) < *keys[b];
  });
  end.ranks = std::move(ranks);
  return end.ranks.get();
}

}  // namespace ruvo::detail
