// SPDX-License-Identifier: BSL-1.0
#pragma once

// Members by the spelling of their keys, as standard JSON knows them, and the tokens of JSON Pointers.

#include <ruvo/bundle.hpp>

#include <string>
#include <string_view>

#include "values/bundle_store.hpp"
#include "values/folded_key.hpp"

namespace ruvo::serializer {

/// The spelling of an entry's key, which a walk gives as entry::first.
inline const detail::shared_key& shared(const std::wstring& key) noexcept {
  return static_cast<const detail::shared_key&>(key);
}

/// The key itself, folded as operator[] and its like do it, or as paths do.
template <class Folded>
bundle::entry* entry_of(const detail::bundle_store* in, std::wstring_view name) {
  return in ? in->find(detail::key_view(Folded(name).view())) : nullptr;
}

/// The entry that is spelled so, or null. Keys that paths made are folded in accented letters, too; so an
/// entry may be under either of two keys, and where there are both, the one that operator[] finds is first.
inline bundle::entry* find_spelled(const detail::bundle_store* in, std::wstring_view name) {
  const auto spelled = [name](bundle::entry* e) { return e && e->spelling() == name ? e : nullptr; };
  bundle::entry* const direct = spelled(entry_of<detail::folded_key>(in, name));
  return direct ? direct : spelled(entry_of<detail::folded_path>(in, name));
}

/// Appends a token to a JSON Pointer.
inline void append_token(std::wstring& out, std::wstring_view token) {
  out += L'/';
  for (const wchar_t c : token) {
    if (c == L'~' || c == L'/') {
      out += c == L'~' ? L"~0" : L"~1";
    } else {
      out += c;
    }
  }
}

}  // namespace ruvo::serializer
