// SPDX-License-Identifier: BSL-1.0
#pragma once

// A store with all that XML puts into it, as text, and both ways of reading XML.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xml.hpp>

#include <string>
#include <utility>
#include <vector>

#include "support/both_ways.hpp"

namespace xml_outcome {

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

}  // namespace xml_outcome

struct xml_ways : both_ways<ruvo::serializer::xml, ruvo::serializer::xml_reader> {
  xml_ways() : both_ways(xml_outcome::text_of, true, false) {}
};
