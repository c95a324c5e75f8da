// SPDX-License-Identifier: BSL-1.0

// MIME types by extension.

#include <ruvo/files/whole.hpp>
#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <functional>
#include <iterator>
#include <string_view>

namespace ruvo::files {

namespace {

struct row {
  std::wstring_view extension;
  std::wstring_view type;
};

constexpr row table[] = {
#define X(extension, type) {extension, type},
#include "files/mime_table.inc"
#undef X
};
static_assert(std::ranges::adjacent_find(table, std::ranges::greater_equal(), &row::extension) ==
              std::end(table));

}  // namespace

std::wstring get_mimetype(std::wstring name) {
  texto::to_lowercase(name);
  const std::wstring_view extension = std::wstring_view(name).substr(std::min(name.rfind(L'.'), name.size()));
  const row* const found = std::ranges::lower_bound(table, extension, {}, &row::extension);
  if (found == std::end(table) || found->extension != extension) return L"application/octet-stream";
  return std::wstring(found->type);
}

}  // namespace ruvo::files
