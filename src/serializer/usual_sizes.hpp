// SPDX-License-Identifier: BSL-1.0
#pragma once

// How large the containers of a document are.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// Documents repeat themselves: a new container makes room for as many values as the last one at its depth
/// got.
class usual_sizes {
 public:
  /// Of the container at a depth, which counts from 1; `unknown` where none is complete yet.
  std::size_t at(std::size_t depth, std::size_t unknown) const noexcept {
    return depth > 0 && depth <= sizes_.size() ? sizes_[depth - 1] : unknown;
  }

  /// Remembers the size of a container that is complete.
  void note(std::size_t depth, std::size_t size) {
    if (sizes_.size() < depth) sizes_.resize(depth);
    sizes_[depth - 1] = static_cast<std::uint32_t>(std::min(size, most));
  }
  /// The same for a bundle, which also gives back the room that it doesn't need.
  void fit(std::size_t depth, bundle& complete) {
    using detail::bundle_access;
    if (!complete.empty())
      bundle_access::set(complete, detail::bundle_store::fitted(bundle_access::store(complete)));
    note(depth, complete.size());
  }

 private:
  static constexpr std::size_t most = 64;  // values for which room is made at once

  std::vector<std::uint32_t> sizes_;
};

}  // namespace ruvo::serializer
