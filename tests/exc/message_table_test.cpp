// The message table of kesta.dll against the classes themselves: what FormatMessage prints of a code is what
// the exception says.

#include "support/message_table.hpp"

#include <ruvo/exc.hpp>
#include <ruvo/file.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace exc = ruvo::exc;

namespace {

struct system_texts : ruvo::exception {
  using ruvo::exception::winerror_message;
};

/// Every class of the catalogue, told 31 and 5 where it is told something; the second member is what its text
/// begins with in the table.
std::vector<std::pair<ruvo::exception, std::wstring>> every_class() {
  const std::wstring subject = L"31";
  std::vector<std::pair<ruvo::exception, std::wstring>> all;
  const auto add = [&](const ruvo::exception& error, const std::wstring& prefix = L"") {
    all.emplace_back(error, prefix);
  };
#define ADD(name, ...) add(exc::name());
  KESTA_EXC_GENERAL(ADD)
  KESTA_EXC_UNDETERMINED(ADD)
  KESTA_EXC_PLAIN(ADD)
#undef ADD
#define ADD(name, ...) add(exc::name(ruvo::file(subject)));
  KESTA_EXC_FILE(ADD)
#undef ADD
#define ADD(name, ...) add(exc::name(subject));
  KESTA_EXC_NAMED(ADD)
#undef ADD
#define ADD(name, ...) add(exc::name(31, 5));
  KESTA_EXC_KNOT(ADD)
#undef ADD
#define ADD(name, ...) add(exc::name(subject));
  KESTA_EXC_ACTION(ADD)
#undef ADD
#define ADD(name, ...) add(exc::name(subject), std::wstring(L"" #name) + L": ");
  KESTA_EXC_MESSAGE(ADD)
#undef ADD
#define ADD(name, family, code) add(exc::name(code, subject), std::wstring(L"" #name) + L": ");
  KESTA_EXC_PLACES(ADD)
#undef ADD
#define ADD(name, ...) add(exc::name(subject, 5), std::wstring(L"" #name) + L": ");
  KESTA_EXC_WINDOWS(ADD)
#undef ADD
  add(ruvo::exception::incorrect());
  add(exc::UnCatch(nullptr));
  add(exc::UnKnown(nullptr));
  add(exc::RunTime(std::wstring()));
  add(exc::EmptyArgument(subject));
  add(exc::BadArgument(subject));
  add(exc::systemErrorCode(31));
  add(exc::applicationAlreadyRegistered(0x31));
  add(exc::jsonBadFormated(31));
  return all;
}

/// The codes of the catalogue and what the table says of each, one line for each class.
std::map<unsigned long, std::vector<std::wstring>> expected_messages() {
  std::map<unsigned long, std::vector<std::wstring>> expected;
  for (const auto& [error, prefix] : every_class()) {
    expected[error.get_raw_code()].push_back(prefix + error.get_mensaje());
  }
  return expected;
}

/// A message apart into those of the classes that share the code.
std::vector<std::wstring> parts(const std::wstring& message) {
  std::vector<std::wstring> out;
  std::size_t from = 0;
  for (std::size_t at; (at = message.find(L" / ", from)) != std::wstring::npos; from = at + 3) {
    out.push_back(message.substr(from, at - from));
  }
  out.push_back(message.substr(from));
  return out;
}

std::vector<std::wstring> sorted(std::vector<std::wstring> texts) {
  std::sort(texts.begin(), texts.end());
  return texts;
}

}  // namespace

TEST(MessageTable, SaysWhatTheExceptionsSay) {
  if (!has_message_table()) GTEST_SKIP() << "the library is no file of its own here";
  const std::wstring system_text = system_texts::winerror_message(5);
  const wchar_t* const inserts[] = {L"31", L"5", system_text.c_str()};
  const auto expected = expected_messages();
  ASSERT_GT(expected.size(), 70u);
  for (const auto& [code, messages] : expected) {
    for (const unsigned long language :
         {0ul, 0x0400ul, 0x0C0Aul, 0x0409ul}) {  // any, the user's, es-ES, en-US
      EXPECT_EQ(sorted(parts(table_message(code, inserts, language))), sorted(messages)) << std::hex << code;
    }
  }
}

TEST(MessageTable, HasTheCodesOfTheCatalogueAndNoOther) {
  if (!has_message_table()) GTEST_SKIP() << "the library is no file of its own here";
  const auto expected = expected_messages();
  for (unsigned long high : {0xEBB70000ul, 0xEBB80000ul, 0xEBB90000ul, 0xEBBA0000ul, 0xCBB90000ul, 0x0ul}) {
    for (unsigned long code = high; code < high + 20000; ++code) {
      ASSERT_EQ(!table_message(code, nullptr).empty(), expected.contains(code)) << std::hex << code;
    }
  }
}

TEST(MessageTable, LeavesPlacesThatNobodyFills) {
  if (!has_message_table()) GTEST_SKIP() << "the library is no file of its own here";
  EXPECT_EQ(table_message(0xEBB92AF9, nullptr), L"Módulo %1 desconocido");
  EXPECT_EQ(table_message(0xEBB91B5A, nullptr), L"Lectura incorrecta cerca del caracter:%1 en el nudo:%2");
  EXPECT_EQ(table_message(0xEBB90FA6, nullptr), L"winregRead: %1 (%2: %3)");
}
