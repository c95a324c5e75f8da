// SPDX-License-Identifier: BSL-1.0

// Which names and relative paths of others may be used below a folder.

#include <ruvo/exc.hpp>
#include <ruvo/files/safe_names.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/file_names.hpp"
#include "base/utf.hpp"

namespace ruvo::files {

namespace {

constexpr std::size_t longest_name = 255, longest_path = 32'000;
constexpr std::wstring_view separators = L"\\/";

bool is_separator(wchar_t c) noexcept { return separators.find(c) != separators.npos; }

/// Control characters in ASCII and beyond, and what the system takes for something else.
bool is_refused(wchar_t c) noexcept {
  constexpr std::wstring_view marks = L"<>\"|?*\\/";
  const auto code = static_cast<char16_t>(c);
  return texto::is_control(c) || (code >= 0x80 && code < 0xA0) || marks.find(c) != marks.npos;
}

bool has_lone_surrogate(std::wstring_view name) noexcept {
  for (std::size_t at = 0; at < name.size(); ++at) {
    if (!texto::is_surrogate(name[at])) continue;
    if (!texto::is_high_surrogate(name[at]) || at + 1 == name.size() ||
        !texto::is_low_surrogate(name[at + 1]))
      return true;
    ++at;
  }
  return false;
}

/// Takes the name before the next separator from the path.
std::wstring_view take_name(std::wstring_view& path) noexcept {
  const std::wstring_view name = path.substr(0, path.find_first_of(separators));
  path.remove_prefix(std::min(name.size() + 1, path.size()));
  return name;
}

/// Only separates names.
bool counts(std::wstring_view name) noexcept { return !name.empty() && name != L"."; }

std::wstring joined_names(std::wstring_view path) {
  std::wstring out;
  while (!path.empty()) {
    const std::wstring_view name = take_name(path);
    if (!counts(name)) continue;
    if (!out.empty()) out += L'\\';
    out += name;
  }
  return out;
}

}  // namespace

name_fault fault_of_name(std::wstring_view name) noexcept {
  if (name.empty()) return name_fault::empty;
  if (name == L"." || name == L"..") return name_fault::parent;
  if (name.size() > longest_name) return name_fault::too_long;
  if (std::any_of(name.begin(), name.end(), is_refused) || has_lone_surrogate(name))
    return name_fault::character;
  if (name.find(L':') != name.npos) return name_fault::stream;
  if (texto::is_device_name(name)) return name_fault::device;
  if (name.ends_with(L' ') || name.ends_with(L'.')) return name_fault::ending;
  return name_fault::none;
}

name_fault fault_of_path(std::wstring_view path) noexcept {
  if (path.size() > longest_path) return name_fault::too_long;
  if (texto::has_drive(path)) return name_fault::drive;
  if (!path.empty() && is_separator(path.front())) return name_fault::absolute;
  name_fault found = name_fault::empty;
  while (!path.empty()) {
    const std::wstring_view name = take_name(path);
    if (!counts(name)) continue;
    found = fault_of_name(name);
    if (found != name_fault::none) break;
  }
  return found;
}

std::wstring describe(name_fault fault) {
  switch (fault) {
    case name_fault::none:
      break;
    case name_fault::empty:
      return L"no contiene ningún nombre";
    case name_fault::parent:
      return L"contiene «..», que sale de la carpeta";
    case name_fault::absolute:
      return L"empieza por un separador";
    case name_fault::drive:
      return L"empieza por una unidad";
    case name_fault::stream:
      return L"contiene «:»";
    case name_fault::device:
      return L"contiene el nombre de un dispositivo";
    case name_fault::character:
      return L"contiene un carácter que no se admite en un nombre";
    case name_fault::ending:
      return L"contiene un nombre que termina en blanco o en punto";
    case name_fault::too_long:
      return L"es demasiado larga";
  }
  return {};
}

bool safe_join(file& out, const file& folder, std::wstring_view path, exception& err) {
  const name_fault found = fault_of_path(path);
  if (found == name_fault::none) {
    out = file(folder, joined_names(path));
    return true;
  }
  exc::fileUnsafePath(std::wstring(path), describe(found)).copy_on(err);
  return false;
}

file safe_join(const file& folder, std::wstring_view path) {
  file out;
  exception failure;
  if (!safe_join(out, folder, path, failure)) failure.raise();
  return out;
}

}  // namespace ruvo::files
