// SPDX-License-Identifier: BSL-1.0
#pragma once

// The prefixes that the open elements of a document declare: Namespaces in XML 1.0.

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "serializer/xml/names.hpp"

namespace ruvo::serializer {

class xml_scopes {
 public:
  static constexpr std::wstring_view declaration = L"xmlns";

  /// Whether an attribute declares a prefix, or the namespace of names without one.
  static bool declares(const xml_name& attribute) noexcept {
    return attribute.prefix == 0 ? attribute.text == declaration : attribute.prefix_text() == declaration;
  }

  /// Takes a declaration; false if there may not be such a one.
  bool declare(const xml_name& attribute, std::wstring&& uri) {
    const bool has_prefix = attribute.prefix != 0;
    const std::wstring_view prefix = has_prefix ? attribute.text.substr(declaration.size() + 1) : L"";
    if (prefix == declaration || uri == of_declarations || (prefix == own) != (uri == of_own)) return false;
    if (has_prefix && uri.empty()) return false;
    const auto at = uris_.try_emplace(std::wstring(prefix)).first;
    at->second.push_back(std::move(uri));
    declared_.push_back(at);
    return true;
  }
  /// What the prefix stands for, or null.
  const std::wstring* uri_of(std::wstring_view prefix) const {
    if (prefix == own) return &of_own;
    const auto at = uris_.find(prefix);
    return at == uris_.end() || at->second.empty() ? nullptr : &at->second.back();
  }

  /// How many declarations hold, and back to so many.
  std::size_t size() const noexcept { return declared_.size(); }
  void shrink(std::size_t size) noexcept {
    for (; declared_.size() > size; declared_.pop_back()) declared_.back()->second.pop_back();
  }

 private:
  static constexpr std::wstring_view own = L"xml";
  static inline const std::wstring of_own = L"http://www.w3.org/XML/1998/namespace",
                                   of_declarations = L"http://www.w3.org/2000/xmlns/";

  std::map<std::wstring, std::vector<std::wstring>, std::less<>> uris_;  // the innermost last
  std::vector<decltype(uris_)::iterator> declared_;
};

}  // namespace ruvo::serializer
