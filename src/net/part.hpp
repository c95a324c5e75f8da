// SPDX-License-Identifier: BSL-1.0
#pragma once

// What a part of a message holds, for those who read and write messages.

#include <ruvo/file.hpp>
#include <ruvo/mime.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/wire/parameters.hpp"

namespace ruvo::mime {

/// How deep parts nest, so that who copies and destroys them may call itself.
constexpr std::size_t most_levels = 100;

struct part::data {
  struct field {
    std::wstring name, value;  // as it is sent, unfolded
  };

  std::vector<field> fields;  // but for those of the members below
  std::wstring type;          // empty for plain text
  wire::parameters type_parameters;
  std::wstring disposition;
  wire::parameters disposition_parameters;
  std::string content;  // decoded
  file source;          // instead of it
  std::vector<part> parts;
  std::size_t levels = 0;  // below this one
  bool is_damaged = false;
};

/// The way to it.
struct part_access {
  using data = part::data;
  static const part::data& of(const part& made) noexcept { return made.get(); }
  static part::data& of(part& made) { return made.own(); }
};
using part_data = part_access::data;

/// Field names that are a part's own.
constexpr std::wstring_view type_field = L"Content-Type", disposition_field = L"Content-Disposition",
                            encoding_field = L"Content-Transfer-Encoding", version_field = L"MIME-Version",
                            id_field = L"Content-ID";

/// Reads "type/subtype" or a disposition with its parameters; the word is in lower case. False if the word is
/// none, or a parameter is wrong (which lenient reading takes).
bool read_worded_field(std::wstring& word, wire::parameters& parameters, std::wstring_view value,
                       wire::parameter_reading how);
/// Whether it is "type/subtype", of tokens.
bool is_type(std::wstring_view text) noexcept;

/// Bytes that do not say how they are encoded: UTF-8 where they can be that, else Windows-1252.
std::wstring text_of_unknown(std::string_view bytes);

}  // namespace ruvo::mime
