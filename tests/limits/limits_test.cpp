// SPDX-License-Identifier: BSL-1.0

// Beyond the greatest sizes, in a build where they are tiny (src/base/limits.hpp): std::length_error,
// nothing lost, and all works on. Archives go on with wider numbers.

#include <ruvo/ruvo.hpp>

#include <cstdint>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace {

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using namespace ruvo::serializer;

constexpr int most = 300;  // entries
const std::wstring text(20000, L'x');

bundle filled(int count) {
  bundle b;
  for (int n = 0; n < count; ++n) b[L"clave " + std::to_wstring(n)] = n;
  return b;
}

std::wstring members(int count) {
  std::wstring out = L"{";
  for (int n = 0; n < count; ++n)
    out += (n ? L",\"" : L"\"") + std::to_wstring(n) + L"\":" + std::to_wstring(n);
  return out + L"}";
}

TEST(limits, what_is_refused_changes_nothing) {
  const struct {
    const char* name;
    int size;
    void (*run)(bundle& b);
  } rows[] = {
      {"room for the first", 0, [](bundle& b) { b.reserve(most + 1); }},
      {"more room", 5, [](bundle& b) { b.reserve(most + 1); }},
      {"more room, many", 200, [](bundle& b) { b.reserve(most + 1); }},
      {"[]", most, [](bundle& b) { b[L"otra"] = 1; }},
      {"hack", most, [](bundle& b) { b.hack(L"otra.de.camino") = 1; }},
      {"hack_list_on", most, [](bundle& b) { b.hack_list_on(L"otra").push_back(1); }},
      {"putOn", most, [](bundle& b) { b.putOn(L"otra", text); }},
      {"JSON", most, [](bundle& b) { json().deserialize(b, L"{\"otra\":1}", nullptr); }},
      {"XML", most, [](bundle& b) { xml(true, false).deserialize(b, L"<otra>1</otra>", nullptr); }},
      {"long text", 5, [](bundle& b) { b[L"clave 1"] = text; }},
      {"long text in a list", 5,
       [](bundle& b) {
         b[L"clave 1"] = list{1, text};
       }},
      {"long text of JSON", 5,
       [](bundle& b) { json().deserialize(b, L"{\"clave 1\":\"" + text + L"\"}", nullptr); }},
      {"long quality", 5, [](bundle& b) { b[L"clave 1"] = xvar(text); }},
      {"all members", 5,
       [](bundle& b) {
         b = bundle{{L"a", xvar(bundle{{L"b", text}})}};
       }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    bundle b = filled(row.size);
    const std::wstring before = b.to_string();
    EXPECT_THROW(row.run(b), std::length_error);
    EXPECT_TRUE(b.to_string() == before || b.get_ptr(L"clave 1")->is_null()) << row.name;
    const bundle copy(b);
    EXPECT_EQ(copy.to_string(), b.to_string());
    b.erase(L"clave 0");
    b[L"otra"] = 1;
    EXPECT_EQ(b.get_long(L"otra"), 1);
  }
}

TEST(limits, documents_are_read_up_to_the_limit) {
  bundle out;
  EXPECT_FALSE(json().deserialize(out, members(most)));
  EXPECT_EQ(out.size(), 300U);
  for (const int nested : {0, 1}) {
    bundle more;
    const std::wstring object = members(most + 1);
    EXPECT_THROW(json().deserialize(more, nested ? L"{\"a\":" + object + L"}" : object, nullptr),
                 std::length_error);
    EXPECT_EQ(nested ? more.get_bundle(L"a").size() : more.size(), 300U);
  }
}

TEST(limits, writers_and_patterns) {
  const bundle b = {{L"nota", ruvo::memo(text)}};
  json writer;
  std::wstring out = L"antes";
  EXPECT_THROW(writer.serialize(out, b), std::length_error);
  EXPECT_EQ(out, L"antes");
  bundle read;
  EXPECT_FALSE(json().deserialize(read, members(5)) || writer.serialize(out, read));
  EXPECT_EQ(out, members(5));
  EXPECT_TRUE(ruvo::texto::match(text.substr(0, 49), L"x+"));
  try {
    (void)ruvo::texto::match(text.substr(0, 50), L"x+");
    FAIL();
  } catch (const std::regex_error& error) {
    EXPECT_EQ(error.code(), std::regex_constants::error_space);
  }
}

/// The size of an entry, what is packed of it, its place and that of the list may each be beyond 32 bits.
TEST(limits, archives_have_64_bits_where_they_need_them) {
  namespace zip = ruvo::zip;
  constexpr std::size_t large = 150'000;
  std::string noise;
  for (std::uint32_t n = 1; noise.size() < large; n = n * 1664525 + 1013904223)
    noise += static_cast<char>(n >> 24);
  const std::string contents[] = {"a", std::string(large, 'x'), std::string(40'000, 'y'), noise, "z"};
  for (const int level : {0, 6}) {
    zip::writer out;
    zip::reader in;
    ruvo::exception err;
    ruvo::binary archive, content;
    out.open_memory();
    out.set_level(level);
    for (const std::string& each : contents)
      EXPECT_TRUE(out.add_bytes(std::to_wstring(&each - contents), each, err)) << err.what();
    ASSERT_TRUE(out.close(archive, err) && in.open_bytes(archive, err)) << err.what();
    ASSERT_EQ(in.size(), std::size(contents));
    EXPECT_TRUE(in.verify_all(err)) << err.what();
    for (std::size_t n = 0; n < in.size(); ++n) {
      EXPECT_TRUE(in.read(in.get(n), content, err)) << err.what();
      EXPECT_EQ(std::string(content.begin(), content.end()), contents[n]);
    }
    const std::string bytes(archive.begin(), archive.end());
    EXPECT_EQ(bytes.substr(bytes.size() - 6, 4), "\xFF\xFF\xFF\xFF") << "the list is beyond";
  }
}

}  // namespace
