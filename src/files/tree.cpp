// Copying, comparing and erasing folders with all that is in them.

#include <ruvo/exc.hpp>
#include <ruvo/files/tree.hpp>
#include <ruvo/files/whole.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

#include "app/current.hpp"
#include "files/listing.hpp"
#include "texto/ascii.hpp"

namespace ruvo::files {

namespace {

bool starts_folded(std::wstring_view text, std::wstring_view start) {
  return text.size() >= start.size() &&
         std::ranges::equal(text.substr(0, start.size()), start, {}, texto::to_lower, texto::to_lower);
}

bool climbs(std::wstring_view path) {
  for (;;) {
    const std::size_t end = std::min(path.find(L'\\'), path.size());
    if (path.substr(0, end) == L"..") return true;
    if (end == path.size()) return false;
    path.remove_prefix(end + 1);
  }
}

/// The place below `target` that an entry below `source` has; empty for other entries.
file counterpart(const file& entry, const file& source, const file& target) {
  if (source.empty() || target.empty()) return {};
  const std::wstring& path = entry;
  std::wstring prefix = prefix_of(source);
  if (prefix == L".\\" && !path.starts_with(prefix)) prefix.clear();  // paths do not keep it
  if (!starts_folded(path, prefix)) return {};
  const std::wstring place = path.substr(prefix.size());
  if (place.empty() || !file(place).get_root().empty() || climbs(place)) return {};
  return prefix_of(target) + place;
}

bool conclude(const RelayCallBack& work, exception& err) {
  if (work.get_failure().WRONG()) work.get_failure().copy_on(err);
  return work.get_failure().OK();
}

struct walker final : RecursiveCallBack {
  using RecursiveCallBack::RecursiveCallBack;
  using RecursiveCallBack::walk;
};

/// Lists the tree below a folder to `work`.
void walk(const file& folder, fileFilter* filter, RelayCallBack& work) {
  walker(nullptr, filter, &work).walk(folder);
}

void refuse(RelayCallBack& work, const exception& failure) {
  work.onFailure(failure);
  work.onFinish();
}

/// Notes for an erasure what the caller's filter refuses.
class noting_filter final : public fileFilter {
 public:
  noting_filter(fileFilter* filter, DeleteCallBack& eraser) : filter_(filter), eraser_(eraser) {}
  bool accept(const file& entry) override {
    const bool taken = !filter_ || filter_->accept(entry);
    if (!taken) eraser_.keep(entry);
    return taken;
  }

