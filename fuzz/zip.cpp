// SPDX-License-Identifier: BSL-1.0

// Archives: what is opened, listed, found, read and checked agrees, no name that is let through leads
// elsewhere, and what was read is the same after it was packed again. Each input is tried as it is, and with
// its places, sizes and checksums put right, so that what is wrong in it stands behind them.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz.hpp"
#include "packing/deflate.hpp"
#include "zip/raw_archive.hpp"

namespace zip = ruvo::zip;
using ruvo::binary;
using ruvo::exception;
using ruvo::file;

namespace {

constexpr std::size_t most_content = 1 << 20;

// --- mending

std::vector<std::size_t> places_of(const std::string& bytes, const char* mark) {
  std::vector<std::size_t> out;
  const std::string_view sought(mark, 4);
  for (std::size_t at = bytes.find(sought); at != bytes.npos; at = bytes.find(sought, at + 4))
    out.push_back(at);
  return out;
}

std::size_t get(const std::string& bytes, std::size_t at, unsigned count) {
  std::size_t out = 0;
  while (count-- > 0) out = out << 8 | static_cast<unsigned char>(bytes[at + count]);
  return out;
}

void set(std::string& bytes, std::size_t at, std::size_t value, unsigned count) {
  bytes.replace(at, count, raw::number(value, count));
}

std::string unpacked(std::string_view packed) {
  static std::string room(most_content, '\0');
  static ruvo::packing::unpacker from;
  std::size_t size = 0;
  from.begin();
  from.unpack(packed, room.data(), room.size(), size);
  return room.substr(0, size);
}

/// Puts an entry and its record in the list right, as far as there are bytes for it.
void mend_entry(std::string& bytes, std::size_t local, std::size_t central, std::size_t end) {
  if (end - local < 30 || bytes.size() - central < 46) return;
  const std::size_t name = get(bytes, local + 26, 2), begin = local + 30 + name + get(bytes, local + 28, 2);
  if (begin > end) return;
  const std::string content = bytes.substr(begin, end - begin);
  const std::string plain = get(bytes, local + 8, 2) == 8 ? unpacked(content) : content;
  for (const std::size_t at : {local + 14, central + 16}) {
    set(bytes, at, raw::crc_of(plain), 4);
    set(bytes, at + 4, content.size(), 4);
    set(bytes, at + 8, plain.size(), 4);
  }
  bytes.replace(central + 10, 2, bytes, local + 8, 2);
  set(bytes, central + 42, local, 4);
  if (get(bytes, central + 28, 2) == name && bytes.size() - central - 46 >= name)
    bytes.replace(central + 46, name, bytes, local + 30, name);
}

std::string mended(std::string bytes) {
  const auto locals = places_of(bytes, "PK\3\4"), centrals = places_of(bytes, "PK\1\2"),
             ends = places_of(bytes, "PK\5\6");
  if (centrals.empty() || ends.empty() || bytes.size() - ends.back() < 22) return bytes;
  for (std::size_t n = 0; n < std::min(locals.size(), centrals.size()); ++n) {
    const std::size_t end = n + 1 < locals.size() ? locals[n + 1] : centrals.front();
    if (end > locals[n]) mend_entry(bytes, locals[n], centrals[n], end);
  }
  set(bytes, ends.back() + 8, centrals.size(), 2);
  set(bytes, ends.back() + 10, centrals.size(), 2);
  if (ends.back() > centrals.front()) set(bytes, ends.back() + 12, ends.back() - centrals.front(), 4);
  set(bytes, ends.back() + 16, centrals.front(), 4);
  return bytes;
}

// --- checking

/// Looks at the names that are let through, and counts what becomes of them.
struct observer : ruvo::fileCallback, ruvo::fileFilter {
  bool accept(const file& entry) override {
    for (file at = entry; !at.empty(); --at) {
      const std::wstring name = at.get_name();
      FUZZ_CHECK(!name.empty() && name != L"." && name != L".." && name.find_first_of(L":/\\") == name.npos);
      FUZZ_CHECK(name.back() != L' ' && name.back() != L'.');
    }
    return true;
  }
  void onRead(const file&) override { ++read; }
  void onFailure(const exception& error) override {
    FUZZ_CHECK(error.WRONG());
    ++failed;
  }
  void onFinish() override { ++finished; }
  std::size_t read = 0, failed = 0;
  int finished = 0;
};

zip::limits small_limits() {
  zip::limits out;
  out.entries = 1000;
  out.entry_bytes = out.memory_bytes = most_content;
  out.total_bytes = 4 * most_content;
  return out;
}

void check(const std::string& bytes) {
  zip::reader in, again;
  zip::writer out;
  exception failure;
  if (!in.open_bytes(binary(bytes), failure, small_limits())) return;
  observer seen;
  const bool is_fine = in.verify_all(failure, &seen, &seen);
  FUZZ_CHECK(seen.finished == 1 && is_fine == (seen.failed == 0));
  FUZZ_CHECK(!is_fine || seen.read == in.size());
  out.open_memory();
  out.set_level(bytes.size() % 8 ? 0 : 6);  // to make ready for packing takes longer than all the rest
  std::vector<zip::entry> packed;
  std::size_t readable = 0;
  for (const zip::entry& each : in.entries()) {
    zip::entry found;
    FUZZ_CHECK(in.find(each.name, found) && found.index <= each.index && found.name == each.name);
    binary content;
    const bool is_read = in.read(each, content, failure);
    FUZZ_CHECK(!is_read || (content.size() == each.size &&
                            raw::crc_of({reinterpret_cast<const char*>(content.get_store().data()),
                                         content.size()}) == each.crc));
    readable += is_read;
    if (is_read && !each.is_directory && out.add(each.name, content, failure, each.time))
      packed.push_back(each);
  }
  FUZZ_CHECK(seen.read <= readable);
  binary archive, one, other;
  FUZZ_CHECK(out.close(archive, failure) && again.open_bytes(std::move(archive), failure));
  FUZZ_CHECK(again.size() == packed.size() && again.verify_all(failure));
  for (std::size_t n = 0; n < packed.size(); ++n) {
    FUZZ_CHECK(again.get(n).name == packed[n].name);
    FUZZ_CHECK(in.read(packed[n], one, failure) && again.read(again.get(n), other, failure) && one == other);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  check(bytes);
  const std::string other = mended(bytes);
  if (other != bytes) check(other);
  return 0;
}
