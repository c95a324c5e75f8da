// SPDX-License-Identifier: BSL-1.0

// The listing of one folder, with its filter and its callback.

#include "files/listing.hpp"

#include <ruvo/exc.hpp>

#include <cstddef>
#include <optional>
#include <vector>

#include "system/folder_reader.hpp"
namespace ruvo {

fileFilter::fileFilter() = default;
fileFilter::fileFilter(const fileFilter&) = default;
fileFilter::fileFilter(fileFilter&&) noexcept = default;
fileFilter::~fileFilter() = default;
fileFilter& fileFilter::operator=(const fileFilter&) = default;
fileFilter& fileFilter::operator=(fileFilter&&) noexcept = default;

bool fileFilter::accept(const file&) { return true; }

fileCallback::fileCallback() = default;
fileCallback::~fileCallback() = default;

void fileCallback::onRead(const file&) {}
void fileCallback::onFinish() {}
void fileCallback::onFailure(const exception&) {}

namespace files {

namespace {

std::shared_ptr<const platform::held_folder> hold(const file& folder) {
  if (const auto* const held = dynamic_cast<const held_place*>(&folder)) return held->folder();
  using platform::held_folder;
  return std::make_shared<held_folder>(folder, true, held_folder::purpose::listing);
}

exception refusal(const file& folder) {
  platform::entry_facts found;
  if (platform::read_facts(folder, platform::links::keep, found)) return exc::fileInvalidFolder(folder);
  return exc::fileNotFound(folder);
}

/// False when not all entries could be read.
bool read_entries(const file& folder, const platform::held_folder& held, fileFilter* filter,
                  fileCallback* callback, std::vector<file>* out) {
  platform::folder_reader reader(held);
  std::wstring path = prefix_of(folder);
  const std::size_t prefix = path.size();
  platform::found_entry found;
  listed_file entry;
  while (!(callback && callback->can_stop()) && reader.next(found)) {
    path.replace(prefix, path.npos, found.name);
    entry.set(path, found);
    if (filter && !filter->accept(entry)) continue;
    if (out) out->push_back(entry);
    if (callback) callback->onRead(entry);
  }
  return !reader.failed();
}

}  // namespace

void listed_file::set(const std::wstring& path, const platform::entry_facts& found) {
  set_path(path);
  found_ = &found;
}

unsigned long long listed_file::size() const {
  if (found_->is_folder) throw exc::fileExpectedFile(*this);
  return found_->size;
}

bool list_folder(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                 std::vector<file>* out) {
  const std::shared_ptr<const platform::held_folder> held = hold(folder);
  const file place(static_cast<const std::wstring&>(folder));  // `folder` may be one of `out`, which grows
  const bool done = held && *held && read_entries(place, *held, filter, callback, out);
  if (!done) {
    const exception failure = refusal(place);
    failure.copy_on(err);
    if (callback) callback->onFailure(failure);
  }
  if (callback) callback->onFinish();
  return done;
}

std::wstring prefix_of(const file& folder) {
  std::wstring out(folder);
  const bool is_joined = out.ends_with(L'\\') || (out.ends_with(L':') && folder.is_root());
  if (!is_joined) out += L'\\';
  return out;
}

bool look_at(const file& entry, platform::entry_facts& out) {
  if (const auto* const listed = dynamic_cast<const listed_file*>(&entry)) {
    out = listed->found();
    return true;
  }
  out = {};
  const bool is_there = platform::read_facts(entry, platform::links::keep, out);
  if (!out.is_link) out.is_folder = entry.is_directory();
  return is_there || out.is_folder || entry.is_file();
}

}  // namespace files

}  // namespace ruvo
