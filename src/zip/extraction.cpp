// SPDX-License-Identifier: BSL-1.0

// Unpacking and checking archives: each entry is judged, then goes to a file that gets its name when it is
// whole.

#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>
#include <ruvo/zip.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "files/held_tree.hpp"
#include "files/listing.hpp"
#include "zip/failures.hpp"
#include "zip/open_archive.hpp"

namespace ruvo::zip {

namespace {

/// An entry as filters and callbacks see it.
class packed_file final : public file {
 public:
  packed_file(const std::wstring& path, bool is_folder, std::uint64_t size)
      : file(path), is_folder_(is_folder), size_(size) {}
  bool is_directory() const override { return is_folder_; }
  bool is_file() const override { return !is_folder_; }
  unsigned long long size() const override {
    if (is_folder_) throw exc::fileExpectedFile(*this);
    return size_;
  }

 private:
  bool is_folder_;
  std::uint64_t size_;
};

platform::new_file_facts facts_of(const record& from) {
  return {time_of(from), (from.attributes & attribute::read_only) != 0,
          (from.attributes & attribute::hidden) != 0};
}

/// A file in a folder that is held, or at a path of the caller's, from an entry. False when it was stopped.
bool write_entry(open_archive& from, const record& which, const std::wstring& name, const file& path,
                 const files::held_folder* folder, buffered_outlet& out) {
  files::file_writer made(path, folder);
  out.begin(path, which.size, &made);
  if (!from.unpack(which, name, out)) return false;
  const platform::new_file_facts facts = facts_of(which);
  made.settle(&facts);
  return true;
}

/// Works on all entries of an archive, as the operations on trees do.
class tree_reader : public files::RelayCallBack {
 public:
  tree_reader(open_archive& from, const file& top, fileFilter* filter, fileCallback* to)
      : RelayCallBack(to),
        from_(from),
        prefix_(top.empty() ? std::wstring() : files::prefix_of(top)),
        filter_(filter),
        report_(to),
        out_(report_) {}

  void work() {
    if (from_.list.overlaps()) {
      onFailure(failure_of<exc::zipBadFormated>(from_.bytes.path(), L"las entradas comparten bytes"));
    } else {
      for (std::size_t n = 0; n < from_.list.size() && !stops(); ++n) work_on(n);
    }
    onFinish();
  }

 protected:
  /// Unpacks an entry, or does not; false when it was stopped.
  virtual bool unpack(const record& which, const std::wstring& name, const file& path) {
    out_.begin(path, which.size, nullptr);
    return from_.unpack(which, name, out_);
  }

  open_archive& archive() noexcept { return from_; }
  buffered_outlet& out() noexcept { return out_; }

 private:
  void work_on(std::size_t index) {
    const record which = from_.list.get(index);
    const std::wstring name = from_.name(which);
    if (const wchar_t* const reason = refusal_of(name, from_.most.levels)) {
      onFailure(failure_of<exc::zipUnsafeName>(name, reason));
      return;
    }
    const packed_file path = path_of(name, which);
    if (filter_ && !accepts(name, path)) return;
    bool is_whole = false;
    if (!try_on(which, name, path, is_whole)) return;
    report_.rethrow();
    if (is_whole) onRead(path);
  }

  /// False after a failure of the entry.
  bool try_on(const record& which, const std::wstring& name, const file& path, bool& is_whole) {
    exception failure;
    const bool done = is_done(failure, name, [&] {
      from_.expect_readable(which, name);
      expect_no_twin(name);
      if (which.size > left()) throw failure_of<exc::zipLimit>(name, L"tamaño total");
      is_whole = unpack(which, name, path);
      if (is_whole && is_folder_name(name) && which.size)
        throw failure_of<exc::zipBadFormated>(name, L"un directorio no tiene contenido");
    });
    if (!done) onFailure(failure);
    return done;
  }

  /// How many bytes the operation may unpack yet. A content that is too long took one more than it may.
  std::uint64_t left() const noexcept {
    const std::uint64_t most = from_.most.total_bytes;
    return most - std::min(most, from_.unpacked() - before_);
  }

  packed_file path_of(std::wstring_view name, const record& which) const {
    const bool is_folder = is_folder_name(name);
    if (is_folder) name.remove_suffix(1);
    return {prefix_ + std::wstring(name), is_folder, which.size};
  }

  /// Asks about the folders on the way first, each once.
  bool accepts(const std::wstring& name, const file& path) {
    std::size_t above = 0;
    for (std::size_t begin = 0, end = 0; (end = name.find(L'/', begin)) != name.npos; begin = end + 1) {
      const std::size_t number = folders_.size() + 1;
      const auto [at, is_new] =
          folders_.try_emplace({above, name.substr(begin, end - begin)}, asked_folder{number, false});
      asked_folder& asked = at->second;
      if (is_new) asked.is_accepted = filter_->accept(packed_file(prefix_ + name.substr(0, end), true, 0));
      if (!asked.is_accepted) return false;
      above = asked.number;
    }
    return is_folder_name(name) || filter_->accept(path);
  }

