// SPDX-License-Identifier: BSL-1.0

// What is added to the end of a file that others may be adding to.

#include <ruvo/exc.hpp>
#include <ruvo/files/lines.hpp>

#include <string>
#include <string_view>

#include "base/utf.hpp"
#include "system/appended_file.hpp"

namespace ruvo::files {

namespace {

constexpr std::string_view low_first = "\xFF\xFE", high_first = "\xFE\xFF";

std::string in_utf_16(std::wstring_view text, bool is_low_first) {
  std::string out;
  out.reserve(2 * text.size());
  for (const wchar_t c : text) {
    const auto unit = static_cast<char16_t>(c);
    const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
    out += is_low_first ? low : high;
    out += is_low_first ? high : low;
  }
  return out;
}

/// The text in the encoding that the start of the file speaks of.
std::string encoded_for(platform::appended_file& out, std::wstring_view text) {
  char start[low_first.size()];
  const std::string_view mark(start, out.read_start(start, sizeof start));
  if (mark == low_first || mark == high_first) return in_utf_16(text, mark == low_first);
  return texto::to_utf_8(text);
}

/// Adds what `content` makes for the open file; copies a failure to `err`. True is success.
template <class Content>
bool is_added(const file& path, exception& err, Content content) {
  platform::appended_file out(path);
  if (out && out.append(content(out))) return true;
  if (path.is_directory()) {
    exc::fileExpectedFile(path).copy_on(err);
  } else {
    exc::fileOsStream(path).copy_on(err);
  }
  return false;
}

/// The form that throws of one that reports.
template <class Append>
void add_or_throw(Append append) {
  exception failure;
  if (!append(failure)) failure.raise();
}

}  // namespace

bool append_text(const file& path, std::wstring_view text, exception& err) {
  return is_added(path, err, [text](platform::appended_file& out) { return encoded_for(out, text); });
}

bool append_line(const file& path, std::wstring_view line, exception& err) {
  std::wstring whole(line);
  whole += L"\r\n";
  return append_text(path, whole, err);
}

bool append_bytes(const file& path, std::string_view bytes, exception& err) {
  return is_added(path, err, [bytes](const platform::appended_file&) { return bytes; });
}

void append_text(const file& path, std::wstring_view text) {
  add_or_throw([&](exception& err) { return append_text(path, text, err); });
}
void append_line(const file& path, std::wstring_view line) {
  add_or_throw([&](exception& err) { return append_line(path, line, err); });
}
void append_bytes(const file& path, std::string_view bytes) {
  add_or_throw([&](exception& err) { return append_bytes(path, bytes, err); });
}

}  // namespace ruvo::files
