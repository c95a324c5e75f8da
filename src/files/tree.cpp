// SPDX-License-Identifier: BSL-1.0

// Copying, comparing and erasing folders with all that is in them.

#include <ruvo/exc.hpp>
#include <ruvo/files/tree.hpp>
#include <ruvo/files/whole.hpp>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "base/services.hpp"
#include "files/held_tree.hpp"
#include "files/listing.hpp"
#include "files/stand_in.hpp"

namespace ruvo::files {

namespace {

/// The place below `target` that an entry below `source` has; empty for other entries.
file counterpart(const file& entry, const file& source, const file& target) {
  if (source.empty() || target.empty()) return {};
  std::wstring place;
  if (!place_below(source, entry, place) || place.empty()) return {};
  return prefix_of(target) + place;
}

/// The folder of an entry; "." for an entry without one, since an empty path leads to nothing.
file folder_of(const file& entry) {
  file out = entry.get_parent();
  return out.empty() ? file(L".") : out;
}

/// Whether an entry is a file that is being written, under a name of the library's own, or such one that has
/// got its name since.
bool is_passing(const file& entry) {
  return is_stand_in(entry.get_name()) && (is_being_written(entry) || !entry.exists());
}

bool conclude(const RelayCallBack& work, exception& err) {
  if (work.get_failure().WRONG()) work.get_failure().copy_on(err);
  return work.get_failure().OK();
}

/// A callback that knows which tree it works on.
template <class Callback>
struct on_tree final : Callback {
  using Callback::Callback;
  using Callback::work_on;
};

struct walker final : RecursiveCallBack {
  using RecursiveCallBack::RecursiveCallBack;
  using RecursiveCallBack::walk;
  using RecursiveCallBack::work_on;
};

/// Lists the tree below a folder to `work`.
void walk_tree(const std::shared_ptr<held_tree>& tree, fileFilter* filter, RelayCallBack& work) {
  walker going(nullptr, filter, &work);
  going.work_on(tree);
  going.walk(tree->top());
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

// --- passing on

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
  ++failures_;
  if (to_) to_->onFailure(error);
  stops();
}

void RelayCallBack::work_on(std::shared_ptr<held_tree> tree) { tree_ = std::move(tree); }

const std::shared_ptr<held_tree>& RelayCallBack::tree_of(const file& entry) {
  if (!tree_) tree_ = std::make_shared<held_tree>(folder_of(entry), true);
  return tree_;
}

// --- going down

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
  platform::entry_facts found;
  if (look_at(entry, found) && found.is_folder && !found.is_link) pending_.push_back(entry);
  RelayCallBack::onRead(entry);
}

// Each listing of a folder below ends here too; only the end of the outermost one counts.
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
      owner.work_on(nullptr);
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
    list(folder);
  }
}

// A service of the application's own may give its failure to its caller alone, or give none.
void RecursiveCallBack::list(const file& folder) {
  failed_ = false;
  std::shared_ptr<held_tree> tree = tree_of(folder);
  if (!tree->covers(folder)) tree = std::make_shared<held_tree>(folder, false);
  const std::shared_ptr<const held_folder> held = tree->reach(folder);
  if (tree->reason() == held_folder::outcome::link) {  // has taken the folder's place
    onFailure(exc::fileInvalidFolder(tree->culprit()));
    return;
  }
  exception reported;
  if (directory_list(held_place(folder, held), reported, *this) || failed_) return;
  onFailure(reported.OK() ? exception::incorrect() : reported);
}

void RecursiveCallBack::onFailure(const exception& error) {
  failed_ = true;
  RelayCallBack::onFailure(error);
}

// --- copying

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
    if (!copy(entry)) return;
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
  targets_.reset();
  work_on(nullptr);
  RelayCallBack::onFinish();
}

void CopyFolderCallBack::onFailure(const exception& error) { RelayCallBack::onFailure(error); }

