// SPDX-License-Identifier: BSL-1.0

// Writing an archive, whose records are completed later.

#include "zip/sink.hpp"

#include <algorithm>
#include <utility>

namespace ruvo::zip {

namespace {

constexpr std::size_t most_kept = std::size_t{1} << 18;

std::string_view view_of(const std::vector<unsigned char>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

void sink::append(std::string_view bytes) {
  kept_.insert(kept_.end(), bytes.begin(), bytes.end());
  if (file_ && kept_.size() >= most_kept) flush();
}

char* sink::room(std::size_t count) {
  before_room_ = kept_.size();
  kept_.resize(before_room_ + count);
  return reinterpret_cast<char*>(kept_.data()) + before_room_;
}

void sink::used(std::size_t count) {
  kept_.resize(before_room_ + count);
  if (file_ && kept_.size() >= most_kept) flush();
}

void sink::replace(std::uint64_t at, std::string_view bytes) {
  if (at < flushed_ && at + bytes.size() > flushed_) flush();
  if (at < flushed_)
    file_->write_at(at, bytes);
  else
    std::copy(bytes.begin(), bytes.end(), kept_.begin() + static_cast<std::ptrdiff_t>(at - flushed_));
}

void sink::go_back(std::uint64_t to) noexcept {
  kept_.resize(to > flushed_ ? static_cast<std::size_t>(to - flushed_) : 0);
  flushed_ = std::min(flushed_, to);
}

void sink::flush() {
  file_->write_at(flushed_, view_of(kept_));
  flushed_ += kept_.size();
  farthest_ = std::max(farthest_, flushed_);
  kept_.clear();
}

void sink::settle() {
  if (!kept_.empty()) flush();
  if (farthest_ > flushed_) file_->cut(flushed_);
  file_->settle();
}

}  // namespace ruvo::zip
