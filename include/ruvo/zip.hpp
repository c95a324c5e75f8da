// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::zip, archives of files and folders: written, listed, read, checked and unpacked.
//
//   ruvo::exception failure;
//   if (!ruvo::zip::compress(L"C:\\datos", L"C:\\copias\\datos.zip", failure)) ...
//   if (!ruvo::zip::extract(L"C:\\copias\\datos.zip", L"D:\\datos", failure)) ...

#include <ruvo/api.hpp>
#include <ruvo/binary.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/files/tree.hpp>
#include <ruvo/fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Zip archives (APPNOTE 6.3): stored and deflated entries, with 64-bit sizes where they are needed.
///
/// Operations give true for success; the first failure is copied to their exception, and a success leaves it
/// as it was. Those on many entries go on after one that failed, as those of <ruvo/files/tree.hpp> do: the
/// callback receives every failure. Failures of archives, with what they are about as their detail:
/// exc::zipNoOrigen where what is to be packed or opened is missing, exc::zipNoDestino where the target has
/// no place, exc::zipCreateOpenError where an archive cannot be written, exc::zipBadFormated,
/// exc::zipUnsafeName, exc::zipLimit, exc::zipUnsupported and exc::zipBadData for archives and entries that
/// are wrong, dangerous, too large, of a kind that is not read, or damaged. Files that are read and written
/// have the failures of files::read() and files::write().
///
/// An archive of somebody else is not trusted. What goes out of it is at most what it promises and what the
/// limits allow, and no byte of it is used twice. An entry's name is never repaired: when it may lead out of
/// the target, or to something else than a file of that name, it is a failure, and the others are unpacked.
namespace ruvo::zip {

struct open_archive;
struct new_archive;

/// What an archive says of an entry. Nothing of it is true before the entry was read.
struct entry {
  /// With "/" between its parts, also where the archive has "\"; that of a folder ends with it.
  std::wstring name;
  /// In bytes: of the content, and of what the archive has of it.
  unsigned long long size = 0, packed_size = 0;
  /// When the content was last changed. The beginning of 1980, local time, where the archive does not know,
  /// or names a day or an hour that there is not.
  datetime time = datetime(0LL);
  /// CRC-32 of the content.
  std::uint32_t crc = 0;
  /// 0 stored, 8 deflated; others are listed, but not read.
  unsigned method = 0;
  bool is_directory = false;
  /// A symbolic link, which is not made.
  bool is_link = false;
  /// It is listed, but not read.
  bool is_encrypted = false;
  bool is_read_only = false;
  bool is_hidden = false;
  /// Its place in the archive, from 0.
  std::size_t index = 0;
};

/// What an archive from elsewhere may take. More is exc::zipLimit, of the archive for the first two, which it
/// needs memory for, and of an entry for the others. What came out of entries that fail counts, too.
struct limits {
  std::size_t entries = 1'000'000;                       ///< In the list.
  std::size_t directory_bytes = std::size_t{256} << 20;  ///< Of the list of entries.
  unsigned long long entry_bytes = 16ULL << 30;          ///< Of one entry's content.
  unsigned long long total_bytes = 64ULL << 30;          ///< Of all that one operation unpacks.
  unsigned long long memory_bytes = 2ULL << 30;          ///< Of an entry that is read into memory.
  std::size_t levels = 256;  ///< Of folders in a name; more is exc::zipUnsafeName.
};

/// The code page of names whose archive does not say that they are UTF-8: that of western European DOS, in
/// which Explorer writes.
inline constexpr unsigned western_dos = 850;

/// A callback that is also notified within an entry: long ones can be shown and stopped.
class KESTA_API progress_callback : public fileCallback {
 public:
  progress_callback();
  ~progress_callback() override;

  /// So many bytes of the entry's content were worked on, after each 256 KB or less. terminate() has the
  /// operation stop here.
  virtual void on_progress(const file& entry, unsigned long long done, unsigned long long size);
};

/// Reads an archive, a file that stays open or bytes in memory. One thread at a time; several readers of one
/// file do not disturb each other.
class KESTA_API reader {
 public:
  reader() noexcept;
  reader(const reader&) = delete;
  reader(reader&& other) noexcept;
  ~reader();
  reader& operator=(const reader&) = delete;
  reader& operator=(reader&& other) noexcept;

  /// Reads the list of entries, in a time that is linear in it. What stands before and behind the archive is
  /// passed over. The page is that of names that are not said to be UTF-8 and do not look like it;
  /// exc::BadArgument for one that the system does not know. An archive that is open is closed before.
  bool open(const file& archive, exception& err, const limits& most = {}, unsigned code_page = western_dos);
  /// The same of an archive in memory, which can be moved in.
  bool open_bytes(binary archive, exception& err, const limits& most = {}, unsigned code_page = western_dos);
  /// Lets go of the file.
  void close() noexcept;
  /// Whether an archive is open.
  bool is_open() const noexcept { return state_ != nullptr; }

  /// How many entries there are; 0 of one that is not open.
  std::size_t size() const noexcept;
  /// An entry in the order of the archive; throws exc::MissingElement.
  entry get(std::size_t index) const;
  /// All of them.
  std::vector<entry> entries() const;
  /// The first entry of that name, in constant time after the first call, whatever names the archive has.
  /// Both separators are alike, case counts. False, and `out` as it was, when there is none.
  bool find(const std::wstring& name, entry& out) const;
  /// The remark of the archive.
  std::wstring comment() const;

