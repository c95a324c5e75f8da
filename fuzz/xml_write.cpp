// SPDX-License-Identifier: BSL-1.0

// Writing what was read. Texts come back as they were written; where names and attributes allow it, reading
// and writing change nothing any more from the second time on.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xml.hpp>

#include <algorithm>
#include <vector>

#include "fuzz.hpp"

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::xml;

namespace {

/// Names of letters and digits come back, and attributes of nothing else do not grow.
bool is_plain(const std::wstring& name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9');
  });
}

/// Whether all names and attributes in the document are such that they come back.
bool is_stable(const bundle& document) {
  std::vector<list> open{{xvar(document)}};
  while (!open.empty()) {
    const list values = std::move(open.back());
    open.pop_back();
    for (const xvar& value : values) {
      for (const auto& [key, quality] : value)
        if (!is_plain(key) || !is_plain(quality.to_string())) return false;
      list inner;
      if (value.instanceof (typeid(list))) inner = value;
      if (value.instanceof (typeid(bundle))) {
        bundle members;
        members = value;
        for (const auto& [key, member] : members) {
          if (!is_plain(key)) return false;
          inner.push_back(member);
        }
      }
      if (!inner.empty()) open.push_back(std::move(inner));
    }
  }
  return true;
}

std::wstring written(xml& format, const bundle& in) {
  std::wstring out;
  FUZZ_CHECK(!format.serialize(out, in));
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;
  const std::wstring text = fuzz::wide(data, size);
  for (const bool ordered : {true, false}) {
    xml format(ordered, false);
    // The text as a value.
    bundle value, value_again;
    value[L"k"] = text;
    const std::wstring once = written(format, value);
    FUZZ_CHECK(!format.deserialize(value_again, once));
    FUZZ_CHECK(written(format, value_again) == once);
    // The text as a document.
    bundle store;
    format.deserialize(store, text, nullptr);
    std::wstring now = written(format, store);
    if (!is_stable(store)) continue;
    for (int n = 0; n < 2; ++n) {
      bundle again;
      FUZZ_CHECK(!format.deserialize(again, now));
      const std::wstring next = written(format, again);
      FUZZ_CHECK(n == 0 || next == now);
      now = next;
    }
  }
  return 0;
}
