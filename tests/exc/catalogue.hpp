#pragma once

// The classes of the catalogue, made.

#include <ruvo/exc.hpp>
#include <ruvo/file.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <typeindex>
#include <vector>

struct system_texts : ruvo::exception {
  using ruvo::exception::winerror_message;
};

struct class_sample {
  ruvo::exception error;
  std::type_index type;
  std::wstring prefix;  // what its text begins with in the message table and on the page
};

/// Every class of the catalogue, told 31 and 5 where it is told something.
inline std::vector<class_sample> every_class() {
  const std::wstring subject = L"31";
  std::vector<class_sample> all;
  const auto add = [&](const ruvo::exception& error, const std::wstring& prefix = L"") {
    all.push_back({error, typeid(error), prefix});
  };
#define ADD(name, ...) add(ruvo::exc::name());
  KESTA_EXC_GENERAL(ADD)
  KESTA_EXC_UNDETERMINED(ADD)
  KESTA_EXC_PLAIN(ADD)
#undef ADD
#define ADD(name, ...) add(ruvo::exc::name(ruvo::file(subject)));
  KESTA_EXC_FILE(ADD)
#undef ADD
#define ADD(name, ...) add(ruvo::exc::name(subject));
  KESTA_EXC_NAMED(ADD)
#undef ADD
#define ADD(name, ...) add(ruvo::exc::name(31, 5));
  KESTA_EXC_KNOT(ADD)
#undef ADD
#define ADD(name, ...) add(ruvo::exc::name(subject));
  KESTA_EXC_ACTION(ADD)
#undef ADD
#define ADD(name, ...) add(ruvo::exc::name(subject), std::wstring(L"" #name) + L": ");
  KESTA_EXC_MESSAGE(ADD)
#undef ADD
#define ADD(name, family, code) add(ruvo::exc::name(code, subject), std::wstring(L"" #name) + L": ");
  KESTA_EXC_PLACES(ADD)
#undef ADD
#define ADD(name, ...) add(ruvo::exc::name(subject, 5), std::wstring(L"" #name) + L": ");
  KESTA_EXC_WINDOWS(ADD)
#undef ADD
#define ADD(name, code, message) add(ruvo::exc::name(code, message));
  KESTA_EXC_CONSOLE(ADD)
#undef ADD
#define ADD(name, code, message) \
  all.push_back({ruvo::exception(message + subject, code, 0, 3000), typeid(ruvo::exc::name), L""});
  KESTA_EXC_HOOK(ADD)
#undef ADD
  add(ruvo::exception::incorrect());
  add(ruvo::exc::UnCatch(nullptr));
  add(ruvo::exc::UnKnown(nullptr));
  add(ruvo::exc::RunTime(std::wstring()));
  add(ruvo::exc::EmptyArgument(subject));
  add(ruvo::exc::BadArgument(subject));
  add(ruvo::exc::systemErrorCode(31));
  add(ruvo::exc::applicationAlreadyRegistered(0x31));
  add(ruvo::exc::jsonBadFormated(31));
  return all;
}

/// The codes of the catalogue and what is said of each, a text for each class, in order.
inline std::map<unsigned long, std::vector<std::wstring>> catalogue_messages() {
  std::map<unsigned long, std::vector<std::wstring>> expected;
  for (const auto& [error, type, prefix] : every_class()) {
    expected[error.get_raw_code()].push_back(prefix + error.get_mensaje());
  }
  for (auto& [code, messages] : expected) std::ranges::sort(messages);
  return expected;
}
