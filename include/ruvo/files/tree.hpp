// SPDX-License-Identifier: BSL-1.0
#pragma once

// Folders with all that is in them: listing, copying, comparing and erasing, with a filter that decides what
// is worked on and a callback that receives each entry.

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>

#include <atomic>
#include <cstddef>
#include <memory>
#include <set>
#include <vector>

namespace ruvo {

/// Decides which entries are worked on. A folder that is refused is left out with all that it holds.
///
/// The entries that filters and callbacks are given answer is_directory(), is_file() and size() from what the
/// listing found, without asking the system again. "." and ".." are no entries. Symbolic links, junctions and
/// mounted volumes are entries that are never followed, even if they take the place of a folder meanwhile: a
/// folder is held open while its entries are worked on, so that nobody else can rename or erase it then.
class KESTA_API fileFilter {
 public:
  /// A filter that takes all.
  fileFilter();
  fileFilter(const fileFilter& other);
  fileFilter(fileFilter&& other) noexcept;
  virtual ~fileFilter();
  fileFilter& operator=(const fileFilter& other);
  fileFilter& operator=(fileFilter&& other) noexcept;

  /// True to take the entry; this one takes all.
  virtual bool accept(const file& entry);
};

/// Receives the entries and the failures. What it throws ends the operation and comes to the caller, without
/// onFinish().
class KESTA_API fileCallback {
 public:
  /// A callback that was not asked to stop.
  fileCallback();
  virtual ~fileCallback();

  /// An entry was read; of copies, comparisons and erasures, it was also done.
  virtual void onRead(const file& entry);
  /// The end, whatever came before: once for each operation, and nothing comes after it.
  virtual void onFinish();
  /// An entry, or a folder to be listed, failed. The operation goes on with the next one.
  virtual void onFailure(const exception& error);

  /// Whether it asked to stop.
  bool can_stop() const noexcept { return stop_.load(std::memory_order_relaxed); }

 protected:
  /// Asks the operation to stop before the next entry; for good, and from any thread. Stopping is no failure.
  void terminate() noexcept { stop_.store(true, std::memory_order_relaxed); }

