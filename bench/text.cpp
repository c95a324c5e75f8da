// SPDX-License-Identifier: BSL-1.0

// The text toolkit against the system's functions, the standard library and plain loops. Before two are
// measured they have to give the same result.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <codecvt>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <locale>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/harness.hpp"
#include "support/system_peers.hpp"

namespace {

namespace texto = ruvo::texto;

using random = std::mt19937_64;

// --- comparing

/// A way to make a result, and how many times as fast as it kesta has to be; 0 if that is open.
template <class Make>
struct peer {
  const char* name;
  double ratio;
  Make make;
};

/// Makes the result so often that a call of the run itself does not count.
template <class Make>
bench::competitor repeated(const char* name, int times, const Make& make) {
  return {name, [times, &make] {
            for (int i = 0; i < times; ++i) bench::use(make());
          }};
}

constexpr double units_of_a_run = 16384;

/// `each` is what one result is made of.
template <class Own, class... Peers>
void compare(bench::table& table, const std::string& subject, const std::string& what, bench::amount each,
             const Own& own, const Peers&... peers) {
  const auto same = [result = own()](const auto& other) { return other == result; };
  if (!(same(peers.make()) && ...)) {
    std::printf("%s, %s: the results differ\n", subject.c_str(), what.c_str());
    std::exit(1);
  }
  const int times = std::max(1, static_cast<int>(units_of_a_run / each.count));
  std::vector<bench::target> targets = {{peers.name, peers.ratio}...};
  std::erase_if(targets, [](const bench::target& t) { return t.ratio == 0; });
  table.row(subject, what, {each.count * times, each.what},
            {repeated("kesta", times, own), repeated(peers.name, times, peers.make)...}, targets);
}

template <class Text>
bench::amount characters_of(const Text& text) {
  return {static_cast<double>(text.size()), bench::amount::characters};
}

std::string sized(const std::string& kind, std::size_t size) {
  return kind + (size >= 1 << 20   ? " " + std::to_string(size >> 20) + " M"
                 : size >= 1 << 10 ? " " + std::to_string(size >> 10) + " K"
                                   : " " + std::to_string(size));
}

constexpr std::array<std::size_t, 3> sizes = {100, 16 << 10, 1 << 20};

// --- UTF-8 and UTF-16

/// Words of the list with a blank behind each, `size` units in all.
std::wstring words(const std::vector<std::wstring>& all, std::size_t size, random& next) {
  std::wstring text;
  while (text.size() < size) text += all[next() % all.size()] + L' ';
  text.resize(size);
  return text;
}

const std::vector<std::wstring> english = {L"invoice", L"of",    L"the",   L"customer", L"and",  L"a",
                                           L"steel",   L"screw", L"order", L"delivery", L"date", L"total"};
const std::vector<std::wstring> spanish = {L"camión", L"de", L"artículo", L"año",    L"y",      L"señal",
                                           L"acero",  L"la", L"factura",  L"número", L"cliente"};

/// Sentences of 20 ideographs.
std::wstring chinese(std::size_t size, random& next) {
  std::wstring text;
  while (text.size() < size)
    text += text.size() % 21 == 20 ? L'。' : static_cast<wchar_t>(0x4E00 + next() % 0x5200);
  return text;
}

/// Groups of four, with a word now and then. A surrogate pair is never cut: both halves count.
std::wstring emoji(std::size_t size, random& next) {
  std::wstring text;
  while (text.size() + 8 <= size) {
    for (int i = 0; i < 4; ++i) {
      const auto point = 0x1F300 + next() % 0x2FF;
      text += static_cast<wchar_t>(0xD7C0 + (point >> 10));
      text += static_cast<wchar_t>(0xDC00 + (point & 0x3FF));
    }
    if (next() % 8 == 0) text += L" hola ";
  }
  return text;
}

/// How many times as fast as the system each way has to be, into a text of its own.
struct conversion_targets {
  double to_utf_16, to_utf_8, to_standard;
};

void convert(bench::table& table, const std::string& script, const std::wstring& wide,
             const conversion_targets& wanted) {
  using standard = std::wstring_convert<std::codecvt_utf8_utf16<wchar_t>>;
  standard converter;
  const std::string narrow = texto::to_utf_8(wide);
  compare(
      table, "UTF-8 to UTF-16", script, characters_of(wide), [&] { return texto::to_utf_16(narrow); },
      peer{"system", wanted.to_utf_16, [&] { return bench::system_to_utf_16(narrow); }},
      peer{"wstring_convert", wanted.to_standard, [&] { return converter.from_bytes(narrow); }},
      peer{"a copy of it", 0, [&] { return std::wstring(wide); }});
  compare(
      table, "UTF-16 to UTF-8", script, characters_of(wide), [&] { return texto::to_utf_8(wide); },
      peer{"system", wanted.to_utf_8, [&] { return bench::system_to_utf_8(wide); }},
      peer{"wstring_convert", wanted.to_standard, [&] { return converter.to_bytes(wide); }},
      peer{"a copy of it", 0, [&] { return std::string(narrow); }});
}

/// Into a text that is there already, and large enough.
void convert_kept(bench::table& table, const std::string& script, const std::wstring& wide) {
  const std::string narrow = texto::to_utf_8(wide);
  std::wstring own_wide, its_wide;
  std::string own_narrow, its_narrow;
  compare(
      table, "UTF-8 to UTF-16, kept", script, characters_of(wide),
      [&]() -> const std::wstring& {
        own_wide.clear();
        texto::append_utf_16(own_wide, narrow);
        return own_wide;
      },
      peer{"system", 4.0, [&] { return bench::system_to_utf_16(its_wide, narrow); }});
  compare(
      table, "UTF-16 to UTF-8, kept", script, characters_of(wide),
      [&]() -> const std::string& {
        own_narrow.clear();
        texto::append_utf_8(own_narrow, wide);
        return own_narrow;
      },
      peer{"system", 4.0, [&] { return bench::system_to_utf_8(its_narrow, wide); }});
}

void utf() {
  bench::table table("text");
  random next(1);
  for (const std::size_t size : sizes) {
    // Most of the time of a short text goes to the heap, for the block of its result.
    const double aim = size < 1000 ? 1.5 : 2;
    const bool large = size == sizes.back();
    const auto wanted = [&](double to_utf_16, double to_utf_8, double to_standard) {
      return large ? conversion_targets{to_utf_16, to_utf_8, to_standard}
                   : conversion_targets{1.2, 1.2, to_standard};
    };
    const std::vector<std::pair<const char*, std::wstring>> scripts = {
        {"ASCII", words(english, size, next)},
        {"Spanish", words(spanish, size, next)},
        {"CJK", chinese(size, next)},
        {"emoji", emoji(size, next)}};
    const conversion_targets targets[] = {wanted(2.4, 3.3, size < 1000 ? 3 : 4), wanted(4, 4, aim),
                                          wanted(8, 4, aim), wanted(1.2, 1.2, aim)};
    for (std::size_t n = 0; n < scripts.size(); ++n)
      convert(table, sized(scripts[n].first, size), scripts[n].second, targets[n]);
    if (!large) continue;
    for (const auto& [script, text] : scripts) convert_kept(table, sized(script, size), text);
  }
}

// --- Base64 and hexadecimal, against a loop with a table

// Pointers only: with checks of its indices a plain loop would be no measure.

constexpr char base64_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char hex_digits[] = "0123456789abcdef";

/// The values of the digits by character, 255 for other characters.
struct value_table {
  explicit value_table(std::string_view digits) {
    std::fill(std::begin(values), std::end(values), static_cast<unsigned char>(255));
    for (std::size_t i = 0; i < digits.size(); ++i)
      values[static_cast<unsigned char>(digits[i])] = static_cast<unsigned char>(i);
  }
  template <class Char>
  unsigned operator()(Char c) const {
    return values[static_cast<unsigned char>(c)];
  }

