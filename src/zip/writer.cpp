// SPDX-License-Identifier: BSL-1.0

// ruvo::zip::writer, and folders packed with all that is in them.

#include <ruvo/exc.hpp>
#include <ruvo/zip.hpp>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "base/utf.hpp"
#include "files/held_tree.hpp"
#include "files/listing.hpp"
#include "files/pieces.hpp"
#include "files/stand_in.hpp"
#include "zip/failures.hpp"
#include "zip/names.hpp"
#include "zip/new_archive.hpp"
#include "zip/open_archive.hpp"

namespace ruvo::zip {

progress_callback::progress_callback() = default;
progress_callback::~progress_callback() = default;
void progress_callback::on_progress(const file&, unsigned long long, unsigned long long) {}

namespace {

/// Ends an entry at which the callback asked to stop.
struct stopped {};

std::uint32_t attributes_of(const platform::entry_facts& facts) {
  return attribute::archive | (facts.read_only ? attribute::read_only : 0) |
         (facts.hidden ? attribute::hidden : 0);
}

/// Adds a file; `path` is what is reported and may be another way to say it.
void add_content(new_archive& to, const std::wstring& name, const file& source, const file& path,
                 progress& report) {
  platform::entry_facts found;
  if (!platform::read_facts(source, platform::links::follow, found)) throw exc::fileNotFound(source);
  files::file_reader in(source);
  const std::uint64_t size = in.left();
  std::vector<char> buffer(std::min<std::size_t>(in.left(), piece_size));
  bool is_first = true;
  to.add(name, {found.modified, attributes_of(found), size}, [&]() -> std::string_view {
    if (!is_first && !report.report(path, size - in.left(), size)) throw stopped();
    is_first = false;
    const std::size_t count = std::min(in.left(), buffer.size());
    in.read(buffer.data(), count);
    return {buffer.data(), count};
  });
}

void add_view(new_archive& to, const std::wstring& name, std::string_view content, const datetime& time) {
  bool is_given = false;
  to.add(name, {static_cast<long long>(time.get_lapso()), attribute::archive, content.size()},
         [&] { return std::exchange(is_given, true) ? std::string_view() : content; });
}

struct found_path {
  std::wstring path, name;  // the name with "/" between its parts
  platform::entry_facts facts;
};

struct walker final : files::RecursiveCallBack {
  using RecursiveCallBack::RecursiveCallBack;
  using RecursiveCallBack::walk;
  using RecursiveCallBack::work_on;
};

/// Collects what is in a folder, then packs it in the order of the names. Its end is reported by who uses it.
class tree_packer final : public files::RelayCallBack {
 public:
  explicit tree_packer(fileCallback* to) : RelayCallBack(to), report_(to) {}

  void pack(const file& folder, const std::wstring& prefix, fileFilter* filter, new_archive& to) {
    tree_ = std::make_shared<files::held_tree>(folder, true);
    walker going(nullptr, filter, this);
    going.work_on(tree_);
    going.walk(tree_->top());
    std::ranges::sort(found_, {}, &found_path::name);
    for (const found_path& each : found_) {
      if (stops() || to.broken.WRONG()) return;
      add(each, prefix, to);
    }
  }

  /// A single file.
  void pack_file(const std::wstring& name, const file& source, new_archive& to) {
    attempt(name, source, [&] { add_content(to, name, source, source, report_); });
  }

  void onRead(const file& entry) override {
    found_path each{entry, {}, {}};
    if (stops() || !files::look_at(entry, each.facts)) return;
    if (!files::place_below(tree_->top(), each.path, each.name)) {
      onFailure(exc::BadArgument(entry));
      return;
    }
    use_slashes(each.name);
    if (each.facts.is_folder && !each.facts.is_link) each.name += L'/';
    found_.push_back(std::move(each));
  }
  void onFinish() override {}
  void finish() { RelayCallBack::onFinish(); }
  using RelayCallBack::stops;

 private:
  void add(const found_path& each, const std::wstring& prefix, new_archive& to) {
    const file path(each.path);
    if (is_left_out(path, to.path)) return;
    attempt(each.name, path, [&] {
      if (each.facts.is_link) throw failure_of<exc::zipUnsupported>(each.path, L"enlace");
      if (each.facts.is_folder)
        to.add_folder(prefix + each.name, each.facts.modified);
      else
        add_held(each, path, prefix + each.name, to);
    });
  }

  /// A file is read by its path, while it and its folder are held.
  void add_held(const found_path& each, const file& path, const std::wstring& name, new_archive& to) {
    const auto folder = tree_->reach(folder_of(path));
    if (!folder) throw exc::fileOsStream(each.path);
    const platform::held_file held(*folder, path.get_name());
    if (!held || !held.is_at(path)) throw exc::fileOsStream(path);
    add_content(to, name, path, path, report_);
  }

  /// What is being written, and the archive that is to be replaced.
  static bool is_left_out(const file& path, const file& archive) {
    if (files::is_stand_in(path.get_name()) && (files::is_being_written(path) || !path.exists())) return true;
    if (archive.empty() || twin_key(path.get_name()) != twin_key(archive.get_name())) return false;
    const file one = folder_of(path), other = folder_of(archive);
    return platform::is_inside(one, other) && platform::is_inside(other, one);
  }