  /// Reads an entry of this reader into memory; on failure `out` stays as it was. exc::BadArgument for an
  /// entry of another one.
  bool read(const entry& which, binary& out, exception& err);
  /// The same by its name; exc::zipNoOrigen when there is none.
  bool read(const std::wstring& name, binary& out, exception& err);
  /// Unpacks an entry to a file, whatever its own name is, in the manner of files::copy_file(): a file at
  /// `to` is replaced in one step when the content is whole and its checksum right. Of a folder it makes the
  /// folder.
  bool extract(const entry& which, const file& to, exception& err);

  /// Unpacks all entries, or those that the filter takes, to a folder, which is made if it is missing. The
  /// files that stand there are replaced, and get the times of the archive. Links are followed in the place
  /// of `folder` and nowhere below: folders below are held while something is written to them. On Windows
  /// nobody can put another one in their place meanwhile; where somebody can, the entry fails. Filter and
  /// callback are given the paths in the folder. Stopping is no failure; the entry that was worked on is not
  /// there then.
  ///
  /// Nothing is unpacked of an archive whose entries share bytes. Without asking the filter an entry is
  /// refused whose name has an empty part, "." or "..", begins with a separator, holds one of `:<>"|?*` or a
  /// control character, has a part that ends with a blank or a point or is the name of a device, or that is
  /// too long; then what is encrypted, a link, packed by other methods, or differs from the name of an
  /// earlier entry in nothing but case and composition, and where entry and list disagree.
  bool extract_all(const file& folder, exception& err, fileFilter* filter = nullptr,
                   fileCallback* callback = nullptr);
  /// Does the same without writing anything: whether everything could be unpacked. The paths are those of the
  /// entries below that of the archive.
  bool verify_all(exception& err, fileFilter* filter = nullptr, fileCallback* callback = nullptr);

 private:
  std::unique_ptr<open_archive> state_;
};

/// Writes an archive. Nothing has its name before close(), and a writer that goes without it leaves nothing
/// behind; what had the name before stays until then. After a failure to write, every further operation
/// fails in the same way; what cannot be read for an entry leaves the archive without that entry.
///
/// Names have "/" or "\" between their parts. Those that extract_all() would refuse are refused here, and so
/// are one that was added before and, for a content, one that ends with a separator (exc::zipUnsafeName).
class KESTA_API writer {
 public:
  writer() noexcept;
  writer(const writer&) = delete;
  writer(writer&& other) noexcept;
  ~writer();
  writer& operator=(const writer&) = delete;
  writer& operator=(writer&& other) noexcept;

  /// Begins an archive that will replace a file in the manner of files::write(). One that was begun before is
  /// given up.
  bool open(const file& archive, exception& err);
  /// Begins an archive in memory.
  void open_memory();
  /// Whether an archive was begun.
  bool is_open() const noexcept { return state_ != nullptr; }

  /// From 0, stored, over 1, quick, to 9, small; 6 at first. Others are taken for the nearest.
  void set_level(int level);
  /// The remark of the archive. exc::BadArgument for more than 65,535 bytes of UTF-8.
  bool set_comment(const std::wstring& comment, exception& err);

  /// Adds a content; a wide text is its UTF-8.
  bool add(const std::wstring& name, const binary& content, exception& err,
           const datetime& time = datetime());
  bool add_bytes(const std::wstring& name, std::string_view content, exception& err,
                 const datetime& time = datetime());
  /// Adds a file, which is read in pieces, with its time and whether it is hidden or read-only. One that
  /// becomes shorter meanwhile is a failure; what one grows by stays out.
  bool add_file(const std::wstring& name, const file& source, exception& err);
  /// Adds an empty folder.
  bool add_empty_folder(const std::wstring& name, exception& err, const datetime& time = datetime());
  /// Adds what is in a folder, at any depth, below the name `prefix`, which may be empty, in the order of the
  /// names. Filter and callback are as in files::copy_folder(), and so is what is being written just then; an
  /// archive that this writer is to replace is left out, too. A link is a failure, exc::zipUnsupported.
  /// Stopping is none: the entry that was worked on is not added.
  bool add_folder(const file& folder, const std::wstring& prefix, exception& err,
                  fileFilter* filter = nullptr, fileCallback* callback = nullptr);

  /// Ends the archive; a file is on the disk then, and has its name. On failure nothing appears. The writer
  /// is not open any more, whatever comes. exc::BadArgument where none was begun.
  bool close(exception& err);
  /// The same of an archive in memory, which replaces `out`; on failure `out` stays as it was.
  bool close(binary& out, exception& err);

 private:
  std::unique_ptr<new_archive> state_;
};

/// Packs a file, or what is in a folder, as writer::add_folder() does without a prefix. What fails is left
/// out and makes the result false, and the archive of the others appears; not so if it cannot be written
/// itself, or the callback asks to stop, which is exc::ProcessCanceled here.
KESTA_API bool compress(const file& from, const file& to, exception& err, fileFilter* filter = nullptr,
                        fileCallback* callback = nullptr);
/// Unpacks an archive, as reader::extract_all() does.
KESTA_API bool extract(const file& archive, const file& folder, exception& err, fileFilter* filter = nullptr,
                       fileCallback* callback = nullptr, const limits& most = {});
/// Checks an archive, as reader::verify_all() does.
KESTA_API bool verify(const file& archive, exception& err, fileCallback* callback = nullptr,
                      const limits& most = {});

}  // namespace ruvo::zip
