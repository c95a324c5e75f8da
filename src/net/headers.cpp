// SPDX-License-Identifier: BSL-1.0

// The header table of requests and responses.

#include <ruvo/http.hpp>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"

namespace ruvo::http {

// --- names

header_name::header_name(const std::string& name) { widen(name); }
header_name::header_name(const char* name) { widen(name ? name : ""); }
header_name::~header_name() = default;

void header_name::widen(std::string_view name) {
  const bool fits = name.size() <= std::size(small_) &&
                    std::all_of(name.begin(), name.end(), [](char c) { return (c & 0x80) == 0; });
  if (fits) {
    std::copy(name.begin(), name.end(), small_);
    view_ = {small_, name.size()};
  } else {
    large_ = texto::to_utf_16(name);
    view_ = large_;
  }
}

bool header_order::operator()(std::wstring_view a, std::wstring_view b) const noexcept {
  return texto::before_in_lower_case(a, b);
}

// --- the table

header_table::header_table() noexcept = default;
header_table::header_table(const wchar_t* content_type) {
  headers_.make() = {{L"Accept", L"*/*"}, {L"Content-Type", content_type}};
}
header_table::header_table(const header_table& other) = default;
header_table::header_table(header_table&& other) noexcept = default;
header_table& header_table::operator=(const header_table& other) = default;
header_table& header_table::operator=(header_table&& other) noexcept = default;
header_table::~header_table() = default;

std::wstring& header_table::operator[](const header_name& name) {
  map_type& headers = headers_.make();
  const iterator at = headers.lower_bound(name.view());
  const bool present = at != headers.end() && !header_order()(name.view(), at->first);
  return (present ? at : headers.emplace_hint(at, name.view(), std::wstring()))->second;
}

std::wstring& header_table::at(const header_name& name) {
  return const_cast<std::wstring&>(std::as_const(*this).at(name));
}
const std::wstring& header_table::at(const header_name& name) const {
  const const_iterator found = find(name);
  if (found == end()) throw detail::missing_key(name.view());
  return found->second;
}

header_table::iterator header_table::find(const header_name& name) noexcept {
  return headers_.reach().find(name.view());
}
header_table::const_iterator header_table::find(const header_name& name) const noexcept {
  return headers_.get().find(name.view());
}
header_table::size_type header_table::count(const header_name& name) const noexcept {
  return headers_.get().count(name.view());
}
header_table::size_type header_table::erase(const header_name& name) noexcept {
  const iterator found = find(name);
  if (found == end()) return 0;
  headers_.reach().erase(found);
  return 1;
}

header_table::iterator header_table::begin() noexcept { return headers_.reach().begin(); }
header_table::iterator header_table::end() noexcept { return headers_.reach().end(); }
header_table::const_iterator header_table::begin() const noexcept { return headers_.get().begin(); }
header_table::const_iterator header_table::end() const noexcept { return headers_.get().end(); }
header_table::size_type header_table::size() const noexcept { return headers_.get().size(); }
header_table::size_type header_table::max_size() const noexcept { return headers_.get().max_size(); }
void header_table::clear() noexcept {
  if (!empty()) headers_.reach().clear();  // the shared empty table is never written
}

bool header_table::same_headers(const header_table& other) const noexcept {
  return headers_.get() == other.headers_.get();
}

std::wstring header_table::text_form(std::wstring_view body) const {
  std::wstring text;
  for (const auto& [name, value] : headers_.get()) {
    text += name;
    text += L": ";
    text += value;
    text += L"\r\n";
  }
  text += empty() ? L"\r\n\r\n" : L"\r\n";
  text += body;
  text += L"\r\n";
  return text;
}

}  // namespace ruvo::http
