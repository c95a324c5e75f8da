// SPDX-License-Identifier: BSL-1.0

// Addresses: a text is read exactly when it has one of the forms, and what was read reads as itself; names
// for headers stay in words of one line. The first line is the name, the second the mail address.

#include <ruvo/bundle.hpp>
#include <ruvo/smtp/address.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>

#include "fuzz.hpp"

using ruvo::smtp::address;

namespace {

constexpr const wchar_t* named =
    LR"(^\"*.*\"*\s<[_A-Za-z0-9\-+]+(\.[_A-Za-z0-9\-]+)*@[A-Za-z0-9\-]+(\.[A-Za-z0-9]+)*(\.[A-Za-z]{2,})>$)";
constexpr const wchar_t* bare =
    LR"(^<[_A-Za-z0-9\-+]+(\.[_A-Za-z0-9\-]+)*@[A-Za-z0-9\-]+(\.[A-Za-z0-9]+)*(\.[A-Za-z]{2,})>$)";

void check_text(const std::wstring& text) {
  address read(L"old", L"old");
  const bool has_form = ruvo::texto::match(text, named) || ruvo::texto::match(text, bare);
  FUZZ_CHECK(read.deserialize(text) == has_form);
  if (!has_form) {
    FUZZ_CHECK(read.to_string() == L"old <old>");
    return;
  }
  FUZZ_CHECK(read.check() && text.ends_with(L"<" + read.get_mail() + L">"));
  address again;
  FUZZ_CHECK(again.deserialize(read.to_string()));
  FUZZ_CHECK(again.to_string() == read.to_string() && again == read);
}

/// Words of printable ASCII in lines of at most 75 characters.
void check_words(const std::string& words) {
  for (std::size_t at = 0; at < words.size();) {
    const std::size_t end = std::min(words.find("\r\n ", at), words.size());
    const std::string word = words.substr(at, end - at);
    FUZZ_CHECK(word.size() <= 75 && word.starts_with("=?") && word.ends_with("?="));
    for (const char c : word) FUZZ_CHECK(c > ' ' && c <= '~');
    at = end + 3;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring all = fuzz::wide(data, size);
  check_text(all);
  const std::size_t line = std::min(all.find(L'\n'), all.size());
  const address of(all.substr(0, line), all.substr(std::min(line + 1, all.size())));
  check_text(of.to_string());
  const address by_bundle = ruvo::bundle(of), by_xvar(ruvo::xvar{of});
  for (const address& copy : {by_bundle, by_xvar}) {
    FUZZ_CHECK(copy == of && copy.get_name() == of.get_name());
    FUZZ_CHECK(copy.to_string() == of.c_str() || of.to_string().find(L'\0') != all.npos);
  }
  FUZZ_CHECK(of.get_mail().ends_with(of.get_domain()));
  const std::string encoded = of.q_encoded();
  const std::size_t mail = encoded.size() - ruvo::texto::to_utf_8(of.get_mail()).size() - 2;
  if (mail) check_words(encoded.substr(0, mail - 1));
  return 0;
}
