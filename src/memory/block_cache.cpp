// SPDX-License-Identifier: BSL-1.0

// The free blocks of a thread, and what it may keep of them.

#include "memory/block_cache.hpp"

#include <atomic>
#include <new>
#include <stdexcept>

#include "base/limits.hpp"
#include "base/simd.hpp"
#include "memory/thread_cache.hpp"

namespace ruvo::detail {

namespace {

std::atomic<std::size_t> allowed_to_all{0};

void* plain_block(std::size_t size) {
  if (size > limits::block) throw std::length_error("value too long");
  return ::operator new(block_cache::rounded(size));
}

}  // namespace

block_cache::~block_cache() {
  settle();
  for (free_block* block : free_) {
    while (block) {
      free_block* const next = block->next;
      ::operator delete(block);
      block = next;
    }
  }
  allowed_to_all.fetch_sub(allowance_, std::memory_order_relaxed);
}

bool block_cache::widen_allowance() noexcept {
  if (allowance_ + allowance_step > most_bytes) return false;
  if (allowed_to_all.fetch_add(allowance_step, std::memory_order_relaxed) + allowance_step >
      most_bytes_of_all) {
    allowed_to_all.fetch_sub(allowance_step, std::memory_order_relaxed);
    return false;
  }
  allowance_ += allowance_step;
  return true;
}

void* block_cache::take(std::size_t size) {
  if (size > largest) return plain_block(size);
  if (documents_ > 0) {
    if (void* const block = line_.take(size)) return block;
  }
  const std::size_t bytes = rounded(size);
  free_block*& first = list_of(bytes);
  free_block* const block = first;
  if (!block) return ::operator new(bytes);
  first = block->next;
  expect_use(first);  // the next block of this size, which lies anywhere
  free_bytes_ -= bytes;
  return block;
}

void block_cache::give(void* memory, std::size_t size) noexcept {
  const std::size_t bytes = rounded(size);
  if (bytes > largest || (free_bytes_ + bytes > allowance_ && !widen_allowance())) {
    ::operator delete(memory);
    return;
  }
  free_block*& first = list_of(bytes);
  first = new (memory) free_block{first};
  free_bytes_ += bytes;
}

#ifdef KESTA_PLAIN_HEAP  // for checkers that must see every block

void* take_block(std::size_t size) { return plain_block(size); }

void give_block(void* block, std::size_t) noexcept { ::operator delete(block); }

document_blocks::document_blocks() noexcept : cache_(nullptr) {}
release_of_many::release_of_many() noexcept : cache_(nullptr) {}

#else

void* take_block(std::size_t size) {
  thread_cache* const cache = thread_cache::local();
  return cache ? cache->blocks.take(size) : plain_block(size);
}

void give_block(void* block, std::size_t size) noexcept {
  thread_cache* const cache = thread_cache::local();
  if (chunk_region::holds(block)) {
    if (cache) return cache->blocks.give_in_chunk(block);
    return chunk::of(block)->release(1);
  }
  if (cache) return cache->blocks.give(block, size);
  ::operator delete(block);
}

document_blocks::document_blocks() noexcept : cache_(nullptr) {
  thread_cache* const cache = thread_cache::local();
  if (!cache) return;
  cache_ = &cache->blocks;
  if (cache_->documents_++ != 0) return;
  chunk_region::begin_document();
  cache_->line_.rewind();
}

release_of_many::release_of_many() noexcept : cache_(nullptr) {
  thread_cache* const cache = thread_cache::local();
  if (!cache) return;
  cache_ = &cache->blocks;
  ++cache_->releases_;
}

#endif

}  // namespace ruvo::detail
