// SPDX-License-Identifier: BSL-1.0
#include "system/folder_reader.hpp"

#include <cerrno>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/utf.hpp"
#include "names.hpp"

namespace ruvo::platform {

struct folder_reader::state {
  DIR* folder;
  int error = 0;
};

folder_reader::folder_reader(const held_folder& folder) : state_(std::make_unique<state>()) {
  state_->folder = fdopendir(openat(descriptor_of(folder.get()), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

folder_reader::~folder_reader() {
  if (state_->folder) closedir(state_->folder);
}

bool folder_reader::next(found_entry& out) {
  while (state_->folder) {
    errno = 0;
    const dirent* const found = readdir(state_->folder);
    state_->error = errno;
    if (!found) return false;
    const std::string_view name = found->d_name;
    if (name == "." || name == "..") continue;
    if (!read_entry(dirfd(state_->folder), found->d_name, out)) continue;
    out.name = texto::to_utf_16(name);
    return true;
  }
  return false;
}

bool folder_reader::failed() const noexcept { return !state_->folder || state_->error; }

}  // namespace ruvo::platform