/// False when the entry is a file that is being written, which is left out.
bool CopyFolderCallBack::copy(const file& entry) {
  const file place = counterpart(entry, source_, target_);
  if (place.empty()) throw exc::BadArgument(entry);
  if (is_passing(entry)) return false;
  platform::entry_facts found;
  if (!look_at(entry, found)) throw exc::fileNotFound(entry);
  if (found.is_link) throw exc::fileOsStream(place);
  if (found.is_folder) {
    reach(place);
    return true;
  }
  const file from = folder_of(entry), to = folder_of(place);
  reach(to);
  if (place.is_directory()) throw exc::fileExpectedFile(place);
  const std::shared_ptr<held_tree>& sources = tree_of(entry);
  const std::shared_ptr<const held_folder> source = sources->reach(from);
  if (sources->reason() == held_folder::outcome::link) throw exc::fileOsStream(place);
  try {
    copy_held(entry, place, source.get(), *targets_->reach(to));
  } catch (const exception&) {
    if (!is_passing(entry)) throw;
    return false;
  }
  return true;
}

/// Makes sure of a folder. One that the caller named may be a link; those below it may not.
void CopyFolderCallBack::reach(const file& folder) {
  using outcome = held_folder::outcome;
  if (!targets_) {
    target_.mkdirs(nullptr);
    targets_ = std::make_shared<held_tree>(target_, true);
  }
  if (targets_->reach(folder, true)) return;
  const file culprit = targets_->culprit();
  const outcome reason = targets_->reason();
  if (!targets_->identity()) targets_.reset();  // the next entry tries again
  if (reason == outcome::file || reason == outcome::link) throw exc::fileExpectedFolder(culprit);
  throw exc::fileUnCreateFolder(folder);
}

