// SPDX-License-Identifier: BSL-1.0

// The encodings of names, and which of them can be trusted.

#include "zip/names.hpp"

#include <ruvo/files/safe_names.hpp>
#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "packing/deflate.hpp"
#include "system/code_page.hpp"
#include "system/random.hpp"

namespace ruvo::zip {

namespace {

/// Letters from U+00C0 to U+017F that are a letter of ASCII with a mark: the letter, and which mark.
constexpr char16_t first_composed = 0xC0;
constexpr std::string_view composed_letters =
    "AAAAAA CEEEEIIII NOOOOO  UUUUY  aaaaaa ceeeeiiii nooooo  uuuuy yAaAaAaCcCcCcCcDd  EeEeEeEeEeGgGg"
    "GgGgHh  IiIiIiIiI   JjKk LlLlLl    NnNnNn   OoOoOo  RrRrRrSsSsSsSsTtTt  UuUuUuUuUuUuWwYyYZzZzZz ";
constexpr std::string_view composed_marks =
    "`'^~:o ,`'^:`'^: ~`'^~:  `'^:'  `'^~:o ,`'^:`'^: ~`'^~:  `'^:' :--uu;;''^^..vvvv  --uu..;;vv^^uu"
    "..,,^^  ~~--uu;;.   ^^,, '',,vv    '',,vv   --uu\"\"  '',,vv''^^,,vv,,vv  ~~--uuoo\"\";;^^^^:''..vv ";
constexpr std::string_view mark_names = "`'^~-u.:o\"v,;";
constexpr char16_t marks[] = {0x300, 0x301, 0x302, 0x303, 0x304, 0x306, 0x307,
                              0x308, 0x30A, 0x30B, 0x30C, 0x327, 0x328};
static_assert(composed_letters.size() == 192 && composed_marks.size() == 192);

/// Capitals beyond those of the text functions, which lie at one distance from their small letters: each
/// unit of the range, or every second one.
struct far_capitals {
  char16_t first, last, distance, step = 1;
};
constexpr far_capitals more_capitals[] = {
    {0x100, 0x12E, 1, 2},     {0x132, 0x136, 1, 2},   {0x139, 0x147, 1, 2},   {0x14A, 0x176, 1, 2},
    {0x179, 0x17D, 1, 2},     {0x1CD, 0x1DB, 1, 2},   {0x1DE, 0x1EE, 1, 2},   {0x1F8, 0x21E, 1, 2},
    {0x222, 0x232, 1, 2},     {0x246, 0x24E, 1, 2},   {0x386, 0x386, 38},     {0x388, 0x38A, 37},
    {0x38C, 0x38C, 64},       {0x38E, 0x38F, 63},     {0x391, 0x3AB, 32},     {0x3C2, 0x3C2, 1},
    {0x3D8, 0x3EE, 1, 2},     {0x400, 0x40F, 80},     {0x410, 0x42F, 32},     {0x460, 0x480, 1, 2},
    {0x48A, 0x4BE, 1, 2},     {0x4C1, 0x4CD, 1, 2},   {0x4D0, 0x52E, 1, 2},   {0x531, 0x556, 48},
    {0x10A0, 0x10C5, 0x1C60}, {0x1E00, 0x1E94, 1, 2}, {0x1EA0, 0x1EFE, 1, 2}, {0x2160, 0x216F, 16},
    {0x24B6, 0x24CF, 26},     {0x2C00, 0x2C2F, 48},   {0xFF21, 0xFF3A, 32}};

char16_t folded(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  if (unit < 0x80) return static_cast<char16_t>(texto::to_lower(c));
  for (const auto& [first, last, distance, step] : more_capitals)
    if (unit >= first && unit <= last && (unit - first) % step == 0)
      return static_cast<char16_t>(unit + distance);
  return static_cast<char16_t>(texto::to_lowercase(texto::to_uppercase(c)));
}

/// Drawn once a process. Zeros where the system draws nothing: names can be made to collide then, which costs
/// time and nothing else.
struct drawn_key {
  drawn_key() noexcept {
    unsigned char bytes[sizeof halves];
    if (platform::fill_random(bytes, sizeof bytes)) std::memcpy(halves, bytes, sizeof halves);
  }
  std::uint64_t halves[2] = {};
};

/// SipHash-1-3 (Aumasson, Bernstein 2012), with the number of units behind the last of them. Who does not
/// know the key cannot make names that collide.
class name_hash {
 public:
  name_hash() noexcept {
    static const drawn_key key;
    const auto [low, high] = key.halves;
    state_[0] = low ^ 0x736F6D6570736575;
    state_[1] = high ^ 0x646F72616E646F6D;
    state_[2] = low ^ 0x6C7967656E657261;
    state_[3] = high ^ 0x7465646279746573;
  }
  void add(char16_t unit) noexcept {
    word_ |= std::uint64_t{unit} << 16 * (count_ % 4);
    if (++count_ % 4 == 0) take_word();
  }
  std::uint64_t value() noexcept {
    word_ |= count_ << 48;
    take_word();
    state_[2] ^= 0xFF;
    for (int n = 0; n < 3; ++n) mix();
    return state_[0] ^ state_[1] ^ state_[2] ^ state_[3];
  }

