// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names and relative paths that others give: which of them stay below a folder, and can be files of Windows.

#include <ruvo/api.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace ruvo::files {

/// What is wrong with a name, or with a relative path.
enum class name_fault : std::uint8_t {
  none,       ///< Nothing.
  empty,      ///< There is no name.
  parent,     ///< "..", which leads out of the folder; "." where one name is asked for.
  absolute,   ///< A path that begins with a separator: a root, a share, a device.
  drive,      ///< A path that begins with a drive, "C:\a" or "C:a".
  stream,     ///< A ":", behind which a stream of the file would stand.
  device,     ///< A name of the system's own in either case, such as "nul.txt", "COM1" or "lpt¹ .log".
  character,  ///< A control character, half a surrogate pair, one of `< > " | ? *`, a separator in one name.
  ending,     ///< A blank or a point at the end of a name, which most programs lose.
  too_long    ///< More than 255 units in a name, or 32,000 in a path.
};

/// The first fault of a name for one entry of a folder. Nothing is asked of the system, and what it says is
/// the same for folders on any file system.
KESTA_API name_fault fault_of_name(std::wstring_view name) noexcept;

/// The first fault of a path below a folder, with `\` or `/` between its names. Each name is tested by
/// fault_of_name(), but for "." and separators in a row, which do not count; one at the end is no fault.
KESTA_API name_fault fault_of_path(std::wstring_view path) noexcept;

/// The fault in Spanish words, as part of a sentence; empty for none.
KESTA_API std::wstring describe(name_fault fault);

/// A path below a folder, for paths that come from elsewhere: archives, requests, mails. False with
/// exc::fileUnsafePath in `err`, and `out` as it was, when fault_of_path() finds a fault; the second form
/// throws it. The text alone is looked at: what stands below the folder already may still be a link that
/// leads elsewhere. `out` may be `folder`.
KESTA_API bool safe_join(file& out, const file& folder, std::wstring_view path, exception& err);
[[nodiscard]] KESTA_API file safe_join(const file& folder, std::wstring_view path);

}  // namespace ruvo::files