  unsigned char values[256];
};
const value_table base64_value(base64_digits), hex_value(hex_digits);

template <class Text>
Text& plain_base64_encode(Text& out, const Text& in) {
  out.resize((in.size() + 2) / 3 * 4);
  auto* to = out.data();
  const auto byte = [from = in.data()](std::size_t at) { return static_cast<unsigned char>(from[at]); };
  std::size_t at = 0;
  for (; in.size() - at >= 3; at += 3) {
    *to++ = base64_digits[byte(at) >> 2];
    *to++ = base64_digits[(byte(at) & 3) << 4 | byte(at + 1) >> 4];
    *to++ = base64_digits[(byte(at + 1) & 15) << 2 | byte(at + 2) >> 6];
    *to++ = base64_digits[byte(at + 2) & 63];
  }
  if (at == in.size()) return out;
  const int second = at + 1 < in.size() ? byte(at + 1) : 0;
  *to++ = base64_digits[byte(at) >> 2];
  *to++ = base64_digits[(byte(at) & 3) << 4 | second >> 4];
  *to++ = at + 1 < in.size() ? base64_digits[(second & 15) << 2] : '=';
  *to = '=';
  return out;
}

template <class Text>
Text& plain_base64_decode(Text& out, const Text& in) {
  out.resize(in.size() / 4 * 3);
  auto* to = out.data();
  unsigned group = 0;
  int bits = 0;
  for (const auto c : in) {
    if (c == '=') break;
    const unsigned value = base64_value(c);
    if (value > 63) continue;
    group = group << 6 | value;
    if ((bits += 6) < 8) continue;
    bits -= 8;
    *to++ = static_cast<unsigned char>(group >> bits);
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
  return out;
}

template <class Text>
std::wstring& plain_hex_encode(std::wstring& out, const Text& in) {
  out.resize(2 * in.size());
  wchar_t* to = out.data();
  for (const auto c : in) {
    *to++ = static_cast<wchar_t>(hex_digits[static_cast<unsigned char>(c) >> 4]);
    *to++ = static_cast<wchar_t>(hex_digits[c & 15]);
  }
  return out;
}

template <class Text>
Text& plain_hex_decode(Text& out, const Text& in) {
  out.resize(in.size() / 2);
  const auto* from = in.data();
  for (auto& c : out) {
    const unsigned high = hex_value(*from++);
    const unsigned low = hex_value(*from++);
    if ((high | low) > 15) break;
    c = static_cast<unsigned char>(high << 4 | low);
  }
  return out;
}

template <class Text>
Text& base64_encode(Text& out, const Text& bytes) {
  texto::base64_encode(out, bytes, false);
  return out;
}

template <class Text>
Text& base64_decode(Text& out, const Text& digits) {
  texto::base64_decode(out, digits);
  return out;
}

template <class Text>
std::wstring& hex_encode(std::wstring& out, const Text& bytes) {
  texto::hex_encode(out, bytes);
  return out;
}

template <class Text>
Text& hex_decode(Text& out, const Text& hex) {
  texto::hex_decode(out, hex);
  return out;
}

/// Both functions fill a text that they are given: here one that is new each time, or one that is kept.
template <class Result, class In>
void transform(bench::table& table, const std::string& subject, const std::string& what, const In& in,
               Result& (*own)(Result&, const In&), Result& (*plain)(Result&, const In&)) {
  const auto fresh = [&in](auto make) {
    return [&in, make] {
      Result out;
      make(out, in);
      return out;
    };
  };
  compare(table, subject, what, characters_of(in), fresh(own), peer{"plain loop", 1.0, fresh(plain)});
  if (in.size() < sizes.back()) return;
  Result own_kept, plain_kept;
  const auto kept = [&in](auto make, Result& out) {
    return [&in, make, &out]() -> const Result& { return make(out, in); };
  };
  compare(table, subject + ", kept", what, characters_of(in), kept(own, own_kept),
          peer{"plain loop", 4.0, kept(plain, plain_kept)});
}

template <class Text>
void encode(bench::table& table, const std::string& width, const Text& bytes) {
  Text base64;
  base64_encode(base64, bytes);
  transform<Text>(table, "Base64 encode", width, bytes, base64_encode, plain_base64_encode);
  transform<Text>(table, "Base64 decode", width, base64, base64_decode, plain_base64_decode);
  const std::wstring wide_hex = texto::string_to_hex(bytes);
  const Text hex(wide_hex.begin(), wide_hex.end());
  transform<std::wstring>(table, "hex encode", width, bytes, hex_encode<Text>, plain_hex_encode<Text>);
  transform<Text>(table, "hex decode", width, hex, hex_decode<Text>, plain_hex_decode<Text>);
}

void encodings() {
  bench::table table("text");
  random next(2);
  for (const std::size_t size : sizes) {
    std::string bytes;
    while (bytes.size() < size) bytes += static_cast<char>(next() & 0xFF);
    std::wstring wide;
    for (const char c : bytes) wide += static_cast<unsigned char>(c);
    encode(table, sized("narrow", size), bytes);
    encode(table, sized("wide", size), wide);
  }
}

// --- replacing and splitting

constexpr std::size_t megabyte = (1 << 20) / sizeof(wchar_t);

std::wstring plain_replace(const std::wstring& text, const std::wstring& from, const std::wstring& to) {
  std::wstring out;
  out.reserve(text.size());
  std::size_t last = 0;
  for (std::size_t at; (at = text.find(from, last)) != text.npos; last = at + from.size()) {
    out.append(text, last, at - last);
    out += to;
  }
  out.append(text, last);
  return out;
}

std::vector<std::wstring> plain_split(const std::wstring& text, const std::wstring& separator) {
  std::vector<std::wstring> out;
  std::size_t last = 0;
  for (std::size_t at; (at = text.find(separator, last)) != text.npos; last = at + separator.size())
    out.push_back(text.substr(last, at - last));
  if (last < text.size()) out.push_back(text.substr(last));
  return out;
}

struct replacement {
  const char* what;
  std::wstring from, to;
};

const std::vector<replacement> replacements = {{"rare", L"total", L"importe"},
                                               {"many, longer", L" ", L" - "},
                                               {"many, as long", L"a", L"@"},
                                               {"many, shorter", L"customer", L"buyer"},
                                               {"none", L"nowhere", L"somewhere"}};

void replace(bench::table& table, const std::wstring& text, const replacement& r) {
  const bench::amount all = characters_of(text);
  const auto plain = [&] { return plain_replace(text, r.from, r.to); };
  compare(
      table, "std_replace", r.what, all,
      [&] {
        std::wstring copy = text;  // the plain loop has no text to keep either
        return std::move(texto::std_replace(copy, r.from, r.to, true));
      },
      peer{"find loop", 0.9, plain});
  compare(
      table, "safe_replace", r.what, all,
      [&] {
        std::wstring copy = text;
        return std::move(texto::safe_replace(copy, r.from, r.to));
      },
      peer{"find loop", 0.9, plain});
  compare(
      table, "replace_", r.what, all, [&] { return texto::replace_(text, r.from, r.to); },
      peer{"regex_replace", 8.0, [&] { return std::regex_replace(text, std::wregex(r.from), r.to); }});
}

void search() {
  bench::table table("text");
  random next(3);
  std::vector<std::wstring> all = english;
  all.pop_back();  // "total" is to be rare
  std::wstring text = words(all, megabyte, next);
  for (std::size_t at = 5000; at < text.size(); at += 20000) text.replace(at, 7, L" total ");
  for (const replacement& r : replacements) replace(table, text, r);
  for (const auto& [what, separator] : {std::pair{"words", L" "}, std::pair{"long pieces", L"total"}})
    compare(
        table, "split", what, characters_of(text), [&] { return texto::split(text, separator); },
        peer{"find loop", 0.9, [&] { return plain_split(text, separator); }});
}

// --- a million short texts

constexpr std::size_t texts = 1000000;
constexpr bench::amount each_text = {texts, bench::amount::operations};

bool is_blank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

std::wstring plain_trim(const std::wstring& text) {
  std::size_t first = 0, end = text.size();
  const wchar_t* const units = text.data();
  while (first < end && is_blank(units[first])) ++first;
  while (end > first && is_blank(units[end - 1])) --end;
  return text.substr(first, end - first);
}

/// Five to thirty units, with blanks at the ends.
std::vector<std::wstring> short_texts() {
  random next(4);
  std::vector<std::wstring> all;
  for (std::size_t i = 0; i < texts; ++i) {
    std::wstring text = words(spanish, 5 + next() % 25, next);
    for (std::size_t at = 0; at < text.size(); at += 1 + next() % 8) text[at] = texto::to_uppercase(text[at]);
    all.push_back(std::wstring(next() % 3, L' ') + text + std::wstring(next() % 3, L' '));
  }
  return all;
}

/// What a function makes of all texts, one by one: the number of units in the results.
template <class Function>
auto of_all(const std::vector<std::wstring>& all, Function make) {
  return [&all, make] {
    std::size_t units = 0;
    for (const std::wstring& text : all) units += make(text).size();
    return units;
  };
}

void short_ones() {
  bench::table table("text");
  std::vector<std::wstring> all = short_texts();
  compare(table, "trim_", "a million", each_text,
          of_all(all, [](const std::wstring& text) { return texto::trim_(text); }),
          peer{"substr loop", 0.0, of_all(all, plain_trim)});
  const auto system_lowered = [](const std::wstring& text) {
    std::wstring copy = text;
    bench::system_to_lowercase(copy);
    return copy;
  };
  for (const std::wstring& text : all)
    if (texto::to_lowercase_(text) != system_lowered(text)) std::exit(1);
  compare(table, "to_lowercase_", "a million", each_text,
          of_all(all, [](const std::wstring& text) { return texto::to_lowercase_(text); }),
          peer{"CharLowerBuffW", 1.2, of_all(all, system_lowered)});
  // In place both read and write every unit, whether it is a capital or not: the first run changes nothing.
  const auto in_place = [&all](auto lower) {
    return [&all, lower] {
      for (std::wstring& text : all) lower(text);
      return all.size();
    };
  };
  compare(table, "to_lowercase", "a million", each_text,
          in_place([](std::wstring& text) { texto::to_lowercase(text); }),
          peer{"CharLowerBuffW", 1.2, in_place(bench::system_to_lowercase)});
}

// --- numbers

constexpr std::size_t numbers = 1000;
constexpr bench::amount each_number = {numbers, bench::amount::operations};

template <class Make>
std::vector<double> doubles(Make make) {
  std::vector<double> all;
  while (all.size() < numbers) all.push_back(make());
  return all;
}

/// Six decimals, at `to`.
char* plain_print(char* to, double value) {
  return std::to_chars(to, to + 400, value, std::chars_format::fixed, 6).ptr;
}

/// The numbers as the array that JSON has for them; gives the size.
std::size_t plain_array(const std::vector<double>& all) {
  std::vector<char> room(all.size() * 64 + 400);
  char* to = room.data();
  *to++ = '[';
  for (const double value : all) {
    if (to[-1] != '[') *to++ = ',';
    to = plain_print(to, value);
  }
  *to++ = ']';
  bench::use(room);
  return static_cast<std::size_t>(to - room.data());
}

struct punctuation : std::numpunct<wchar_t> {
  wchar_t do_decimal_point() const override { return L','; }
  wchar_t do_thousands_sep() const override { return L'.'; }
  std::string do_grouping() const override { return "\3"; }
};

std::wstring streamed(double value, int decimals) {
  std::wostringstream out;
  out.imbue(std::locale(std::locale::classic(), new punctuation));
  out << std::fixed << std::setprecision(decimals) << value;
  return out.str();
}

/// What a function makes of all numbers, one by one: the number of units in the texts.
template <class Function>
auto of_all(const std::vector<double>& all, Function size) {
  return [&all, size] {
    std::size_t units = 0;
    for (const double value : all) units += size(value);
    return units;
  };
}

/// Writing an array costs least beside the numbers' own text, which no public function has for itself.
void print_array(bench::table& table, const char* what, const std::vector<double>& all, double wanted) {
  ruvo::list list;
  for (const double value : all) list.push_back(value);
  ruvo::bundle document;
  document[L"n"] = list;
  const std::size_t around = std::wstring_view(L"{\"n\":}").size();
  ruvo::serializer::json json;
  const auto array = [&] {
    std::wstring out;
    json.serialize(out, document);
    bench::use(out);
    return out.size() - around;
  };
  compare(table, "double in JSON", what, each_number, array,
          peer{"to_chars", wanted, [&] { return plain_array(all); }});
}

/// Each in a text of its own.
void print(bench::table& table, const char* what, const std::vector<double>& all, double wanted) {
  compare(table, "double to_string", what, each_number,
          of_all(all, [](double value) { return ruvo::var(value).to_string().size(); }),
          peer{"to_chars", wanted, of_all(all, [](double value) {
                 char text[400];
                 return std::wstring(text, plain_print(text, value)).size();
               })});
  compare(table, "format", what, each_number,
          of_all(all, [](double value) { return texto::format(value, 2).size(); }),
          peer{"stream", 5.0, of_all(all, [](double value) { return streamed(value, 2).size(); })});
}

void number_texts() {
  bench::table table("text");
  random next(5);
  std::uniform_real_distribution<double> coordinate(-180, 180), magnitude(2, 15), huge(19, 40);
  const std::vector<std::pair<const char*, std::vector<double>>> kinds = {
      {"prices", doubles([&] { return static_cast<double>(next() % 1000000) / 100; })},
      {"coordinates", doubles([&] { return coordinate(next); })},
      {"10^2 to 10^15", doubles([&] { return std::pow(10, magnitude(next)); })},
      {"10^19 to 10^40", doubles([&] { return std::pow(10, huge(next)); })}};
  for (const auto& [what, all] : kinds) {
    const double wanted = all.front() > 0x1p63 ? 1.0 : 0.95;
    print_array(table, what, all, wanted);
    print(table, what, all, wanted);
  }
}

}  // namespace

int main() {
  utf();
  encodings();
  search();
  number_texts();
  short_ones();  // the last: a million blocks leave a heap in which every block takes longer
}
