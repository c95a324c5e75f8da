// SPDX-License-Identifier: BSL-1.0

// The status line, the fields, and bodies of a known length, in chunks, or up to the end of the stream.

#include "http_parser.hpp"

#include <ruvo/exc.hpp>

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace transport {

namespace {

[[noreturn]] void fail(const wchar_t* what) { throw ruvo::exc::RunTime(what); }

std::string in_lower_case(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return out;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(" \t"), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

/// A number that is the whole of a text, without a sign.
std::optional<unsigned long long> number_in(std::string_view text, int base) {
  unsigned long long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

bool is_token(std::string_view text) {
  constexpr std::string_view separators = "\"(),/:;<=>?@[\\]{}";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
    return c > ' ' && c < 127 && separators.find(c) == separators.npos;
  });
}

bool is_value(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c == '\t' || (static_cast<unsigned char>(c) >= ' ' && c != 127); });
}

}  // namespace

void response_parser::take(std::string_view bytes) {
  while (!bytes.empty() && !done()) {
    if (state_ == state::sized || state_ == state::to_the_end || state_ == state::chunk) {
      bytes.remove_prefix(take_body(bytes));
      continue;
    }
    const std::size_t end = bytes.find('\n'), part = std::min(end, bytes.size());
    if (state_ != state::chunk_size && state_ != state::chunk_end) head_size_ += part + (end != bytes.npos);
    line_ += bytes.substr(0, part);
    if (head_size_ > most_.head || line_.size() > most_.head) fail(L"the head is too long");
    if (end == bytes.npos) return;
    bytes.remove_prefix(part + 1);
    if (line_.ends_with('\r')) line_.pop_back();
    take_line(std::exchange(line_, std::string()));
  }
}

void response_parser::end() {
  if (state_ == state::to_the_end) state_ = state::done;
  if (!done()) fail(L"the stream ended too early");
}

void response_parser::take_line(std::string line) {
  switch (state_) {
    case state::status:
      return take_status(line);
    case state::chunk_size:
      return take_chunk_size(line);
    case state::chunk_end:
      if (!line.empty()) fail(L"a chunk has another length");
      state_ = state::chunk_size;
      return;
    case state::trailers:
      if (line.empty()) state_ = state::done;
      return;
    default:
      return line.empty() ? begin_body() : take_field(line);
  }
}

void response_parser::take_status(const std::string& line) {
  const bool known = line.starts_with("HTTP/1.") && line.size() >= 12 && line[7] >= '0' && line[7] <= '9';
  const auto code = known ? number_in(std::string_view(line).substr(9, 3), 10) : std::nullopt;
  if (!code || *code < 100 || line[8] != ' ' || (line.size() > 12 && line[12] != ' ') || !is_value(line))
    fail(L"no status line");
  status = static_cast<int>(*code);
  reason = trimmed(std::string_view(line).substr(std::min<std::size_t>(13, line.size())));
  state_ = state::fields;
}

void response_parser::take_field(const std::string& line) {
  const std::string_view text = line;
  if (!is_value(text)) fail(L"a field with control characters");
  if (text.front() == ' ' || text.front() == '\t') {  // goes on with the one before
    if (fields.empty()) fail(L"a field without a name");
    ((fields.back().second += ' ') += trimmed(text));
    return;
  }
  const std::size_t colon = text.find(':');
  if (colon == text.npos || !is_token(text.substr(0, colon))) fail(L"a field without a name");
  fields.emplace_back(text.substr(0, colon), trimmed(text.substr(colon + 1)));
}

/// RFC 9112, 6.3. What would leave the length open to guessing is refused.
void response_parser::begin_body() {
  std::optional<std::string> length;
  bool chunked = false;
  for (const auto& [name, value] : fields) {
    const std::string lower = in_lower_case(name);
    if (lower == "transfer-encoding") {
      if (chunked || in_lower_case(value) != "chunked") fail(L"an unknown transfer encoding");
      chunked = true;
    } else if (lower == "content-length") {
      if (length && *length != value) fail(L"two lengths");
      length = value;
    }
  }
  if (status < 200 && status != 101) {  // the answer comes behind this one
    fields.clear();
    state_ = state::status;
    return;
  }
  if (to_head_ || status < 200 || status == 204 || status == 304) {
    state_ = state::done;
  } else if (chunked) {
    if (length) fail(L"a length beside chunks");
    state_ = state::chunk_size;
  } else if (length) {
    const auto bytes = number_in(*length, 10);
    if (!bytes) fail(L"the length is no number");
    if (*bytes > most_.body) fail(L"the body is too long");
    left_ = *bytes;
    state_ = left_ ? state::sized : state::done;
  } else {
    state_ = state::to_the_end;
  }
}

void response_parser::take_chunk_size(const std::string& line) {
  const auto size = number_in(trimmed(std::string_view(line).substr(0, line.find(';'))), 16);
  if (!size) fail(L"a chunk without a length");
  if (*size > most_.body - body.size()) fail(L"the body is too long");
  left_ = *size;
  state_ = left_ ? state::chunk : state::trailers;
}

std::size_t response_parser::take_body(std::string_view bytes) {
  const bool open = state_ == state::to_the_end;
  const std::size_t part =
      open ? bytes.size() : static_cast<std::size_t>(std::min<unsigned long long>(bytes.size(), left_));
  if (part > most_.body - body.size()) fail(L"the body is too long");
  body += bytes.substr(0, part);
  if (open) return part;
  left_ -= part;
  if (!left_) state_ = state_ == state::chunk ? state::chunk_end : state::done;
  return part;
}

}  // namespace transport
