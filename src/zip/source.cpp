// SPDX-License-Identifier: BSL-1.0

// Reading an archive here and there.

#include "zip/source.hpp"

#include <algorithm>

namespace ruvo::zip {

std::string_view source::at(std::uint64_t offset, std::size_t least) {
  if (offset >= size_) return {};
  const std::uint64_t left = size_ - offset;
  if (!in_) {
    return {reinterpret_cast<const char*>(bytes_.get_store().data()) + offset,
            static_cast<std::size_t>(left)};
  }
  const std::uint64_t wanted = std::min<std::uint64_t>(least, left);
  if (offset < begins_ || offset + wanted > begins_ + window_.size()) {
    begins_ = size_;  // where nothing is asked for, if reading fails
    window_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(left, window_size)));
    in_->read_at(offset, window_.data(), window_.size());
    begins_ = offset;
  }
  return std::string_view(window_).substr(static_cast<std::size_t>(offset - begins_));
}

std::string source::read(std::uint64_t offset, std::size_t count) {
  if (!in_) return std::string(at(offset).substr(0, count));
  std::string out(count, '\0');
  in_->read_at(offset, out.data(), count);
  return out;
}

}  // namespace ruvo::zip