  void expect_no_twin(std::wstring_view name) {
    if (is_folder_name(name)) return;  // two lead to one folder, in which nothing replaces anything
    if (!taken_.insert(twin_key(name)).second)
      throw failure_of<exc::zipUnsafeName>(std::wstring(name), L"otra entrada tiene el mismo nombre");
  }

  struct asked_folder {
    std::size_t number = 0;
    bool is_accepted = false;
  };

  open_archive& from_;
  const std::uint64_t before_ = from_.unpacked();
  std::wstring prefix_;
  fileFilter* filter_;
  progress report_;
  buffered_outlet out_;
  /// By the number of the folder above, 0 for the top, and the name in it.
  std::map<std::pair<std::size_t, std::wstring>, asked_folder> folders_;
  std::unordered_set<std::uint64_t> taken_;
};

/// Unpacks to a folder that is held.
class tree_extractor final : public tree_reader {
 public:
  tree_extractor(open_archive& from, const file& folder, fileFilter* filter, fileCallback* to)
      : tree_reader(from, folder, filter, to), folder_(folder) {}

  void work() {
    folder_.mkdirs(nullptr);
    tree_ = std::make_unique<files::held_tree>(folder_, true);
    if (tree_->identity()) {
      tree_reader::work();
    } else {
      onFailure(no_target(folder_));
      onFinish();
    }
  }

 private:
  bool unpack(const record& which, const std::wstring& name, const file& path) override {
    if (is_folder_name(name)) {
      if (!tree_reader::unpack(which, name, path)) return false;
      reach(path);
      return true;
    }
    const auto held = reach(folder_of(path));
    return write_entry(archive(), which, name, path, held.get(), out());
  }

  std::shared_ptr<const files::held_folder> reach(const file& folder) {
    using outcome = files::held_folder::outcome;
    if (auto held = tree_->reach(folder, true)) return held;
    if (tree_->reason() == outcome::file || tree_->reason() == outcome::link)
      throw exc::fileExpectedFolder(tree_->culprit());
    throw exc::fileUnCreateFolder(folder);
  }

  file folder_;
  std::unique_ptr<files::held_tree> tree_;
};

template <class Work>
bool run(Work&& work, exception& err) {
  work.work();
  if (work.get_failure().WRONG()) work.get_failure().copy_on(err);
  return work.get_failure().OK();
}

/// A failure before there is anything to work on.
bool refuse_all(const exception& failure, exception& err, fileCallback* callback) {
  failure.copy_on(err);
  if (callback) {
    callback->onFailure(failure);
    callback->onFinish();
  }
  return false;
}

}  // namespace

bool reader::extract(const entry& which, const file& to, exception& err) {
  return is_done(err, which.name, [&] {
    if (!state_ || which.index >= size() || get(which.index).name != which.name)
      throw exc::BadArgument(which.name);
    const record from = state_->list.get(which.index);
    state_->expect_readable(from, which.name);
    progress silent(nullptr);
    buffered_outlet out(silent);
    if (is_folder_name(which.name)) {
      if (!to.mkdirs(nullptr)) throw exc::fileUnCreateFolder(to);
    } else {
      write_entry(*state_, from, which.name, to, nullptr, out);
    }
  });
}

bool reader::extract_all(const file& folder, exception& err, fileFilter* filter, fileCallback* callback) {
  if (!state_) return refuse_all(exc::BadArgument(L"reader"), err, callback);
  return run(tree_extractor(*state_, folder, filter, callback), err);
}

bool reader::verify_all(exception& err, fileFilter* filter, fileCallback* callback) {
  if (!state_) return refuse_all(exc::BadArgument(L"reader"), err, callback);
  return run(tree_reader(*state_, state_->bytes.path(), filter, callback), err);
}

bool extract(const file& archive, const file& folder, exception& err, fileFilter* filter,
             fileCallback* callback, const limits& most) {
  reader from;
  exception failure;
  if (!from.open(archive, failure, most)) return refuse_all(failure, err, callback);
  return from.extract_all(folder, err, filter, callback);
}

bool verify(const file& archive, exception& err, fileCallback* callback, const limits& most) {
  reader from;
  exception failure;
  if (!from.open(archive, failure, most)) return refuse_all(failure, err, callback);
  return from.verify_all(err, nullptr, callback);
}

}  // namespace ruvo::zip
