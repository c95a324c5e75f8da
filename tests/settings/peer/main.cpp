// SPDX-License-Identifier: BSL-1.0

// settings_peer FILE: each line of the file is a list in JSON, of a text, a section, a key and a value. Reads
// the text as Python does, sets the key, and prints a list for each: whether the text could be read, all that
// it says, and the text after the change, null where it was refused; see peer.py.

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>

namespace {

ruvo::list answer_to(const ruvo::list& row) {
  ruvo::ini_file settings(ruvo::ini_dialect::python());
  ruvo::exception failure;
  const std::wstring text = row[0].to_string(), section = row[1].to_string();
  if (!settings.parse(std::wstring_view(text), failure) || !settings.check(failure)) return {false};
  ruvo::list all;
  for (const std::wstring& name : settings.sections()) {
    all.push_back(ruvo::list{name});
    for (const std::wstring& key : settings.keys(name))
      all.push_back(ruvo::list{name, key, settings.get(name, key)});
  }
  const bool is_set = settings.set(section, row[2].to_string(), row[3], failure);
  return {true, std::move(all), is_set ? ruvo::xvar(settings.text()) : ruvo::xvar()};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::string bytes;
  ruvo::exception failure;
  if (!ruvo::files::read(bytes, ruvo::file(argv[1]), failure)) return 2;
  std::istringstream lines(bytes);
  for (std::string line; std::getline(lines, line);) {
    ruvo::list row;
    std::wstring out;
    if (ruvo::serializer::read_standard_json(row, line, &failure)) return 1;
    if (ruvo::serializer::write_standard_json(out, answer_to(row), &failure)) return 1;
    std::printf("%s\n", ruvo::texto::to_utf_8(out).c_str());
  }
  return 0;
}
