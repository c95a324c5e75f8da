#pragma once

// What reading an XML text gives: the store with its qualities, and the error. The reader has a fast way for
// whole texts and the state machine for single characters; both must give the same.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xml.hpp>

#include <string>
#include <utility>
#include <vector>

namespace xml_outcome {

struct outcome {
  std::wstring store, report;
  bool operator==(const outcome&) const = default;
};

/// The store as text, level by level, with all qualities and with the kinds of the values.
inline std::wstring text_of(const ruvo::bundle& store) {
  std::wstring text = store.to_string();
  std::vector<ruvo::list> level{{ruvo::xvar(store)}};
  const auto add = [&text](const ruvo::xvar& value) {
    text += value.is_null() ? L'n' : value.instanceof (typeid(std::wstring)) ? L't' : L'c';
    for (const auto& [key, quality] : value) text += key + L'=' + quality.to_string() + L';';
  };
  while (!level.empty()) {
    std::vector<ruvo::list> next;
    for (const ruvo::list& values : level) {
      for (const ruvo::xvar& value : values) {
        add(value);
        ruvo::list inner;
        if (value.instanceof (typeid(ruvo::list))) inner = value;
        if (value.instanceof (typeid(ruvo::bundle))) {
          ruvo::bundle members;
          members = value;
          for (std::size_t n = 0; n < members.size(); ++n) inner.push_back(members[n]->second);
        }
        if (!inner.empty()) next.push_back(std::move(inner));
      }
    }
    level = std::move(next);
  }
  return text;
}

inline outcome read_at_once(ruvo::serializer::xml& x, const std::wstring& text) {
  ruvo::bundle b;
  ruvo::exception error;
  x.deserialize(b, text, &error);
  return {text_of(b), static_cast<std::wstring>(error)};
}

inline outcome read_by_character(const std::wstring& text) {
  ruvo::serializer::xml_reader reader;
  ruvo::bundle b;
  ruvo::exception error;
  reader.reset();
  reader.set_store(b);
  for (const wchar_t c : text) reader.next_character(c, error);
  return {text_of(b), static_cast<std::wstring>(error)};
}

}  // namespace xml_outcome
