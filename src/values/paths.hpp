// SPDX-License-Identifier: BSL-1.0
#pragma once

// Paths of bundles beside each other.

#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <string_view>

namespace ruvo::detail {

/// Whether the first path leads to what the second one leads to, or into it: "a.b" from "a", and all paths
/// from the empty one. In whatever case both are written.
inline bool leads_through(std::wstring_view path, std::wstring_view above, wchar_t separator) {
  if (above.empty()) return true;
  if (path.size() < above.size()) return false;
  if (path.size() > above.size() && path[above.size()] != separator) return false;
  return std::equal(above.begin(), above.end(), path.begin(),
                    [](wchar_t a, wchar_t b) { return texto::to_lowercase(a) == texto::to_lowercase(b); });
}

}  // namespace ruvo::detail
