#pragma once

// What paths ask the file system.

#include <string>

namespace ruvo::platform {

enum class entry_kind { none, file, folder };

/// What stands at the path; `none` also when the system does not tell.
entry_kind kind_of(const std::wstring& path) noexcept;

}  // namespace ruvo::platform
