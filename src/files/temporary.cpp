// SPDX-License-Identifier: BSL-1.0

// Files and folders that are removed at the end.

#include <ruvo/exc.hpp>
#include <ruvo/files/safe_names.hpp>
#include <ruvo/files/temporary.hpp>
#include <ruvo/files/tree.hpp>

#include <string>
#include <utility>

#include "base/quietly.hpp"
#include "system/file.hpp"
#include "system/folder.hpp"
#include "system/random.hpp"

namespace ruvo::files {

namespace {

constexpr int most_attempts = 16;  // two random names are hardly ever alike

/// 130 bits, in letters and digits that do not differ in case alone.
template <class Failure>
std::wstring random_word(const file& folder) {
  constexpr wchar_t digits[] = L"abcdefghijklmnopqrstuvwxyz234567";
  unsigned char bytes[26];
  if (!platform::fill_random(bytes, sizeof bytes)) throw Failure(folder);
  std::wstring out;
  for (const unsigned char byte : bytes) out += digits[byte & 31];
  return out;
}

file folder_for(const file& wanted) {
  if (!wanted.empty()) return wanted;
  file found(platform::temporary_folder());
  if (found.empty()) throw exc::fileNotFound(found);
  return found;
}

bool is_made_file(const file& path) {
  platform::open_file made(path, platform::open_file::to_create);
  return made && made.keep() && made.close();
}

bool is_made_folder(const file& path) { return platform::make_new_folder(path); }

/// Makes something under a random name, and gives its path.
template <class Failure, class Make>
file made_in(const file& wanted, const std::wstring& prefix, const std::wstring& ending, Make is_made) {
  const file folder = folder_for(wanted);
  file path;
  for (int i = 0; i < most_attempts; ++i) {
    std::wstring name = prefix;
    name.append(random_word<Failure>(folder)).append(ending);
    const name_fault fault = fault_of_name(name);
    if (fault != name_fault::none) throw exc::fileUnsafePath(name, describe(fault));
    path = file(folder, name);
    if (is_made(path)) return path;
    if (!path.exists()) break;
  }
  throw Failure(path);
}

std::wstring with_point(const std::wstring& extension) {
  return extension.empty() || extension.starts_with(L'.') ? extension : L'.' + extension;
}

}  // namespace

// --- files

temporary_file::temporary_file(const file& folder, const std::wstring& prefix, const std::wstring& extension)
    : path_(made_in<exc::fileOsStream>(folder, prefix, with_point(extension), is_made_file)) {}
temporary_file::temporary_file(temporary_file&& other) noexcept : path_(other.keep()) {}
temporary_file& temporary_file::operator=(temporary_file&& other) noexcept {
  if (this != &other) {
    remove();
    path_ = other.keep();
  }
  return *this;
}
temporary_file::~temporary_file() { remove(); }

file temporary_file::keep() noexcept { return std::exchange(path_, file()); }

void temporary_file::remove() noexcept {
  if (path_.empty()) return;
  quietly([this] { platform::remove_file(path_, true); });
}

// --- folders

temporary_folder::temporary_folder(const file& folder, const std::wstring& prefix)
    : path_(made_in<exc::fileUnCreateFolder>(folder, prefix, {}, is_made_folder)) {}
temporary_folder::temporary_folder(temporary_folder&& other) noexcept : path_(other.keep()) {}
temporary_folder& temporary_folder::operator=(temporary_folder&& other) noexcept {
  if (this != &other) {
    remove();
    path_ = other.keep();
  }
  return *this;
}
temporary_folder::~temporary_folder() { remove(); }

file temporary_folder::keep() noexcept { return std::exchange(path_, file()); }

void temporary_folder::remove() noexcept {
  if (path_.empty()) return;
  quietly([this] {
    exception failure;
    erase(path_, failure);
  });
}

}  // namespace ruvo::files
