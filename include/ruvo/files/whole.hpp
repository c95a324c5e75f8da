// SPDX-License-Identifier: BSL-1.0
#pragma once

// Whole files: reading, writing and copying them, names for new ones, and their MIME types.

#include <ruvo/api.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>

#include <string>

/// Operations on whole files and on folders with all that is in them.
///
/// Failures of whole files: exc::fileNotFound for a missing path, exc::fileExpectedFile where a folder
/// stands, exc::fileOsStream when the system refuses to read or write the file, exc::fileStrageFileSize when
/// another size was read or copied than the file has; where the content is too much for memory, the former in
/// writing and the latter in reading. The forms with an exception copy the failure to it and give false, the
/// others throw; a success leaves it as it was.
namespace ruvo::files {

// --- reading

/// Reads a text: UTF-8, or UTF-16 little-endian behind the bytes FF FE. Either's byte order mark is no part
/// of the text. Malformed UTF-8 becomes U+FFFD; of UTF-16 all units are kept, but no odd last byte. What
/// `out` held is replaced, and kept on failure.
KESTA_API bool read(std::wstring& out, const file& path, exception& err);
KESTA_API bool read(memo& out, const file& path, exception& err);
/// Reads the bytes as they are. What `out` held is replaced, and kept on failure.
KESTA_API bool read(std::string& out, const file& path, exception& err);
KESTA_API bool read(binary& out, const file& path, exception& err);
/// The bytes as they are. Throws the failures of whole files.
KESTA_API binary read(const file& path);

// --- writing

/// Writes a text as UTF-8 without a byte order mark (lone surrogates become U+FFFD), and bytes as they are.
///
/// The content goes to a new file in the same folder, which takes the name when all of it is on the disk. So
/// whatever fails, at any time, the name stands for the old content or the new one, whole. A file that is
/// replaced passes on its access rights (not its owner), whether it is encrypted, hidden, a system file or
/// not indexed; without one the rights are those of the folder. A link is replaced, not followed. Read-only
/// files are not replaced, nor files that are open, even in this process; for these to be closed some 30
/// milliseconds are waited.
///
/// The new file is called "~", the number of the process, "_", a number, ".tmp" until then. Listings show it.
/// If the process ends meanwhile it goes away, unless its content was whole already, or was being copied.
///
/// A file that exists is replaced if `overwrite` is true. Otherwise it stays, and the content goes to the
/// name that autorename() derives. `*written`, if given, becomes the file really written; on failure it stays
/// as it was.
KESTA_API bool write(const std::wstring& content, const file& path, exception& err, file* written = nullptr,
                     bool overwrite = true);
KESTA_API bool write(const memo& content, const file& path, exception& err, file* written = nullptr,
                     bool overwrite = true);
KESTA_API bool write(const binary& content, const file& path, exception& err, file* written = nullptr,
                     bool overwrite = true);
/// Writes in the same way, gives the file really written and throws the failures of whole files.
KESTA_API file write(const std::wstring& content, const file& path, bool overwrite = true);
KESTA_API file write(const memo& content, const file& path, bool overwrite = true);
KESTA_API file write(const binary& content, const file& path, bool overwrite = true);

/// A literal, for which all of the forms would serve, is written as wide text.
inline bool write(const wchar_t* content, const file& path, exception& err, file* written = nullptr,
                  bool overwrite = true) {
  return write(std::wstring(content), path, err, written, overwrite);
}
inline file write(const wchar_t* content, const file& path, bool overwrite = true) {
  return write(std::wstring(content), path, overwrite);
}

/// Copies a file with its attributes and its time of modification. A file at `to` is replaced in one step, as
/// by write(), but without waiting until the content is on the disk. If `to` is a folder, the copy goes into
/// it under the same name. Gives the file written. Throws the failures of whole files.
KESTA_API file copy_file(const file& from, file to);

/// Whether somebody, this process counted, has the file open; false for folders and missing files.
KESTA_API bool is_locked(file path);

// --- names

// Nothing is created, so another program may take them before they are used.

/// The file whose path is that of `path` with the text behind it.
KESTA_API file append(const file& path, const std::wstring& text);
/// A free name in the same folder: `prefix` and `suffix` are put around the simple name, and if that is
/// taken, "_01", "_02", ... behind them ("informe.txt", "informe_01.txt"). Where many are taken, one between
/// them that is free may be passed over: the number of questions to the system grows with the logarithm.
KESTA_API file autorename(const file& path, const std::wstring& prefix = {}, const std::wstring& suffix = {});
/// A free name in a folder: `prefix`, `name`, and a counter from "_01" on; then `extension`, with a "."
/// before it unless it is empty or brings its own.
KESTA_API file get_temporal_file(file folder, std::wstring prefix, std::wstring name, std::wstring extension);
/// The same in the user's folder for temporary files. Throws exc::fileNotFound when the system names none, as
/// where TMP is too long for it.
KESTA_API file get_temporal_file(std::wstring prefix, std::wstring name, std::wstring extension);

/// The type that belongs to what follows the last "." of a name, in any case; "application/octet-stream" when
/// it is not known. (RFC 2046 and the registry of media types; where common servers differ from it, they are
/// followed.)
KESTA_API std::wstring get_mimetype(std::wstring name);

}  // namespace ruvo::files
