// SPDX-License-Identifier: BSL-1.0

// A path as text: brought into one form, taken apart and put together. Nothing here asks the system.

#include <ruvo/file.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/immortal.hpp"
#include "base/utf.hpp"
#include "exc/classes.hpp"

namespace ruvo {

namespace {

constexpr std::wstring_view long_prefix = L"\\\\?\\";
constexpr std::wstring_view long_share = L"UNC\\";

/// Where "server\share", or "server" alone, that begins at `from` ends.
std::size_t share_end(std::wstring_view path, std::size_t from) {
  const std::size_t server = std::min(path.find(L'\\', from), path.size());
  const std::size_t share = path.find_first_not_of(L'\\', server);
  return share == path.npos ? server : std::min(path.find(L'\\', share), path.size());
}

/// The length of the root, which for a drive holds its separator.
std::size_t root_length(std::wstring_view path) {
  std::size_t start = 0;
  if (path.starts_with(long_prefix)) {
    start = long_prefix.size();
    if (path.substr(start).starts_with(long_share)) return share_end(path, start + long_share.size());
    if (!texto::has_drive(path.substr(start))) return start;
  } else if (path.starts_with(L"\\\\") && path.size() > 2 && path[2] != L'\\') {
    return share_end(path, 2);
  }
  if (texto::has_drive(path.substr(start))) start += 2;
  return start < path.size() && path[start] == L'\\' ? start + 1 : start;
}

/// Drops "." components at the start, and ".." components that would climb above a root.
void limpia_ruta_inicio(std::wstring& path) {
  const std::size_t root = root_length(path);
  if (path.starts_with(long_prefix) && root == long_prefix.size()) return;  // a device's name, taken as it is
  const bool absolute = root > 0 && path[root - 1] != L':';
  std::size_t from = root;
  if (absolute)
    while (from < path.size() && path[from] == L'\\') ++from;
  for (;;) {
    const std::wstring_view rest = std::wstring_view(path).substr(from);
    const bool climbs = absolute && (rest.starts_with(L"..\\") || rest == L"..");
    if (!climbs && !rest.starts_with(L".\\")) break;
    const std::size_t next = rest.find_first_not_of(L'\\', climbs ? 2 : 1);
    if (next == rest.npos && !absolute) break;                    // nothing else: "." stays
    if (root == 0 && texto::has_drive(rest.substr(next))) break;  // a name that only looks like a drive
    from = next == rest.npos ? path.size() : from + next;
  }
  const std::size_t keep = absolute && from > root && from < path.size() && path[root - 1] != L'\\' ? 1 : 0;
  path.erase(root + keep, from - root - keep);
}

/// Drops separators and "\." at the end, but not those of the root.
void limpia_ruta_final(std::wstring& path) {
  const std::size_t root = root_length(path);
  for (;;) {
    const std::wstring_view rest = std::wstring_view(path).substr(std::min(root, path.size()));
    if (rest.ends_with(L'\\'))
      path.pop_back();
    else if (rest.ends_with(L"\\.") || (root && rest == L"."))
      path.pop_back();
    else
      break;
  }
}

bool same_folded(std::wstring_view a, std::wstring_view b) {
  return std::ranges::equal(a, b,
                            [](wchar_t x, wchar_t y) { return texto::to_lower(x) == texto::to_lower(y); });
}

}  // namespace

const std::wstring& detail::text_of(const file& path) noexcept { return path; }
const file& detail::no_path() { return immortal<file>(); }

file::file() = default;
file::file(const char* path) { set_path(path); }
file::file(const wchar_t* path) { set_path(path); }
file::file(const std::string& path) { set_path(path); }
file::file(const std::wstring& path) { set_path(path); }
// In "C:", the folder that is the current one of the drive, a name follows without a separator.
file::file(const file& folder, const std::wstring& name) : path_(folder.path_) {
  if (is_root() && path_.ends_with(L':'))
    set_path(path_.append(name, std::min(name.find_first_not_of(L"\\/"), name.size())));
  else
    *this += name;
}
file::file(const file& other) = default;
file::file(file&& other) noexcept = default;
file::~file() = default;
file& file::operator=(const file& other) = default;
file& file::operator=(file&& other) noexcept = default;
file& file::operator=(const char* path) { return *this = file(path); }
file& file::operator=(const wchar_t* path) { return *this = file(path); }
file& file::operator=(const std::string& path) { return *this = file(path); }
file& file::operator=(const std::wstring& path) { return *this = file(path); }

void file::set_path(const char* path) { set_path(std::string(path ? path : "")); }
void file::set_path(const wchar_t* path) { set_path(std::wstring(path ? path : L"")); }
void file::set_path(const std::string& path) { set_path(texto::to_utf_16(path)); }
void file::set_path(const std::wstring& path) {
  std::wstring cleaned(path);
  std::ranges::replace(cleaned, L'/', L'\\');
  limpia_ruta_inicio(cleaned);
  limpia_ruta_final(cleaned);
  path_ = std::move(cleaned);
}

file file::get_parent() const {
  if (is_root()) return *this;
  const std::size_t root = root_length(path_);
  const std::size_t cut = path_.rfind(L'\\');
  file out;
  if (cut == path_.npos || cut < root)
    out.path_ = path_.substr(0, root);
  else
    out.path_ = path_.substr(0, cut);
  limpia_ruta_final(out.path_);
  return out;
}

file file::get_root() const {
  file out;
  out.path_ = path_.substr(0, root_length(path_));
  return out;
}

bool file::is_root() const { return !path_.empty() && root_length(path_) == path_.size(); }

std::wstring file::get_name() const {
  const std::size_t root = root_length(path_);
  const std::size_t cut = path_.rfind(L'\\');
  return path_.substr(cut == path_.npos ? root : std::max(cut + 1, root));
}

std::wstring file::get_simple_name() const {
  const std::wstring name = get_name();
  return name.substr(0, name.rfind(L'.'));
}

std::wstring file::get_extension() const {
  if (is_directory()) return {};
  return path_.substr(path_.rfind(L'.') + 1);  // without a dot from the start
}

file file::change_extension(const std::wstring& extension) const {
  const std::wstring name = get_simple_name() + L"." + extension;
  return is_root() ? file(name) : file(get_parent(), name);
}

file file::crop(const file& base) const {
  const std::size_t size = base.path_.size();
  if (!size || path_.size() < size || !same_folded(std::wstring_view(path_).substr(0, size), base.path_))
    return *this;
  if (path_.size() == size) return {};
  const bool ends_at_separator = base.path_.back() == L'\\';
  if (!ends_at_separator && path_[size] != L'\\') return *this;
  file out;
  out.path_ = path_.substr(std::min(path_.find_first_not_of(L'\\', size), path_.size()));
  limpia_ruta_inicio(out.path_);
  return out;
}

file& file::operator+=(const char* name) { return *this += std::string(name ? name : ""); }
file& file::operator+=(const wchar_t* name) { return *this += std::wstring(name ? name : L""); }
file& file::operator+=(const std::string& name) { return *this += texto::to_utf_16(name); }
file& file::operator+=(const std::wstring& name) {
  std::size_t start = 0;
  if (!path_.empty())
    while (start < name.size() && (name[start] == L'\\' || name[start] == L'/')) ++start;
  std::wstring joined(path_);
  const bool open = joined.empty() || joined.back() == L'\\' || start == name.size();
  if (!open) joined += L'\\';
  joined.append(name, start);
  set_path(joined);
  return *this;
}

file& file::operator--() { return *this = get_parent(); }

std::wstring file::unix_path() const {
  std::wstring out(path_);
  std::ranges::replace(out, L'\\', L'/');
  return out;
}

}  // namespace ruvo