 private:
  fileFilter* filter_;
  DeleteCallBack& eraser_;
};

}  // namespace

// Passing on

RelayCallBack::RelayCallBack(fileCallback* to) : to_(to) {}
RelayCallBack::~RelayCallBack() = default;

bool RelayCallBack::stops() noexcept {
  if (to_ && to_->can_stop()) terminate();
  return can_stop();
}

void RelayCallBack::onRead(const file& entry) {
  if (to_) to_->onRead(entry);
  stops();
}

void RelayCallBack::onFinish() {
  if (to_) to_->onFinish();
}

void RelayCallBack::onFailure(const exception& error) {
  if (failure_.OK()) failure_ = error;
  if (to_) to_->onFailure(error);
  stops();
}

// Going down

RecursiveCallBack::RecursiveCallBack(std::vector<file>& out) : RecursiveCallBack(&out, nullptr, nullptr) {}
RecursiveCallBack::RecursiveCallBack(std::vector<file>& out, fileFilter& filter)
    : RecursiveCallBack(&out, &filter, nullptr) {}
RecursiveCallBack::RecursiveCallBack(fileCallback& to) : RecursiveCallBack(nullptr, nullptr, &to) {}
RecursiveCallBack::RecursiveCallBack(fileFilter& filter, fileCallback& to)
    : RecursiveCallBack(nullptr, &filter, &to) {}
RecursiveCallBack::RecursiveCallBack(std::vector<file>* out, fileFilter* filter, fileCallback* to)
    : RelayCallBack(to), out_(out), filter_(filter) {}
RecursiveCallBack::~RecursiveCallBack() = default;

void RecursiveCallBack::onRead(const file& entry) {
  if (stops() || (filter_ && !filter_->accept(entry))) return;
  if (out_) out_->push_back(entry);
  platform::found_facts found;
  if (look_at(entry, found) && found.is_folder && !found.is_link) pending_.push_back(entry);
  RelayCallBack::onRead(entry);
}

// The listings below end here too, with nothing to be done.
void RecursiveCallBack::onFinish() {
  if (descends_) return;
  descend(nullptr);
  RelayCallBack::onFinish();
}

void RecursiveCallBack::walk(const file& top) {
  descend(&top);
  RelayCallBack::onFinish();
}

void RecursiveCallBack::descend(const file* top) {
  struct descent {
    RecursiveCallBack& owner;
    ~descent() {
      owner.descends_ = false;
      owner.pending_.clear();
    }
  } const scope{*this};
  descends_ = true;
  if (top) list(*top);
  std::size_t in_order = 0;  // folders of the listing before were turned round already
  while (!stops() && !pending_.empty()) {
    std::reverse(pending_.begin() + static_cast<std::ptrdiff_t>(in_order), pending_.end());
    const file folder = std::move(pending_.back());
    pending_.pop_back();
    in_order = pending_.size();
    platform::found_facts now;
    if (platform::look_at(folder, now) && now.is_link) continue;  // has taken the folder's place
    list(folder);
  }
}

// A service of the application's own may tell its failure to its caller alone, or give none.
void RecursiveCallBack::list(const file& folder) {
  failed_ = false;
  exception told;
  if (directory_list(folder, told, *this) || failed_) return;
  onFailure(told.OK() ? exception::incorrect() : told);
}

void RecursiveCallBack::onFailure(const exception& error) {
  failed_ = true;
  RelayCallBack::onFailure(error);
}

// Copying

CopyFolderCallBack::CopyFolderCallBack(const file& source, const file& target, std::vector<file>& out)
    : CopyFolderCallBack(source, target, &out, nullptr, nullptr) {}
CopyFolderCallBack::CopyFolderCallBack(const file& source, const file& target, std::vector<file>& out,
                                       fileFilter& filter)
    : CopyFolderCallBack(source, target, &out, &filter, nullptr) {}
CopyFolderCallBack::CopyFolderCallBack(const file& source, const file& target, fileCallback& to)
    : CopyFolderCallBack(source, target, nullptr, nullptr, &to) {}
CopyFolderCallBack::CopyFolderCallBack(const file& source, const file& target, fileFilter& filter,
                                       fileCallback& to)
    : CopyFolderCallBack(source, target, nullptr, &filter, &to) {}
CopyFolderCallBack::CopyFolderCallBack(const file& source, const file& target, std::vector<file>* out,
                                       fileFilter* filter, fileCallback* to)
    : RelayCallBack(to), source_(source), target_(target), out_(out), filter_(filter) {}
CopyFolderCallBack::~CopyFolderCallBack() = default;

void CopyFolderCallBack::onRead(const file& entry) {
  if (stops() || (filter_ && !filter_->accept(entry))) return;
  try {
    copy(entry);
  } catch (const exception& failure) {
    onFailure(failure);
    return;
  }
  if (out_) out_->push_back(entry);
  RelayCallBack::onRead(entry);
}

void CopyFolderCallBack::onFinish() {
  if (!stops() && get_failure().OK()) {
    try {
      reach(target_);
    } catch (const exception& failure) {
      onFailure(failure);
    }
  }
  RelayCallBack::onFinish();
}

void CopyFolderCallBack::onFailure(const exception& error) { RelayCallBack::onFailure(error); }

void CopyFolderCallBack::copy(const file& entry) {
  const file place = counterpart(entry, source_, target_);
  if (place.empty()) throw exc::BadArgument(entry);
  platform::found_facts found;
  if (!look_at(entry, found)) throw exc::fileNotFound(entry);
  if (found.is_link) throw exc::fileOsStream(place);
  if (found.is_folder) {
    reach(place);
    return;
  }
  reach(place.get_parent());
  if (place.is_directory()) throw exc::fileExpectedFile(place);
  copy_file(entry, place);
}

/// Makes sure of a folder.
void CopyFolderCallBack::reach(const file& folder) {
  if (folder == reached_) return;
  if (!folder.mkdir(nullptr) && !folder.mkdirs(nullptr)) {
    if (folder.is_file()) throw exc::fileExpectedFolder(folder);
    throw exc::fileUnCreateFolder(folder);
  }
  reached_ = folder;
}

bool copy_folder(const file& from, file to, exception& err, fileFilter* filter, fileCallback* callback,
                 std::vector<file>* out) {
  CopyFolderCallBack copier(from, to, out, nullptr, callback);
  if (to.empty() || platform::is_inside(to, from))
    refuse(copier, exc::fileUnCreateFolder(to));
  else
    walk(from, filter, copier);
  return conclude(copier, err);
}

bool copy_folder(const file& from, file to, exception& err, fileCallback& callback) {
  return copy_folder(from, to, err, nullptr, &callback, nullptr);
}
bool copy_folder(const file& from, file to, exception& err, fileFilter& filter, fileCallback& callback) {
  return copy_folder(from, to, err, &filter, &callback, nullptr);
}
bool copy_folder(const file& from, file to, exception& err, fileFilter& filter, std::vector<file>& out) {
  return copy_folder(from, to, err, &filter, nullptr, &out);
}
bool copy_folder(const file& from, file to, exception& err, std::vector<file>& out) {
  return copy_folder(from, to, err, nullptr, nullptr, &out);
}

// Comparing

VerifyFolderCallBack::VerifyFolderCallBack(const file& source, const file& target, fileCallback& to)
    : RelayCallBack(&to), source_(source), target_(target) {}
VerifyFolderCallBack::~VerifyFolderCallBack() = default;

void VerifyFolderCallBack::onRead(const file& entry) {
  if (stops()) return;
  try {
    compare(entry);
  } catch (const exception& failure) {
    onFailure(failure);
    return;
  }
  RelayCallBack::onRead(entry);
}

void VerifyFolderCallBack::onFinish() { RelayCallBack::onFinish(); }
void VerifyFolderCallBack::onFailure(const exception& error) { RelayCallBack::onFailure(error); }

void VerifyFolderCallBack::compare(const file& entry) const {
  const file place = counterpart(entry, source_, target_);
  if (place.empty()) throw exc::BadArgument(entry);
  platform::found_facts expected, found;
  if (!look_at(entry, expected)) throw exc::fileNotFound(entry);
  if (!platform::look_at(place, found)) throw exc::fileNotFound(place);
  if (expected.is_folder && !found.is_folder) throw exc::fileExpectedFolder(place);
  if (!expected.is_folder && found.is_folder) throw exc::fileExpectedFile(place);
  if (expected.is_link || expected.size == found.size) return;
  // What a folder knows of a file that is being written, or has several names, may be old.
  if (entry.file::size() != place.size()) throw exc::fileStrageFileSize(place);
}

bool verify(const file& from, file to, exception& err, fileCallback& callback, fileFilter* filter) {
  VerifyFolderCallBack comparer(from, to, callback);
  platform::found_facts found;
  if (!platform::look_at(to, found))
    refuse(comparer, exc::fileNotFound(to));
  else if (!found.is_folder)
    refuse(comparer, exc::fileExpectedFolder(to));
  else
    walk(from, filter, comparer);
  return conclude(comparer, err);
}

// Erasing

DeleteCallBack::DeleteCallBack(fileCallback& to) : DeleteCallBack(&to) {}
DeleteCallBack::DeleteCallBack(fileCallback* to) : RelayCallBack(to) {}
DeleteCallBack::~DeleteCallBack() = default;

void DeleteCallBack::onRead(const file& entry) {
  if (stops()) return;
  platform::found_facts found;
  if (!look_at(entry, found))
    onFailure(exc::fileNotFound(entry));
  else if (found.is_folder && !found.is_link)
    folders_.push_back(entry);
  else
    remove(entry, found.is_folder);
}

void DeleteCallBack::onFinish() {
  for (; !folders_.empty() && !stops(); folders_.pop_back()) {
    if (kept_.contains(folders_.back()))
      keep(folders_.back());
    else
      remove(folders_.back(), true);
  }
  folders_.clear();
  kept_.clear();
  RelayCallBack::onFinish();
}

void DeleteCallBack::onFailure(const exception& error) { RelayCallBack::onFailure(error); }

void DeleteCallBack::keep(const file& entry) { kept_.insert(entry.get_parent()); }

void DeleteCallBack::remove(const file& entry, bool is_folder) {
  if (platform::remove_entry(entry, is_folder)) {
    RelayCallBack::onRead(entry);
  } else {
    keep(entry);
    onFailure(exc::fileUnDeleted(entry));
  }
}

bool erase(file path, exception& err, fileFilter* filter, fileCallback* callback) {
  DeleteCallBack eraser(callback);
  noting_filter noting(filter, eraser);
  platform::found_facts found;
  if (!platform::look_at(path, found)) {
    refuse(eraser, exc::fileNotFound(path));
    return conclude(eraser, err);
  }
  eraser.onRead(path);
  if (found.is_folder && !found.is_link)
    walk(path, &noting, eraser);
  else
    eraser.onFinish();
  return conclude(eraser, err);
}

bool erase(file path, exception& err, fileCallback& callback) { return erase(path, err, nullptr, &callback); }
bool erase(file path, exception& err, fileFilter& filter, fileCallback& callback) {
  return erase(path, err, &filter, &callback);
}
bool erase(file path, exception& err, fileFilter& filter) { return erase(path, err, &filter, nullptr); }

// Listing

bool directory_list(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                    std::vector<file>* out) {
  return current_context().directory_list(folder, err, filter, callback, out);
}
bool directory_list(const file& folder, exception& err, fileCallback& callback) {
  return directory_list(folder, err, nullptr, &callback, nullptr);
}
bool directory_list(const file& folder, exception& err, fileFilter& filter, fileCallback& callback) {
  return directory_list(folder, err, &filter, &callback, nullptr);
}
bool directory_list(const file& folder, exception& err, fileFilter& filter, std::vector<file>& out) {
  return directory_list(folder, err, &filter, nullptr, &out);
}
bool directory_list(const file& folder, exception& err, std::vector<file>& out) {
  return directory_list(folder, err, nullptr, nullptr, &out);
}

}  // namespace ruvo::files
