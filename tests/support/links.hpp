// SPDX-License-Identifier: BSL-1.0
#pragma once

// Links and disks for tests: made by the program where the system lets it, otherwise by the script that runs
// beside it (with-links.sh), which is what makes them under Wine.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

namespace links {

/// Whether the script runs.
inline bool can_ask() { return std::getenv("KESTA_LINKS") != nullptr; }

/// Has the script do something; false when it does not run or fails.
inline bool ask(const std::string& what) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  if (!can_ask()) return false;
  fs::remove("enlaces.no", ignored);
  std::ofstream("enlaces.nuevo", std::ios::binary) << what << '\n';
  fs::rename("enlaces.nuevo", "enlaces.pide", ignored);
  for (int i = 0; i < 4000 && fs::exists("enlaces.pide", ignored); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return !fs::exists("enlaces.pide", ignored) && !fs::exists("enlaces.no", ignored);
}

/// Makes a link to a folder, which is given as seen from the link's own.
inline bool make(const std::string& target, const std::string& name) {
  std::error_code error;
  if (can_ask()) return ask("link " + target + ' ' + name);
  std::filesystem::create_directory_symlink(target, name, error);
  return !error && std::filesystem::is_symlink(name);
}

/// Moves a folder away and puts a link in its place.
inline bool swap(const std::string& target, const std::string& name) {
  if (can_ask()) return ask("swap " + target + ' ' + name);
  std::error_code error;
  std::filesystem::rename(name, name + ".movida", error);
  return !error && make(target, name);
}

/// Removes a link, and brings what was moved away back.
inline void drop(const std::string& name) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (can_ask()) {
    ask("drop " + name);
    return;
  }
  if (fs::is_symlink(name)) fs::remove(name, error);
  if (fs::exists(name + ".movida") && !fs::exists(name)) fs::rename(name + ".movida", name, error);
}

}  // namespace links
