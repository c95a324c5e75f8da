// The host's folders, for the build that runs under its checkers.

#include <filesystem>
#include <string>
#include <system_error>

#include "files/listing_platform.hpp"
#include "names.hpp"
#include "texto/utf.hpp"

namespace ruvo::platform {

namespace {

namespace fs = std::filesystem;

void read_entry(const fs::path& path, const fs::file_status& kind, found_facts& out) {
  std::error_code error;
  out.is_link = fs::is_symlink(kind);
  out.is_folder = out.is_link ? fs::is_directory(path, error) : fs::is_directory(kind);
  const bool has_size = !out.is_folder && !out.is_link;
  const auto size = has_size ? fs::file_size(path, error) : 0;
  out.size = error ? 0 : size;
}

}  // namespace

struct folder_reader::state {
  fs::directory_iterator at;
  std::error_code error;
};

folder_reader::folder_reader(const std::wstring& path) : state_(std::make_unique<state>()) {
  state_->at = fs::directory_iterator(host_name(path), state_->error);
}

folder_reader::~folder_reader() = default;

bool folder_reader::next(found_entry& out) {
  state& now = *state_;
  if (now.error || now.at == fs::directory_iterator()) return false;
  std::error_code error;
  out.name = texto::to_utf_16(now.at->path().filename().string());
  read_entry(now.at->path(), now.at->symlink_status(error), out);
  now.at.increment(now.error);
  return true;
}

bool folder_reader::failed() const noexcept { return static_cast<bool>(state_->error); }

bool look_at(const std::wstring& path, found_facts& out) {
  std::error_code error;
  const fs::path name = host_name(path);
  const fs::file_status kind = fs::symlink_status(name, error);
  if (!fs::exists(kind)) return false;
  read_entry(name, kind, out);
  return true;
}

bool is_inside(const std::wstring& path, const std::wstring& folder) {
  std::error_code error;
  const fs::path wanted = fs::canonical(host_name(folder), error);
  if (error || path.empty()) return false;
  fs::path at = fs::weakly_canonical(fs::absolute(host_name(path), error), error);
  for (; at != at.parent_path(); at = at.parent_path())
    if (at == wanted) return true;
  return at == wanted;
}

bool remove_entry(const std::wstring& path, bool) {
  std::error_code error;
  const fs::path name = host_name(path);
  return !name.empty() && (fs::remove(name, error) || !error);
}

}  // namespace ruvo::platform
