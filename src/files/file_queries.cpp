// SPDX-License-Identifier: BSL-1.0

// What a path asks the file system.

#include <ruvo/exc.hpp>
#include <ruvo/file.hpp>
#include <ruvo/files/whole.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "base/ascii.hpp"
#include "system/file.hpp"
#include "system/folder.hpp"

namespace ruvo {

namespace {

platform::entry_facts existing_facts(const file& path) {
  platform::entry_facts out;
  if (!platform::read_facts(path, platform::links::follow, out)) throw exc::fileNotFound(path);
  return out;
}

platform::owner_numbers owner_of(const file& path) {
  if (!path.exists()) throw exc::fileNotFound(path);
  platform::owner_numbers out;
  return platform::read_owner(path, out) ? out : platform::owner_numbers();
}

/// Copies a failure to make the folder to `*err`, unless that is null, and gives `made`.
bool made_or_reported(bool made, const file& path, exception* err) {
  if (!made) exc::fileUnCreateFolder(path).copy_on(err);
  return made;
}

}  // namespace

std::wstring file::time_stamp() const { return last_modified().to_string(); }
std::wstring file::get_mimetype() const { return files::get_mimetype(path_); }

bool file::exists() const {
  platform::entry_facts found;
  return platform::read_facts(path_, platform::links::keep, found);
}

bool file::is_directory() const {
  platform::entry_facts found;
  return platform::read_facts(path_, platform::links::keep, found) && found.is_folder;
}

bool file::is_file() const {
  platform::entry_facts found;
  return platform::read_facts(path_, platform::links::keep, found) && !found.is_folder;
}

bool file::is_executable() const {
  constexpr std::wstring_view endings[] = {L".exe", L".com", L".bat", L".cmd"};
  std::wstring name = get_name();
  std::ranges::transform(name, name.begin(), texto::to_lower);
  return std::ranges::any_of(endings, [&](std::wstring_view one) { return name.ends_with(one); }) &&
         is_file();
}

bool file::is_hidden() const {
  platform::entry_facts facts;
  return platform::read_facts(path_, platform::links::follow, facts) && facts.hidden;
}

bool file::can_be_read() const { return platform::may_read(path_); }

// On a folder the read-only mark has no effect.
bool file::can_be_write() const {
  platform::entry_facts facts;
  if (!platform::read_facts(path_, platform::links::follow, facts)) return false;
  return !(facts.read_only && !facts.is_folder) && platform::may_write(path_);
}

bool file::is_locked() const { return is_file() && platform::is_held(path_); }

unsigned long file::get_owner() const { return owner_of(*this).user; }
unsigned long file::get_owner_group() const { return owner_of(*this).group; }

unsigned long long file::size() const {
  const platform::entry_facts facts = existing_facts(*this);
  if (facts.is_folder) throw exc::fileExpectedFile(*this);
  return facts.size;
}

datetime file::last_modified() const { return existing_facts(*this).modified; }
datetime file::last_access() const { return existing_facts(*this).accessed; }
datetime file::last_status_changed() const { return existing_facts(*this).changed; }

bool file::mkdir(exception* err) const { return made_or_reported(platform::make_folder(path_), *this, err); }

// Of the folders that are missing only the lengths of their paths are kept: there may be thousands.
bool file::mkdirs(exception* err) const {
  std::vector<std::size_t> missing;
  for (file at = *this; !at.empty() && !at.is_root() && !at.is_directory(); --at)
    missing.push_back(at.path_.size());
  while (!missing.empty() && platform::make_folder(path_.substr(0, missing.back()))) missing.pop_back();
  return made_or_reported(is_directory(), *this, err);
}

void file::erase() const {
  if (file::is_directory() ? platform::remove_folder(path_) : platform::remove_file(path_)) return;
  if (exists()) throw exc::fileUnDeleted(*this);
  throw exc::fileNotFound(*this);
}

}  // namespace ruvo
