#pragma once

// Writing values as JSON with an explicit stack, so that nesting of any depth can be written.

#include <ruvo/exception.hpp>
#include <ruvo/list.hpp>
#include <ruvo/serializer.hpp>

#include <string>
#include <vector>

#include "memory/text_sink.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::text_sink;

/// The text of one scalar value, see json_writer::raw_value.
void put_json_scalar(text_sink& out, const xvar& value, bool escaped, bool null_as_empty);

/// One walk over a value for a writer. For the library's own writers it does everything itself; for writers
/// derived from them it asks their virtual operations for keys, scalars and nested bundles.
class json_emitter {
 public:
  enum class order { unknown, by_key, by_position };

  /// `members` is the order of a bundle that a derived writer left to the base class.
  json_emitter(json_writer& writer, text_sink& out, exception& result, order members = order::unknown);

  /// Whether nested bundles need no virtual operation.
  bool walks_bundles() const noexcept { return own_; }

  void write_members(const bundle& in);
  void write_bundle(const xvar& value);
  void write_list(const xvar& value);
  void write_member(const std::wstring& key, const xvar& value);

 private:
  /// A container that is being written.
  struct frame {
    bool is_list = false;
    std::size_t taken = 0, size = 0;
    const xvar* elements = nullptr;               // of a list
    const detail::bundle_store* store = nullptr;  // of a bundle that has any members
    const bundle::entry* entry = nullptr;         // in key order: the next one, and its rank
    std::size_t rank = 0;
  };

  void run();
  void open(const list& in);
  void open(const bundle& in);
  void break_and_push();
  void close(const frame& f);
  void separate(const frame& f);
  void next_element(frame& f);
  void next_member(frame& f);
  void member(const std::wstring& key, const xvar& value);
  void put_key(const std::wstring& key);
  void element(const xvar& value);

  json_writer& writer_;
  text_sink& out_;
  exception& result_;
  order order_;
  bool own_, escaped_;
  std::vector<frame> open_;
};

}  // namespace ruvo::serializer
