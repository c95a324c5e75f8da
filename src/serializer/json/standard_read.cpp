// SPDX-License-Identifier: BSL-1.0

// Standard JSON from a whole text into values.

#include "serializer/json/standard_read.hpp"

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/xvar.hpp>

#include <utility>

#include "memory/block_cache.hpp"
#include "memory/thread_cache.hpp"
#include "serializer/json/standard_failure.hpp"
#include "serializer/json/standard_parser.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

namespace {

using detail::cell;

/// Calls `done` with the value that was read; true on FAILURE.
template <class Unit, class Done>
bool read_whole(std::basic_string_view<Unit> text, exception* err, const json_read_options& options,
                json_roots roots, Done done) {
  using detail::thread_cache;
  known_names names(sizeof(Unit) > 1 ? &thread_cache::wide_names : &thread_cache::narrow_names);
  const detail::document_blocks blocks(text.size());
  json_builder builder(names.tree(), options);
  whole_json<Unit> reader(text, builder, options);
  if (fails(
          err, [&] { reader.read(roots); }, [&] { return reader.position(); }))
    return true;
  done(builder.take());
  return false;
}

template <class Unit>
bool read_into(bundle& out, std::basic_string_view<Unit> text, exception* err,
               const json_read_options& options) {
  return read_whole(text, err, options, {true, false, false},
                    [&out](const xvar& read) { out = std::move(cell::as_bundle(read)); });
}
template <class Unit>
bool read_into(list& out, std::basic_string_view<Unit> text, exception* err,
               const json_read_options& options) {
  return read_whole(text, err, options, {false, true, false},
                    [&out](const xvar& read) { out = std::move(cell::as_list(read)); });
}
template <class Unit>
bool read_into(xvar& out, std::basic_string_view<Unit> text, exception* err,
               const json_read_options& options) {
  return read_whole(text, err, options, {true, true, true}, [&out](xvar read) { out.swap(read); });
}

}  // namespace

bool read_container(xvar& out, std::wstring_view text, exception* err, const json_read_options& options) {
  return read_whole(text, err, options, {true, true, false}, [&out](xvar read) { out.swap(read); });
}

bool read_standard_json(bundle& out, std::wstring_view text, exception* err,
                        const json_read_options& options) {
  return read_into(out, text, err, options);
}
bool read_standard_json(bundle& out, std::string_view bytes, exception* err,
                        const json_read_options& options) {
  return read_into(out, bytes, err, options);
}
bool read_standard_json(list& out, std::wstring_view text, exception* err, const json_read_options& options) {
  return read_into(out, text, err, options);
}
bool read_standard_json(list& out, std::string_view bytes, exception* err, const json_read_options& options) {
  return read_into(out, bytes, err, options);
}
bool read_standard_json(xvar& out, std::wstring_view text, exception* err, const json_read_options& options) {
  return read_into(out, text, err, options);
}
bool read_standard_json(xvar& out, std::string_view bytes, exception* err, const json_read_options& options) {
  return read_into(out, bytes, err, options);
}

}  // namespace ruvo::serializer