  template <class Body>
  void attempt(const std::wstring& name, const file& path, Body body) {
    exception failure;
    try {
      if (!is_done(failure, name, body)) {
        onFailure(failure);
        return;
      }
    } catch (const stopped&) {
      report_.rethrow();
      return;
    }
    RelayCallBack::onRead(path);
  }

  progress report_;
  std::shared_ptr<files::held_tree> tree_;
  std::vector<found_path> found_;
};

std::wstring prefix_with_slash(std::wstring prefix) {
  use_slashes(prefix);
  if (!prefix.empty() && !prefix.ends_with(L'/')) prefix += L'/';
  return prefix;
}

void expect_open(const std::unique_ptr<new_archive>& state) {
  if (!state) throw exc::BadArgument(L"writer");
  state->expect_whole();
}

std::unique_ptr<new_archive> begin_archive(const file& path) {
  if (path.empty() || path.is_directory() || !folder_of(path).is_directory()) throw no_target(path);
  try {
    return std::make_unique<new_archive>(path);
  } catch (const exc::FileException&) {
    throw detail::about(exc::zipCreateOpenError(),
                        [&path] { return static_cast<const std::wstring&>(path); });
  }
}

bool conclude(tree_packer& work, const exception& failure, exception& err) {
  if (failure.WRONG()) work.onFailure(failure);
  work.finish();
  if (work.get_failure().WRONG()) work.get_failure().copy_on(err);
  return work.get_failure().OK();
}

}  // namespace

writer::writer() noexcept = default;
writer::writer(writer&&) noexcept = default;
writer::~writer() = default;
writer& writer::operator=(writer&&) noexcept = default;

bool writer::open(const file& archive, exception& err) {
  state_.reset();
  return is_done(err, archive, [&] { state_ = begin_archive(archive); });
}

void writer::open_memory() { state_ = std::make_unique<new_archive>(); }

void writer::set_level(int level) {
  if (state_) state_->level = std::clamp(level, 0, 9);
}

bool writer::set_comment(const std::wstring& comment, exception& err) {
  return is_done(err, {}, [&] {
    expect_open(state_);
    std::string text = texto::to_utf_8(comment);
    if (text.size() > elsewhere_16) throw exc::BadArgument(L"comment");
    state_->comment = std::move(text);
  });
}

bool writer::add_bytes(const std::wstring& name, std::string_view content, exception& err,
                       const datetime& time) {
  return is_done(err, name, [&] {
    expect_open(state_);
    add_view(*state_, name, content, time);
  });
}

bool writer::add(const std::wstring& name, const binary& content, exception& err, const datetime& time) {
  const auto& bytes = content.get_store();
  return add_bytes(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()), err,
                   time);
}

bool writer::add_file(const std::wstring& name, const file& source, exception& err) {
  return is_done(err, name, [&] {
    expect_open(state_);
    progress silent(nullptr);
    add_content(*state_, name, source, source, silent);
  });
}

bool writer::add_empty_folder(const std::wstring& name, exception& err, const datetime& time) {
  return is_done(err, name, [&] {
    expect_open(state_);
    state_->add_folder(name, static_cast<long long>(time.get_lapso()));
  });
}

bool writer::add_folder(const file& folder, const std::wstring& prefix, exception& err, fileFilter* filter,
                        fileCallback* callback) {
  tree_packer work(callback);
  exception failure;
  const bool may_begin = is_done(failure, folder, [&] {
    expect_open(state_);
    if (!folder.is_directory()) throw no_source(folder);
  });
  if (may_begin) work.pack(folder, prefix_with_slash(prefix), filter, *state_);
  return conclude(work, failure, err);
}

bool writer::close(exception& err) {
  const std::unique_ptr<new_archive> ended = std::move(state_);
  return is_done(err, {}, [&] {
    expect_open(ended);
    if (ended->path.empty()) throw exc::BadArgument(L"writer");
    ended->finish();
  });
}

bool writer::close(binary& out, exception& err) {
  const std::unique_ptr<new_archive> ended = std::move(state_);
  return is_done(err, {}, [&] {
    expect_open(ended);
    if (!ended->path.empty()) throw exc::BadArgument(L"writer");
    ended->finish();
    static_cast<std::vector<unsigned char>&>(out) = std::move(ended->out).content();
  });
}

bool compress(const file& from, const file& to, exception& err, fileFilter* filter, fileCallback* callback) {
  tree_packer work(callback);
  exception failure;
  std::unique_ptr<new_archive> made;
  is_done(failure, from, [&] {
    if (!from.exists()) throw no_source(from);
    made = begin_archive(to);
  });
  if (!made) return conclude(work, failure, err);
  if (from.is_directory())
    work.pack(from, {}, filter, *made);
  else
    work.pack_file(from.get_name(), from, *made);
  is_done(failure, from, [&] {
    if (work.stops()) throw exc::ProcessCanceled();
    if (made->broken.OK()) made->finish();  // else it was reported
  });
  return conclude(work, failure, err);
}

}  // namespace ruvo::zip
