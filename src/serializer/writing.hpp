// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the writers of all formats share.

#include <ruvo/exception.hpp>
#include <ruvo/serializer.hpp>

#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <typeinfo>

#include "memory/text_sink.hpp"
#include "values/walk.hpp"

namespace ruvo::serializer {

using detail::text_sink;

/// What `put` puts into a sink, as a text.
template <class Put>
std::wstring text_of(Put put) {
  text_sink sink;
  put(sink);
  return sink.text();
}

/// The lines of a writer's text, and how far they are indented.
class layout {
 public:
  layout(iwriter& writer, text_sink& out) noexcept : writer_(writer), out_(out) {}

  bool breaks_lines() const noexcept { return writer_.tabulated_; }
  void new_line() {
    if (breaks_lines()) out_.put(L'\n');
  }
  void indent() {
    if (!writer_.indentation_.empty()) out_.put(writer_.indentation_);
  }
  void deeper() { writer_.push_tab(); }
  void back() noexcept { writer_.pop_tab(); }

  /// iwriter::write, where `put(sink, result)` writes. What it throws leaves the writer at the level where it
  /// was.
  template <class Put>
  static bool write(iwriter& writer, std::wstring& out, exception* err, Put put) {
    exception result;
    const std::wstring indentation = writer.indentation_;
    const std::uint32_t withheld = writer.withheld_;
    try {
      text_sink sink;
      put(sink, result);
      sink.replace(out);
    } catch (...) {
      writer.indentation_ = indentation;
      writer.withheld_ = withheld;
      throw;
    }
    if (err && result.WRONG()) *err = result;
    return result.WRONG();
  }

 private:
  iwriter& writer_;
  text_sink& out_;
};

// --- the hooks of a walk that writes

/// In which order a writer of one of these two types writes members; nothing for what a program derived.
template <class Ordered, class Unordered>
std::optional<detail::order> own_order(const iwriter& writer) {
  const std::type_info& type = typeid(writer);
  if (type == typeid(Ordered)) return detail::order::by_key;
  if (type == typeid(Unordered)) return detail::order::by_position;
  return std::nullopt;
}

/// Those of the library's own writers, but for scalars: keys as they stand, all bundles in the one walk.
struct own_hooks {
  static const std::wstring& key(const std::wstring& key) noexcept { return key; }
  /// Whether the hook has written the bundle, so that the walk passes over it.
  template <class Bundle>
  static constexpr bool writes(text_sink& /*out*/, const Bundle& /*in*/) noexcept {
    return false;
  }
};

/// Those of a writer that a program derived: its virtual operations write keys, scalars and bundles.
template <class Writer>
class derived_hooks {
 public:
  derived_hooks(Writer& writer, exception& result) noexcept : writer_(writer), result_(result) {}

  std::wstring key(std::wstring key) { return writer_.raw_key(key); }
  void scalar(text_sink& out, const xvar& value) { out.put(writer_.raw_value(value)); }
  /// Writes the bundle, given as Writer::raw_bundle takes it.
  template <class Bundle>
  bool writes(text_sink& out, const Bundle& in) {
    std::wostringstream nested;
    writer_.raw_bundle(nested, in, result_);
    out.put(nested.str());
    return true;
  }

 private:
  Writer& writer_;
  exception& result_;
};

}  // namespace ruvo::serializer