 private:
  std::atomic<bool> stop_ = false;
};

namespace files {

class held_tree;

// --- operations

// Filters, callbacks and lists given as pointers may be null.

/// Lists the entries of a folder, but not those of the folders in it, in the order of the system: the
/// `directory_list` service of the thread's context. Each is appended to `out`.
///
/// False on failure, with the first failure copied to `err`; a success leaves `err` as it was. Failures:
/// exc::fileNotFound, and exc::fileInvalidFolder for what is no folder or cannot be listed; and where the
/// callback is one of those below, the failures that it received: of a folder further down, or of what it
/// does with an entry.
KESTA_API bool directory_list(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                              std::vector<file>* out);
KESTA_API bool directory_list(const file& folder, exception& err, fileCallback& callback);
KESTA_API bool directory_list(const file& folder, exception& err, fileFilter& filter, fileCallback& callback);
KESTA_API bool directory_list(const file& folder, exception& err, fileFilter& filter, std::vector<file>& out);
KESTA_API bool directory_list(const file& folder, exception& err, std::vector<file>& out);

/// Copies what is in a folder, at any depth, to the same places below `to`, which is made if it is missing.
/// Files that stand there are replaced, and other entries stay. The callback and `out` get the entries of
/// `from` that were copied. Links are followed in the place of `from` and of `to`, and nowhere below. Files
/// that this library is writing then, here or in another process, are left out under their temporary names
/// (see write()), and so are such ones that vanish meanwhile.
///
/// False on failure, with the first failure copied to `err`. Failures: those of copy_file() and
/// directory_list(); exc::fileUnCreateFolder for a folder, and when `to` is `from` or lies in it;
/// exc::fileExpectedFolder and exc::fileExpectedFile where an entry of the other kind stands, the former also
/// for a link in the place of a folder below `to`; exc::fileOsStream for a link, which is not copied.
KESTA_API bool copy_folder(const file& from, file to, exception& err, fileFilter* filter = nullptr,
                           fileCallback* callback = nullptr, std::vector<file>* out = nullptr);
KESTA_API bool copy_folder(const file& from, file to, exception& err, fileCallback& callback);
KESTA_API bool copy_folder(const file& from, file to, exception& err, fileFilter& filter,
                           fileCallback& callback);
KESTA_API bool copy_folder(const file& from, file to, exception& err, fileFilter& filter,
                           std::vector<file>& out);
KESTA_API bool copy_folder(const file& from, file to, exception& err, std::vector<file>& out);

/// Whether each entry below `from` has one of the same kind, and for files of the same size, at the same
/// place below `to`. Contents are not compared, and what else is below `to` does not matter. Each difference
/// is a failure that names the path below `to`: exc::fileNotFound, exc::fileExpectedFolder,
/// exc::fileExpectedFile, exc::fileStrageFileSize. The callback receives every one, and `err` gets the
/// first. Files that are being written are left out as by copy_folder().
KESTA_API bool verify(const file& from, file to, exception& err, fileCallback& callback,
                      fileFilter* filter = nullptr);

/// Erases a file, or a folder with all that is in it, also what is marked as read-only; of links, the link.
/// Files come first, as they are read, then the folders from the innermost outwards, `path` last. The filter
/// is not asked about `path`. A folder that holds something that was refused, or failed, stays and is no
/// failure of its own. A folder that a link has taken the place of since it was listed is a failure, and what
/// the link leads to stays; so do temporary files that are being written, while those that a process has left
/// go. False on failure, with the first failure copied to `err`: exc::fileNotFound,
/// exc::fileUnDeleted and those of directory_list().
KESTA_API bool erase(file path, exception& err, fileFilter* filter = nullptr,
                     fileCallback* callback = nullptr);
KESTA_API bool erase(file path, exception& err, fileCallback& callback);
KESTA_API bool erase(file path, exception& err, fileFilter& filter, fileCallback& callback);
KESTA_API bool erase(file path, exception& err, fileFilter& filter);

/// The base of the callbacks that do the work; they are given to directory_list() and put one behind the
/// other. What they receive they pass on to another callback, which may be null, and when that one asks to
/// stop, so do they. They keep references to the callbacks, filters and lists that they are made from.
class KESTA_API RelayCallBack : public fileCallback {
 public:
  ~RelayCallBack() override;
  RelayCallBack(const RelayCallBack&) = delete;
  RelayCallBack& operator=(const RelayCallBack&) = delete;

  void onRead(const file& entry) override;
  void onFinish() override;
  void onFailure(const exception& error) override;

  /// The first failure; OK() when there was none.
  const exception& get_failure() const noexcept { return failure_; }
  /// How many failures it received.
  std::size_t count_failures() const noexcept { return failures_; }

 protected:
  /// Passes on to `to`.
  explicit RelayCallBack(fileCallback* to);
  /// Whether it has to stop.
  bool stops() noexcept;
  /// Works on the folders of a tree through what holds them open. Without, a tree is held from the folder
  /// on that has the first entry.
  void work_on(std::shared_ptr<held_tree> tree);
  const std::shared_ptr<held_tree>& tree_of(const file& entry);
  const std::shared_ptr<held_tree>& tree() const noexcept { return tree_; }

