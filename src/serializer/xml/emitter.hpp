#pragma once

// Writing values as XML with an explicit stack, so that nesting of any depth can be written.

#include <ruvo/exception.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xml.hpp>

#include <string>
#include <string_view>
#include <vector>

#include "memory/text_sink.hpp"
#include "values/bundle_store.hpp"

namespace ruvo::serializer {

using detail::text_sink;

/// The text of one value that is no container, see xml_writer::raw_value.
void put_xml_scalar(text_sink& out, const var& value);
/// The text without the blanks at its ends, escaped.
void put_xml_text(text_sink& out, std::wstring_view text);

/// One walk over a value for a writer. For the library's own writers it does everything itself; for writers
/// derived from them it asks their virtual operations for keys, scalars and nested bundles.
class xml_emitter {
 public:
  enum class order { unknown, by_key, by_position };

  /// `members` is the order of a bundle that a derived writer left to the base class.
  xml_emitter(xml_writer& writer, text_sink& out, exception& result, order members = order::unknown);

  void write_document(const bundle& in);
  void write_members(const bundle& in);
  void write_list(const list& in);
  void open_tag(std::wstring_view name, const xvar::qualities_map* qualities);
  void close_tag(std::wstring_view name);

 private:
  /// A container that is being written.
  struct frame {
    std::size_t taken = 0, size = 0;
    const xvar* elements = nullptr;               // of a list
    const detail::bundle_store* store = nullptr;  // of a bundle that has any members
    const bundle::entry* entry = nullptr;         // in key order: the next one, and its rank
    std::size_t rank = 0;
    const std::wstring* name = nullptr;  // of the element to close behind it, if any
    bool indents = false;                // behind it
  };

  void run();
  frame& open(const list& in);
  frame& open(const bundle& in);
  void close(const frame& f);
  void next_item(frame& f);
  void next_member(frame& f);
  void member(const std::wstring& key, const xvar& value);
  void nested_bundle(const bundle& in);
  void scalar(const xvar& value);
  void new_line() {
    if (writer_.tabulated_) out_.put(L'\n');
  }
  void indent() {
    if (!writer_.indentation_.empty()) out_.put(writer_.indentation_);
  }

  xml_writer& writer_;
  text_sink& out_;
  exception& result_;
  order order_;
  bool own_;
  std::vector<frame> open_;
  std::vector<std::wstring> names_;  // of the open elements, where a derived writer makes them from keys
};

}  // namespace ruvo::serializer