bool copy_folder(const file& from, file to, exception& err, fileFilter* filter, fileCallback* callback,
                 std::vector<file>* out) {
  on_tree<CopyFolderCallBack> copier(from, to, out, nullptr, callback);
  if (to.empty() || platform::is_inside(to, from)) {
    refuse(copier, exc::fileUnCreateFolder(to));
  } else {
    const auto tree = std::make_shared<held_tree>(from, true);
    copier.work_on(tree);
    walk_tree(tree, filter, copier);
  }
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

// --- comparing

VerifyFolderCallBack::VerifyFolderCallBack(const file& source, const file& target, fileCallback& to)
    : RelayCallBack(&to), source_(source), target_(target) {}
VerifyFolderCallBack::~VerifyFolderCallBack() = default;

void VerifyFolderCallBack::onRead(const file& entry) {
  if (stops()) return;
  try {
    if (is_passing(entry)) return;
    compare(entry);
  } catch (const exception& failure) {
    if (!is_passing(entry)) onFailure(failure);
    return;
  }
  RelayCallBack::onRead(entry);
}

void VerifyFolderCallBack::onFinish() { RelayCallBack::onFinish(); }
void VerifyFolderCallBack::onFailure(const exception& error) { RelayCallBack::onFailure(error); }

void VerifyFolderCallBack::compare(const file& entry) const {
  const file place = counterpart(entry, source_, target_);
  if (place.empty()) throw exc::BadArgument(entry);
  platform::entry_facts expected, found;
  if (!look_at(entry, expected)) throw exc::fileNotFound(entry);
  if (!platform::read_facts(place, platform::links::keep, found)) throw exc::fileNotFound(place);
  if (expected.is_folder && !found.is_folder) throw exc::fileExpectedFolder(place);
  if (!expected.is_folder && found.is_folder) throw exc::fileExpectedFile(place);
  if (expected.is_link || expected.size == found.size) return;
  // What a folder knows of a file that is being written, or has several names, may be old.
  const bool is_listed = dynamic_cast<const listed_file*>(&entry);
  if ((is_listed ? entry.file::size() : entry.size()) != place.size()) throw exc::fileStrageFileSize(place);
}

bool verify(const file& from, file to, exception& err, fileCallback& callback, fileFilter* filter) {
  VerifyFolderCallBack comparer(from, to, callback);
  platform::entry_facts found;
  if (!platform::read_facts(to, platform::links::keep, found))
    refuse(comparer, exc::fileNotFound(to));
  else if (!found.is_folder)
    refuse(comparer, exc::fileExpectedFolder(to));
  else
    walk_tree(std::make_shared<held_tree>(from, true), filter, comparer);
  return conclude(comparer, err);
}

// --- erasing

DeleteCallBack::DeleteCallBack(fileCallback& to) : DeleteCallBack(&to) {}
DeleteCallBack::DeleteCallBack(fileCallback* to) : RelayCallBack(to) {}
DeleteCallBack::~DeleteCallBack() = default;

void DeleteCallBack::onRead(const file& entry) {
  if (stops()) return;
  platform::entry_facts found;
  if (!look_at(entry, found))
    onFailure(exc::fileNotFound(entry));
  else if (found.is_folder && !found.is_link)
    folders_.push_back(entry);
  else
    remove(entry, found.is_folder, found.is_link);
}

void DeleteCallBack::onFinish() {
  for (; !folders_.empty() && !stops(); folders_.pop_back()) {
    if (kept_.contains(folders_.back()))
      keep(folders_.back());
    else
      remove(folders_.back(), true, false);
  }
  folders_.clear();
  kept_.clear();
  work_on(nullptr);
  RelayCallBack::onFinish();
}

void DeleteCallBack::onFailure(const exception& error) { RelayCallBack::onFailure(error); }

void DeleteCallBack::keep(const file& entry) { kept_.insert(folder_of(entry)); }

void DeleteCallBack::remove(const file& entry, bool is_folder, bool is_link) {
  if (is_removed(entry, is_folder, is_link)) {
    RelayCallBack::onRead(entry);
  } else {
    keep(entry);
    onFailure(exc::fileUnDeleted(entry));
  }
}

bool DeleteCallBack::is_removed(const file& entry, bool is_folder, bool is_link) {
  const platform::entry_kind found{is_folder, is_link};
  held_tree& tree = *tree_of(entry);
  if (entry == tree.top()) {
    tree.release();
    const bool removed = platform::remove_found(entry, found, tree.identity());
    work_on(nullptr);  // who goes on after a failure has to reach it anew
    return removed;
  }
  const file folder = folder_of(entry);
  if (!tree.covers(folder)) return platform::remove_found(entry, found, nullptr);
  const std::shared_ptr<const held_folder> held = tree.reach(folder);
  if (held) return held->remove(entry.get_name(), found);
  platform::entry_facts left;
  return tree.reason() == held_folder::outcome::missing &&
         !platform::read_facts(entry, platform::links::keep, left);
}

bool erase(file path, exception& err, fileFilter* filter, fileCallback* callback) {
  on_tree<DeleteCallBack> eraser(callback);
  noting_filter noting(filter, eraser);
  platform::entry_facts found;
  if (!platform::read_facts(path, platform::links::keep, found)) {
    refuse(eraser, exc::fileNotFound(path));
    return conclude(eraser, err);
  }
  const auto tree = std::make_shared<held_tree>(path, false);
  eraser.work_on(tree);
  eraser.onRead(path);
  if (found.is_folder && !found.is_link)
    walk_tree(tree, &noting, eraser);
  else
    eraser.onFinish();
  return conclude(eraser, err);
}

bool erase(file path, exception& err, fileCallback& callback) { return erase(path, err, nullptr, &callback); }
bool erase(file path, exception& err, fileFilter& filter, fileCallback& callback) {
  return erase(path, err, &filter, &callback);
}
bool erase(file path, exception& err, fileFilter& filter) { return erase(path, err, &filter, nullptr); }

// --- listing

bool directory_list(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                    std::vector<file>* out) {
  const auto* const relay = dynamic_cast<const RelayCallBack*>(callback);
  const std::size_t failures_before = relay ? relay->count_failures() : 0;
  if (!services::list_folder(folder, err, filter, callback, out)) return false;
  if (!relay || relay->count_failures() == failures_before) return true;
  relay->get_failure().copy_on(err);  // of a folder below, or of what was done with an entry
  return false;
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