 private:
  void take_word() noexcept {
    state_[3] ^= word_;
    mix();
    state_[0] ^= word_;
    word_ = 0;
  }
  void mix() noexcept {
    auto& [a, b, c, d] = state_;
    a += b;
    b = std::rotl(b, 13) ^ a;
    a = std::rotl(a, 32);
    c += d;
    d = std::rotl(d, 16) ^ c;
    a += d;
    d = std::rotl(d, 21) ^ a;
    c += b;
    b = std::rotl(b, 17) ^ c;
    c = std::rotl(c, 32);
  }

  std::uint64_t state_[4];
  std::uint64_t word_ = 0;   // up to three units that were not taken yet
  std::uint64_t count_ = 0;  // of all units
};

bool is_utf_8(std::string_view bytes) { return texto::to_utf_8(texto::to_utf_16(bytes)) == bytes; }

/// The name in the field that some archivers add to one in a code page.
std::string_view utf_8_name_of(const record& from) noexcept {
  const std::string_view field = find_extra(from.extra, extra::utf_8_name);
  const bool is_valid =
      field.size() > 5 && field[0] == 1 && get_32(field, 1) == packing::crc_32(0, from.name);
  return is_valid ? field.substr(5) : std::string_view();
}

/// The same for one part of a name. Beyond what no name of a file has, no blank of any kind may end it.
const wchar_t* refusal_of_part(std::wstring_view part) noexcept {
  using files::name_fault;
  name_fault fault = files::fault_of_name(part);
  if (fault == name_fault::none && (texto::is_space(part.back()) || part.back() == 0xA0))
    fault = name_fault::ending;
  switch (fault) {
    case name_fault::none:
      return nullptr;
    case name_fault::empty:
      return L"una parte está vacía";
    case name_fault::parent:
      return L"sube o no lleva a ninguna parte";
    case name_fault::ending:
      return L"una parte termina con un punto o un blanco";
    case name_fault::device:
      return L"es el nombre de un dispositivo";
    case name_fault::too_long:
      return L"una parte es demasiado larga";
    default:
      return L"contiene un carácter que no se admite";
  }
}

}  // namespace

bool is_ascii(std::string_view bytes) noexcept {
  return std::ranges::none_of(bytes, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

void use_slashes(std::wstring& name) noexcept { std::replace(name.begin(), name.end(), L'\\', L'/'); }

std::wstring decoded(std::string_view bytes, unsigned code_page) {
  if (is_ascii(bytes) || is_utf_8(bytes)) return texto::to_utf_16(bytes);
  return platform::from_code_page(bytes, code_page);
}

std::wstring name_of(const record& from, unsigned code_page) {
  std::wstring out;
  if (from.flags & flag::utf_8 || is_ascii(from.name)) {
    texto::append_utf_16(out, from.name);
  } else {
    const std::string_view said = utf_8_name_of(from);
    out = said.empty() ? decoded(from.name, code_page) : texto::to_utf_16(said);
  }
  use_slashes(out);
  return out;
}

const wchar_t* refusal_of(std::wstring_view name, std::size_t levels) noexcept {
  constexpr std::size_t longest = 32'000;
  if (name.empty()) return L"está vacío";
  if (name.size() > longest) return L"es demasiado largo";
  if (name.ends_with(L'/')) name.remove_suffix(1);
  for (std::size_t level = 0;; ++level) {
    const std::size_t end = std::min(name.find(L'/'), name.size());
    if (const wchar_t* const reason = refusal_of_part(name.substr(0, end))) return reason;
    if (end == name.size()) return nullptr;
    if (level == levels) return L"tiene demasiados niveles";
    name.remove_prefix(end + 1);
  }
}

file folder_of(const file& path) {
  file out = path.get_parent();
  return out.empty() ? file(L".") : out;
}

std::uint64_t twin_key(std::wstring_view name) noexcept {
  name_hash hash;
  for (const wchar_t c : name) {
    const std::size_t place = std::size_t{static_cast<char16_t>(c)} - first_composed;
    if (place < composed_letters.size() && composed_letters[place] != ' ') {
      hash.add(folded(texto::unit_of(composed_letters[place])));
      hash.add(marks[mark_names.find(composed_marks[place])]);
    } else {
      hash.add(folded(c));
    }
  }
  return hash.value();
}

std::uint64_t exact_key(std::wstring_view name) noexcept {
  name_hash hash;
  for (const wchar_t c : name) hash.add(static_cast<char16_t>(c));
  return hash.value();
}

std::uint64_t exact_key_of(const record& from, unsigned code_page) {
  if (!is_ascii(from.name)) return exact_key(name_of(from, code_page));
  name_hash hash;
  for (const char c : from.name) hash.add(c == '\\' ? u'/' : static_cast<unsigned char>(c));
  return hash.value();
}

}  // namespace ruvo::zip
