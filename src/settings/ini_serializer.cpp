// SPDX-License-Identifier: BSL-1.0

// Settings as bundles, and the dialects that have names.

#include <ruvo/bundle.hpp>
#include <ruvo/ini.hpp>

#include <string>
#include <utility>

namespace ruvo {

ini_dialect ini_dialect::windows() {
  ini_dialect made;
  made.comment_starts = L";";
  made.quotes = L"\"'";
  made.duplicates = ini_duplicates::first;
  return made;
}

ini_dialect ini_dialect::python() {
  ini_dialect made;
  made.separators = L"=:";
  made.quotes.clear();
  made.line_end = L"\n";
  made.duplicates = ini_duplicates::error;
  made.continuation = ini_continuation::indented;
  made.case_sensitive_sections = true;
  return made;
}

ini_dialect ini_dialect::dotenv() {
  ini_dialect made;
  made.comment_starts = made.inline_comments = L"#";
  made.quotes = L"\"'";
  made.key_prefix = L"export";
  made.line_end = L"\n";
  made.continuation = ini_continuation::quoted;
  made.escapes = ini_escapes::quoted;
  made.has_sections = false;
  made.case_sensitive_keys = true;
  return made;
}

ini_dialect ini_dialect::properties() {
  ini_dialect made;
  made.comment_starts = L"#!";
  made.separators = L"=:";
  made.quotes.clear();
  made.line_end = L"\n";
  made.continuation = ini_continuation::backslash;
  made.escapes = ini_escapes::everywhere;
  made.has_sections = false;
  made.case_sensitive_keys = true;
  made.bare_keys = made.blank_separates = made.keeps_last_blanks = true;
  return made;
}

namespace serializer {

namespace {

ini_dialect without_sections(ini_dialect dialect) {
  dialect.has_sections = false;
  return dialect;
}

}  // namespace

ini::ini() = default;
ini::ini(const ini_dialect& dialect) : dialect_(dialect) {}
ini::ini(const ini& other) = default;
ini& ini::operator=(const ini& other) = default;
ini::~ini() = default;

bool ini::serialize(std::wstring& out, const bundle& in, exception* err, int) {
  ini_file made(dialect_);
  exception failure;
  if (made.set(in, failure)) {
    out = made.text();
    return false;
  }
  failure.copy_on(err);
  return true;
}

bool ini::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  ini_file read(dialect_);
  exception failure;
  if (read.parse(std::wstring_view(in), failure) && read.check(failure) && read.to_bundle(out, failure))
    return false;
  failure.copy_on(err);
  return true;
}

key_value::key_value() : ini(ini_dialect::dotenv()) {}
key_value::key_value(const ini_dialect& dialect) : ini(without_sections(dialect)) {}
key_value::key_value(const key_value& other) = default;
key_value& key_value::operator=(const key_value& other) = default;
key_value::~key_value() = default;

}  // namespace serializer

}  // namespace ruvo
