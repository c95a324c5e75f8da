// SPDX-License-Identifier: BSL-1.0

// Settings: any bytes are saved as they were read; a change changes what it is about and reads back, in each
// dialect; what can be a bundle comes back from its text.

#include <ruvo/ini.hpp>
#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "fuzz.hpp"

using ruvo::exception;
using ruvo::ini_dialect;
using ruvo::ini_file;

namespace {

/// Section, key, comment and values; of a section without a key what is said of it.
using said = std::tuple<std::wstring, std::wstring, std::wstring, std::vector<std::wstring>>;

ini_dialect dialect_of(unsigned number) {
  ini_dialect made;
  switch (number % 7) {
    case 0:
      return ini_dialect::windows();
    case 1:
      return ini_dialect::python();
    case 2:
      return ini_dialect::dotenv();
    case 3:
      return ini_dialect::properties();
    case 4:
      made.duplicates = ruvo::ini_duplicates::list;
      break;
    case 5:  // a mixture
      made = ini_dialect::dotenv();
      made.has_sections = made.bare_keys = true;
      made.inline_comments = L";#";
      break;
    default:
      break;
  }
  return made;
}

std::vector<said> all_of(const ini_file& file) {
  std::vector<said> out;
  std::vector<std::wstring> sections = file.sections();
  sections.insert(sections.begin(), L"");
  for (const std::wstring& section : sections) {
    FUZZ_CHECK(file.has(section));
    out.emplace_back(section, L"", file.comment(section), std::vector<std::wstring>());
    for (const std::wstring& key : file.keys(section)) {
      const std::vector<std::wstring> values = file.get_all(section, key);
      FUZZ_CHECK(!values.empty() && values.back() == file.get(section, key, L"?"));
      out.emplace_back(section, key, file.comment(section, key), values);
    }
  }
  return out;
}

/// What is saved is read as what is there. False where it cannot be saved.
bool is_kept(const ini_file& file, const ini_dialect& dialect) {
  std::string bytes;
  exception failure;
  if (!file.bytes(bytes, failure)) return false;
  ini_file again(dialect);
  FUZZ_CHECK(again.parse(std::string_view(bytes), failure));
  FUZZ_CHECK(again.text() == file.text());
  FUZZ_CHECK(all_of(again) == all_of(file));
  return true;
}

/// Between what both texts begin with and what both end with, no line of the old one ends.
void check_rest(const std::wstring& before, const std::wstring& after) {
  const auto first = std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first;
  const auto last =
      std::mismatch(before.rbegin(), std::reverse_iterator(first), after.rbegin(), after.rend());
  const std::wstring changed(first, std::max(first, last.first.base()));
  FUZZ_CHECK(changed.find_first_of(L"\r\n") == changed.npos);
}

void check_change(const ini_file& file, const ini_dialect& dialect, const std::wstring& value,
                  unsigned which) {
  std::vector<said> all = all_of(file);
  said& chosen = all[which % all.size()];
  const auto& [section, key, comment, values] = chosen;
  ini_file made(file);
  exception failure;
  if (key.empty()) {
    if (made.set(section, value, L"1", failure)) FUZZ_CHECK(made.get(section, value) == L"1");
  } else if (!made.set(section, key, value, failure)) {
    FUZZ_CHECK(made.text() == file.text());
  } else {
    FUZZ_CHECK(made.get(section, key) == value && made.comment(section, key) == comment);
    const bool keeps_lines = dialect.continuation == ruvo::ini_continuation::none && values.size() == 1;
    if (keeps_lines) check_rest(file.text(), made.text());
    if (dialect.duplicates == ruvo::ini_duplicates::list)
      std::get<3>(chosen) = {value};
    else
      std::get<3>(chosen).back() = value;
    std::vector<said> now = all_of(made);
    for (std::vector<said>* const rows : {&now, &all}) {
      if (keeps_lines) continue;  // otherwise a comment may now stand above another key
      for (said& each : *rows) std::get<2>(each).clear();
    }
    FUZZ_CHECK(now == all);
  }
  is_kept(made, dialect);
}

void check_structure(const ini_file& file, const ini_dialect& dialect, const std::wstring& name,
                     unsigned which) {
  std::vector<said> all = all_of(file);
  const auto [section, key, comment, values] = all[which % all.size()];
  ini_file made(file);
  exception failure;
  const auto expect = [&](bool done) {
    if (!done) FUZZ_CHECK(made.text() == file.text());
    is_kept(made, dialect);
    made = file;
    return done;
  };
  if (key.empty()) {
    if (made.rename(section, name, failure))
      FUZZ_CHECK(made.has(name) && made.keys(name) == file.keys(section));
    expect(made.text() != file.text());
    if (made.erase(section, failure)) FUZZ_CHECK(made.keys(section).empty());
  } else {
    if (made.rename(section, key, name, failure)) FUZZ_CHECK(made.get_all(section, name) == values);
    expect(made.text() != file.text());
    if (made.erase(section, key, failure)) FUZZ_CHECK(!made.has(section, key));
  }
  expect(made.text() != file.text());
  if (made.set_comment(section, key, name, failure)) FUZZ_CHECK(all_of(made).size() == all.size());
  expect(made.text() != file.text());
  if (made.set(name, L"k", L"v", failure)) FUZZ_CHECK(made.get(name, L"k") == L"v");
  is_kept(made, dialect);
}

void check_bundle(const ini_file& file, const ini_dialect& dialect) {
  ruvo::serializer::ini ini(dialect);
  ruvo::bundle all, again;
  exception failure;
  std::wstring text;
  if (!file.to_bundle(all, failure) || ini.serialize(text, all)) return;
  FUZZ_CHECK(!ini.deserialize(again, text) && again == all);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const ini_dialect dialect = dialect_of(data[0]);
  const unsigned which = data[1];
  const std::string bytes = fuzz::narrow(data + 2, size - 2);
  const std::size_t tail = std::min<std::size_t>(size - 2, which / 16);
  const std::wstring value = fuzz::wide(data + size - tail, tail);
  ini_file file(dialect);
  exception failure;
  if (!file.parse(std::string_view(bytes), failure)) {
    FUZZ_CHECK(dialect.duplicates == ruvo::ini_duplicates::error);
    return 0;
  }
  std::string saved;
  FUZZ_CHECK(file.bytes(saved, failure) && saved == bytes);
  check_change(file, dialect, value, which);
  check_structure(file, dialect, value, which);
  check_bundle(file, dialect);
  return 0;
}
