// SPDX-License-Identifier: BSL-1.0

// Writing well-formed XML. The input is a value, a line each step: {name or [name opens a bundle or list,
// } closes it, @name=text is a quality of the next value, name=text is a text, a name alone null. The first
// line has the options and the name of the root. What is written is read, and indentation changes nothing.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/well_formed_xml.hpp>
#include <ruvo/xml_writing.hpp>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz.hpp"
#include "support/xml_outcome.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::read_well_formed_xml;
using ruvo::serializer::write_well_formed_xml;
using ruvo::serializer::xml_write_options;

namespace {

class value_maker {
 public:
  void take(std::wstring_view line) {
    const wchar_t step = line.empty() ? L'=' : line[0];
    const std::size_t sign = line.find(L'=');
    const std::wstring name(line.substr(0, sign));
    xvar text;
    if (sign != line.npos) text = std::wstring(line.substr(sign + 1));
    if (step == L'{' || step == L'[') {
      open_.push_back({name.substr(1), step == L'[', std::exchange(qualities_, {}), {}, {}});
    } else if (step == L'}') {
      if (open_.size() > 1) close();
    } else if (step == L'@') {
      qualities_[name.substr(1)] = static_cast<const ruvo::var&>(text);
    } else {
      text.add_qualities(std::exchange(qualities_, {}).get_qualities());
      add(name, std::move(text));
    }
  }
  xvar made() {
    while (open_.size() > 1) close();
    return open_[0].members;
  }

 private:
  struct container {
    std::wstring name;
    bool is_list = false;
    xvar qualities;
    bundle members;
    list rows;
  };

  void add(const std::wstring& name, xvar value) {
    if (open_.back().is_list) {
      open_.back().rows.push_back(std::move(value));
    } else {
      open_.back().members[name] = std::move(value);
    }
  }
  void close() {
    container closed = std::move(open_.back());
    open_.pop_back();
    xvar value = closed.is_list ? xvar(std::move(closed.rows)) : xvar(std::move(closed.members));
    value.add_qualities(closed.qualities.get_qualities());
    add(closed.name, std::move(value));
  }

  std::vector<container> open_{1};
  xvar qualities_;
};

xml_write_options options_from(std::wstring_view line) {
  xml_write_options options;
  const unsigned bits = line.empty() ? 0 : static_cast<unsigned>(line[0]);
  options.rows = static_cast<ruvo::serializer::xml_rows>(bits % 3);
  options.cdata = (bits & 4) != 0;
  options.sorted = (bits & 8) != 0;
  options.names = static_cast<ruvo::serializer::xml_names>(bits >> 4 & 1);
  options.characters = static_cast<ruvo::serializer::xml_characters>(bits >> 5 & 1);
  options.folded = options.namespaces = (bits & 64) != 0;
  options.declaration = false;
  if (!line.empty()) options.root = line.substr(1);
  return options;
}

std::wstring outcome_of(const std::wstring& text, bool mixed, bundle* read = nullptr) {
  ruvo::serializer::xml_read_options options;
  options.mixed_text = mixed;
  options.limits.depth = static_cast<std::size_t>(-1);
  bundle own;
  bundle& document = read ? *read : own;
  FUZZ_CHECK(!read_well_formed_xml(document, text, nullptr, options));
  return xml_outcome::text_of(document);
}

void check_failure(const xvar& value, const xml_write_options& options) {
  std::string text = "before";
  ruvo::exception error;
  FUZZ_CHECK(write_well_formed_xml(text, value, &error, options));
  FUZZ_CHECK(text == "before");
  const unsigned long code = error.get_rango() * 1000 + error.get_code();
  FUZZ_CHECK(code >= 7007 && code <= 7010);
  const bool takes_names = options.names == ruvo::serializer::xml_names::escaped;
  FUZZ_CHECK(code != 7007 || !takes_names || options.namespaces || error.get_detail() == L"\"\"");
  FUZZ_CHECK(code != 7008 || options.characters == ruvo::serializer::xml_characters::failure);
  FUZZ_CHECK(code != 7009 || options.namespaces);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;  // the comparison copies level by level
  const std::wstring text = fuzz::wide(data, size);
  std::wstring_view rest = text;
  const auto line = [&rest] {
    const std::wstring_view taken = rest.substr(0, rest.find(L'\n'));
    rest.remove_prefix(std::min(rest.size(), taken.size() + 1));
    return taken;
  };
  xml_write_options options = options_from(line());
  value_maker maker;
  while (!rest.empty()) maker.take(line());
  const xvar value = maker.made();

  std::wstring written, indented, again;
  std::string bytes;
  if (write_well_formed_xml(written, value, nullptr, options)) {
    check_failure(value, options);
    return 0;
  }
  FUZZ_CHECK(!write_well_formed_xml(bytes, value, nullptr, options));
  FUZZ_CHECK(ruvo::texto::to_utf_16(bytes) == written);
  options.indent = 1;
  FUZZ_CHECK(!write_well_formed_xml(indented, value, nullptr, options));
  FUZZ_CHECK(outcome_of(indented, false) == outcome_of(written, false));
  if (written.find(L"__") != written.npos) return 0;  // what looks like a mark is not written again
  // What was read is written to the same, names and all.
  for (const bool mixed : {false, true}) {
    bundle read;
    const std::wstring outcome = outcome_of(written, mixed, &read);
    xml_write_options plain;
    plain.namespaces = false;
    FUZZ_CHECK(!write_well_formed_xml(again, read, nullptr, plain));
    FUZZ_CHECK(outcome_of(again, mixed) == outcome);
  }
  return 0;
}