 private:
  fileCallback* to_;
  exception failure_;
  std::size_t failures_ = 0;
  std::shared_ptr<held_tree> tree_;
};

/// Makes a listing go down into the folders that it finds, when the listing of one has ended (folders are
/// the entries whose is_directory() says so, which may be of the application's own): first come all entries
/// of a folder, then those of its first folder and what is below that, and so on. Entries that its filter
/// refuses are neither collected nor passed on.
class KESTA_API RecursiveCallBack : public RelayCallBack {
 public:
  /// Collects in `out`, asks `filter` and passes on to `to`, where they are given; pointers may be null.
  explicit RecursiveCallBack(std::vector<file>& out);
  RecursiveCallBack(std::vector<file>& out, fileFilter& filter);
  explicit RecursiveCallBack(fileCallback& to);
  RecursiveCallBack(fileFilter& filter, fileCallback& to);
  RecursiveCallBack(std::vector<file>* out, fileFilter* filter, fileCallback* to);
  ~RecursiveCallBack() override;

  void onRead(const file& entry) override;
  void onFinish() override;
  void onFailure(const exception& error) override;

 protected:
  /// Lists a folder, which is followed if it is a link, and all below it to this callback.
  void walk(const file& top);

 private:
  void descend(const file* top);
  void list(const file& folder);

  std::vector<file>* out_;
  fileFilter* filter_;
  std::vector<file> pending_;  // folders to go down into, the next one last
  bool descends_ = false;
  bool failed_ = false;  // the listing under way has reported a failure
};

/// Copies each entry below `source` to the same place below `target`; of a folder, the folder alone. What was
/// copied is collected and passed on. An entry that is not below `source` is a failure (exc::BadArgument).
class KESTA_API CopyFolderCallBack : public RelayCallBack {
 public:
  /// Collects in `out`, asks `filter` and passes on to `to`, where they are given; pointers may be null.
  CopyFolderCallBack(const file& source, const file& target, std::vector<file>& out);
  CopyFolderCallBack(const file& source, const file& target, std::vector<file>& out, fileFilter& filter);
  CopyFolderCallBack(const file& source, const file& target, fileCallback& to);
  CopyFolderCallBack(const file& source, const file& target, fileFilter& filter, fileCallback& to);
  CopyFolderCallBack(const file& source, const file& target, std::vector<file>* out, fileFilter* filter,
                     fileCallback* to);
  ~CopyFolderCallBack() override;

  void onRead(const file& entry) override;
  /// Makes the target if nothing was copied, so that an empty folder is copied too.
  void onFinish() override;

  void onFailure(const exception& error) override;

 private:
  bool copy(const file& entry);
  void reach(const file& folder);

  file source_, target_;
  std::vector<file>* out_;
  fileFilter* filter_;
  std::shared_ptr<held_tree> targets_;
};

/// Compares each entry below `source` with what is at the same place below `target`; those that agree are
/// passed on, the others are failures, and so is an entry that is not below `source` (exc::BadArgument).
class KESTA_API VerifyFolderCallBack : public RelayCallBack {
 public:
  /// Passes on to `to`.
  VerifyFolderCallBack(const file& source, const file& target, fileCallback& to);
  ~VerifyFolderCallBack() override;

  void onRead(const file& entry) override;
  void onFinish() override;
  void onFailure(const exception& error) override;

 private:
  void compare(const file& entry) const;

  file source_, target_;
};

/// Erases what it reads: files and links at once, folders, which have to be empty by then, at the end and in
/// reverse order. What was erased is passed on.
class KESTA_API DeleteCallBack : public RelayCallBack {
 public:
  /// Passes on to `to`, which may be null.
  explicit DeleteCallBack(fileCallback& to);
  explicit DeleteCallBack(fileCallback* to);
  ~DeleteCallBack() override;

  void onRead(const file& entry) override;
  void onFinish() override;
  void onFailure(const exception& error) override;

  /// Notes that the entry stays, so that the folders around it are left alone.
  void keep(const file& entry);

 private:
  void remove(const file& entry, bool is_folder, bool is_link);
  bool is_removed(const file& entry, bool is_folder, bool is_link);

  std::vector<file> folders_;
  std::set<file> kept_;  // folders that hold something that stays
};

}  // namespace files

}  // namespace ruvo
