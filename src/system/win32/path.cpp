// SPDX-License-Identifier: BSL-1.0

// Paths in the form that takes any length and any name.

#include "system/win32/path.hpp"

#include <algorithm>
#include <cstddef>

#include "base/ascii.hpp"
#include "system/win32/text.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

constexpr std::wstring_view verbatim = L"\\\\?\\";
constexpr std::wstring_view device = L"\\\\.\\";
constexpr std::wstring_view share = L"\\\\";

bool is_full(std::wstring_view path) {
  return path.starts_with(share) || (texto::has_drive(path) && path.size() > 2 && path[2] == L'\\');
}

/// The system's full name of a short relative path.
std::wstring full_path(const wchar_t* path) {
  return text_from([path](wchar_t* out, DWORD size) { return GetFullPathNameW(path, size, out, nullptr); });
}

/// The folder that a relative path starts from.
std::wstring starting_folder(std::wstring_view path) {
  if (path.starts_with(L'\\')) return full_path(L"\\");
  if (!texto::has_drive(path)) return full_path(L".");
  const wchar_t current[] = {path[0], L':', L'.', L'\0'};
  return full_path(current);
}

/// Where the separator behind "C:" or "\\server\share" stands, or would stand.
std::size_t root_end(std::wstring_view path) {
  if (!path.starts_with(share)) return 2;
  const std::size_t server = path.find(L'\\', share.size());
  return server == path.npos ? path.size() : std::min(path.find(L'\\', server + 1), path.size());
}

/// Appends the components of `path` to a root that ends with a separator.
void append_components(std::wstring& out, std::wstring_view path) {
  const std::size_t root = out.size();
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(L'\\'), path.size());
    const std::wstring_view name = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    if (name.empty() || name == L".") continue;
    if (name == L"..") {
      out.resize(out.size() > root ? std::max(out.rfind(L'\\'), root) : root);
    } else {
      if (out.size() > root) out += L'\\';
      out += name;
    }
  }
}

/// A full path behind the prefix.
std::wstring with_prefix(std::wstring_view path) {
  const std::size_t root = root_end(path);
  std::wstring out(verbatim);
  if (path.starts_with(share))
    out.append(L"UNC\\").append(path.substr(share.size(), root - share.size()));
  else
    out.append(path.substr(0, root));
  out += L'\\';
  append_components(out, path.substr(root));
  return out;
}

}  // namespace

std::wstring system_path(std::wstring_view path) {
  if (path.empty() || path.find(L'\0') != path.npos) return {};
  if (path.starts_with(verbatim) || path.starts_with(device)) return std::wstring(path);
  const std::wstring_view tail = path.substr(texto::has_drive(path) ? 2 : 0);
  if (tail.find(L':') != tail.npos) return {};
  if (is_full(path)) return with_prefix(path);
  std::wstring base = starting_folder(path);
  if (!is_full(base)) return {};
  base.append(L"\\").append(tail);
  return base.starts_with(verbatim) ? base : with_prefix(base);
}

}  // namespace ruvo::platform
