// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names of entries: read from their bytes, judged, compared.

#include <ruvo/file.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "zip/format.hpp"

namespace ruvo::zip {

/// Whether all bytes are ASCII, and so the same in every encoding.
bool is_ascii(std::string_view bytes) noexcept;

/// The name of an entry, with "/" for "\".
std::wstring name_of(const record& from, unsigned code_page);
/// Whether the entry of that name is a folder. The bytes may say otherwise: a field may have another name.
inline bool is_folder_name(std::wstring_view name) noexcept { return name.ends_with(L'/'); }
/// A text whose encoding is not said.
std::wstring decoded(std::string_view bytes, unsigned code_page);

/// "/" for "\".
void use_slashes(std::wstring& name) noexcept;

/// Why a name with "/" between its parts is refused: a reason for people; null when it is not.
const wchar_t* refusal_of(std::wstring_view name, std::size_t levels) noexcept;

/// The folder of a path; "." for a path without one, since an empty path leads to nothing.
file folder_of(const file& path);

/// Equal for names that lead to one file: on systems that ignore case, or how letters are composed. For
/// others they differ, by all that can be foreseen; with each process they are others.
std::uint64_t twin_key(std::wstring_view name) noexcept;
/// The same for names that are equal.
std::uint64_t exact_key(std::wstring_view name) noexcept;
/// The same of an entry's name.
std::uint64_t exact_key_of(const record& from, unsigned code_page);

}  // namespace ruvo::zip
