#include <ruvo/serializer.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>

#include "serializer/deserialize.hpp"

namespace ruvo::serializer {

namespace {

std::unique_ptr<iwriter> make_writer(bool ordered, bool escaped) {
  if (!escaped) return std::make_unique<oauth_writer>();
  if (ordered) return std::make_unique<json_ordered_writer>();
  return std::make_unique<json_unordered_writer>();
}

}  // namespace

json::json() : json(true, false, true) {}

json::json(bool ordered, bool tabulated, bool escaped)
    : reader_(std::make_unique<json_reader>()), writer_(make_writer(ordered, escaped)) {
  writer_->set_tabulated(tabulated);
}

json::~json() = default;

bool json::serialize(std::wstring& out, const bundle& in, exception* err, int options) {
  return writer_->write(out, in, err, options);
}

bool json::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return deserialize_with(*reader_, out, in, err, [this](const wchar_t* at, const wchar_t* end) {
    return reader_->take_tokens(at, end);
  });
}

void json::limit_indentation(unsigned long levels) noexcept { writer_->limit_indentation(levels); }

namespace {

std::wstring indented(std::wstring_view text, std::size_t most_levels) {
  constexpr std::size_t step = 4;
  std::wstring out;
  std::size_t level = 0;
  bool in_string = false;
  const auto new_line = [&] {
    out += L'\n';
    out.append(step * std::min(level, most_levels), L' ');
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t c = text[at];
    if (c == L'"' && (at == 0 || text[at - 1] != L'\\')) in_string = !in_string;
    const bool closes = !in_string && (c == L'}' || c == L']');
    if (closes) {
      if (level > 0) --level;  // an unmatched bracket stays at the margin
      new_line();
    }
    out += c;
    if (in_string || closes) continue;
    if (c == L'{' || c == L'[') {
      ++level;
      new_line();
    } else if (c == L',') {
      new_line();
    } else if (c == L':') {
      out += L' ';
    }
  }
  return out;
}

}  // namespace

std::wstring json::printJsonFormateado(std::wstring text) {
  return indented(text, std::numeric_limits<std::size_t>::max());
}

std::wstring json::printJsonFormateado(std::wstring text, unsigned long levels) {
  return indented(text, levels);
}

}  // namespace ruvo::serializer
