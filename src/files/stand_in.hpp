// SPDX-License-Identifier: BSL-1.0
#pragma once

// New files that are to take the place of others, and copies that are made through one.

#include <ruvo/file.hpp>

#include "system/folder.hpp"

namespace ruvo::files {

/// Whether a name has the form of those that new files have until they are whole: "~", a number, "_", a
/// number, ".tmp".
bool is_stand_in(const std::wstring& name);

/// Whether an entry of that form is being written, by this process or another one.
bool is_being_written(const file& path);

/// The same as copy_file(), from a folder to another one that are held, to a path that is no folder. The
/// source's may be null.
void copy_held(const file& from, const file& to, const platform::held_folder* source,
               const platform::held_folder& target);

}  // namespace ruvo::files
