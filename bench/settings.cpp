// SPDX-License-Identifier: BSL-1.0

// Settings in INI files, against the system's own calls.
//
//   bench_settings

#include <ruvo/binary.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/files/whole.hpp>
#include <ruvo/ini.hpp>

#include <cstdio>
#include <string>

#include "support/harness.hpp"
#include "support/system_files.hpp"

namespace {

constexpr int sections = 100, keys = 300;

std::string document() {
  std::string out = "; settings\r\n";
  for (int s = 0; s < sections; ++s) {
    out += "\r\n[section " + std::to_string(s) + "]\r\n";
    for (int k = 0; k < keys; ++k)
      out += "some.key" + std::to_string(k) + " = the value " + std::to_string(s * k) + "\r\n";
  }
  return out;
}

const std::wstring last_section = L"section " + std::to_wstring(sections - 1),
                   last_key = L"some.key" + std::to_wstring(keys - 1),
                   last_value = L"the value " + std::to_wstring((sections - 1) * (keys - 1));

void expect(bool good, const char* what) {
  if (!good) std::printf("failed: %s\n", what);
}

void compare_reading(bench::table& results, const ruvo::file& path) {
  const auto with_kesta = [&] {
    ruvo::ini_file settings(ruvo::ini_dialect::windows());
    ruvo::exception err;
    expect(settings.read(path, err) && settings.get(last_section, last_key) == last_value, "kesta");
  };
  const auto with_system = [&] {
    expect(bench::setting_with_system(path, last_section, last_key) == last_value, "system");
  };
  results.row("read settings, get one", "INI", {static_cast<double>(path.size()), bench::amount::characters},
              {{"kesta", with_kesta}, {"system", with_system}}, {{"system", 5}});
}

void compare_saving(bench::table& results, const ruvo::file& path) {
  ruvo::ini_file settings;
  ruvo::exception err;
  expect(settings.read(path, err), "read");
  const ruvo::binary bytes = ruvo::files::read(path);
  int value = 0;
  const auto with_settings = [&] {
    expect(settings.set(last_section, last_key, ++value, err) && settings.save(err), "save");
  };
  results.row("set one, save", "INI", {1, bench::amount::operations},
              {{"kesta", with_settings}, {"files::write", [&] { ruvo::files::write(bytes, path); }}},
              {{"files::write", 0.83}});
}

}  // namespace

int main() {
  bench::table results("settings");  // the peers: the private profile, and whole files of our own
  const ruvo::file path =
      ruvo::files::write(ruvo::binary(document()), ruvo::files::get_temporal_file(L"bench", L"", L"ini"));
  compare_reading(results, path);
  compare_saving(results, path);
  path.erase();
}
