// SPDX-License-Identifier: BSL-1.0

// The content of entries, out of which comes no more than what was promised.

#include "zip/open_archive.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "zip/failures.hpp"

namespace ruvo::zip {

namespace {

/// What both outlets and the archive agree on at the end of a content.
struct content_check {
  const record& which;
  const std::wstring& name;
  std::uint64_t done = 0;
  std::uint32_t crc = 0;

  /// The next bytes; more than the promised ones are a failure.
  void add(std::string_view bytes) {
    done += bytes.size();
    if (done > which.size) throw failure_of<exc::zipBadData>(name, L"tamaño");
    crc = packing::crc_32(crc, bytes);
  }
  void conclude() const {
    if (done != which.size) throw failure_of<exc::zipBadData>(name, L"tamaño");
    if (crc != which.crc) throw failure_of<exc::zipBadData>(name, L"suma de comprobación");
  }
};

/// Whether a number of a local record, which may stand in its field of 64 bits, is that of the list. With the
/// sizes behind the content, the record may have nothing.
bool agrees(std::uint32_t own, std::uint64_t listed, std::string_view wide, std::size_t place,
            bool is_behind) {
  if (own == listed && listed != elsewhere) return true;
  if (own == elsewhere && wide.size() >= place + 8) {
    const std::uint64_t number = get_64(wide, place);
    return number == listed || (is_behind && number == 0);
  }
  return is_behind && (own == 0 || own == elsewhere);
}

}  // namespace

bool progress::report(const file& entry, std::uint64_t done, std::uint64_t size) {
  if (!to_) return true;
  try {
    if (within_) within_->on_progress(entry, done, size);
    return !to_->can_stop();
  } catch (...) {
    thrown_ = std::current_exception();
    return false;
  }
}

bool buffered_outlet::take(std::size_t count) {
  if (to_) to_->write_at(done_, {buffer_.data(), count});
  done_ += count;
  return report_.report(entry_, done_, size_);
}

entry open_archive::describe(std::size_t index) const {
  const record from = list.get(index);
  entry out;
  out.name = name(from);
  out.size = from.size;
  out.packed_size = from.packed;
  out.time = datetime(time_of(from));
  out.crc = from.crc;
  out.method = from.method;
  out.is_directory = is_folder_name(out.name);
  out.is_link = from.is_link();
  out.is_encrypted = from.is_encrypted();
  out.is_read_only = from.attributes & attribute::read_only;
  out.is_hidden = from.attributes & attribute::hidden;
  out.index = index;
  return out;
}

void open_archive::expect_readable(const record& which, const std::wstring& name) const {
  const auto refuse = [&name](const wchar_t* reason) { throw failure_of<exc::zipUnsupported>(name, reason); };
  if (which.is_link()) refuse(L"enlace");
  if (which.is_special()) refuse(L"fichero especial");
  if (which.is_encrypted()) refuse(L"cifrado");
  if (which.flags & flag::patched) refuse(L"diferencias");
  if (which.method != stored && which.method != deflated)
    throw detail::about(exc::zipUnsupported(name),
                        [&] { return L"método " + std::to_wstring(which.method); });
  if (which.size > most.entry_bytes) throw failure_of<exc::zipLimit>(name, L"tamaño");
}

/// Where the content begins, once the entry's own record is seen to be as listed.
std::uint64_t open_archive::locate(const record& which, const std::wstring& name) {
  const auto refuse = [&name](const wchar_t* reason) { throw failure_of<exc::zipBadFormated>(name, reason); };
  const std::uint64_t begin = list.begin_of(which), next = list.next_behind(begin);
  std::string_view own = bytes.at(begin, local_size);
  if (own.size() < local_size || get_32(own, 0) != local_mark) refuse(L"no está donde dice el directorio");
  const std::size_t name_size = get_16(own, 26), length = local_size + name_size + get_16(own, 28);
  if (next <= begin || next - begin < length || next - begin - length < which.packed)
    refuse(L"comparte bytes con otra entrada");
  own = bytes.at(begin, length);
  const unsigned flags = get_16(own, 6);
  if (own.substr(local_size, name_size) != which.name || get_16(own, 8) != which.method ||
      ((flags ^ which.flags) & flag::encrypted))
    refuse(L"no es la que dice el directorio");
  const bool is_behind = flags & flag::sizes_behind;
  const std::string_view wide = find_extra(own.substr(0, length).substr(local_size + name_size), extra::wide);
  if ((get_32(own, 14) != which.crc && !(is_behind && get_32(own, 14) == 0)) ||
      !agrees(get_32(own, 22), which.size, wide, 0, is_behind) ||
      !agrees(get_32(own, 18), which.packed, wide, 8, is_behind))
    refuse(L"no tiene el tamaño o la suma que dice el directorio");
  return begin + length;
}

bool open_archive::unpack(const record& which, const std::wstring& name, outlet& to) {
  const std::uint64_t begin = locate(which, name);
  if (which.method == stored) {
    if (which.packed != which.size) throw failure_of<exc::zipBadFormated>(name, L"tamaño");
    return copy(which, name, begin, to);
  }
  if (which.size / packing::most_ratio > which.packed) throw failure_of<exc::zipBadData>(name, L"tamaño");
  return inflate(which, name, begin, to);
}

bool open_archive::copy(const record& which, const std::wstring& name, std::uint64_t begin, outlet& to) {
  content_check check{which, name};
  while (check.done < which.size) {
    std::size_t room = 0;
    char* const out = to.room(room);
    const std::string_view piece =
        bytes.at(begin + check.done)
            .substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(room, which.size - check.done)));
    std::memcpy(out, piece.data(), piece.size());
    unpacked_ += piece.size();
    check.add(piece);
    if (!to.take(piece.size())) return false;
  }
  check.conclude();
  return true;
}

bool open_archive::inflate(const record& which, const std::wstring& name, std::uint64_t begin, outlet& to) {
  using packing::unpacker;
  const auto refuse = [&name](const wchar_t* reason) { throw failure_of<exc::zipBadData>(name, reason); };
  if (!unpacker_) unpacker_ = std::make_unique<unpacker>();
  unpacker_->begin();
  content_check check{which, name};
  std::uint64_t left = which.packed;
  for (auto state = unpacker::state::more; state != unpacker::state::done;) {
    std::string_view in;
    if (left) in = bytes.at(begin + which.packed - left);
    in = in.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(in.size(), left)));
    const std::size_t offered = in.size();
    std::size_t room = 0, got = 0;
    char* const out = to.room(room);
    state = unpacker_->unpack(in, out, room, got);
    left -= offered - in.size();
    unpacked_ += got;
    check.add({out, got});
    if (state == unpacker::state::damaged) refuse(L"datos comprimidos");
    if (state == unpacker::state::more && !got && in.size() == offered) refuse(L"faltan datos");
    if (got && !to.take(got)) return false;
  }
  if (left) refuse(L"sobran datos");
  check.conclude();
  return true;
}

}  // namespace ruvo::zip
