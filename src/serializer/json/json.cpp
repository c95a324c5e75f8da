// SPDX-License-Identifier: BSL-1.0

// The reader and the writer of JSON in one object.

#include <ruvo/serializer.hpp>

#include "serializer/deserialize.hpp"

namespace ruvo::serializer {

namespace {

std::unique_ptr<iwriter> make_writer(bool ordered, bool escaped) {
  if (!escaped) return std::make_unique<oauth_writer>();
  if (ordered) return std::make_unique<json_ordered_writer>();
  return std::make_unique<json_unordered_writer>();
}

}  // namespace

json::json() : json(true, false, true) {}

json::json(bool ordered, bool tabulated, bool escaped)
    : reader_(std::make_unique<json_reader>()), writer_(make_writer(ordered, escaped)) {
  writer_->set_tabulated(tabulated);
}

json::~json() = default;

bool json::serialize(std::wstring& out, const bundle& in, exception* err, int options) {
  return writer_->write(out, in, err, options);
}

bool json::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return deserialize_with(*reader_, out, in, err, [this](const wchar_t* at, const wchar_t* end) {
    return reader_->take_tokens(at, end);
  });
}

void json::limit_indentation(unsigned long levels) noexcept { writer_->limit_indentation(levels); }

}  // namespace ruvo::serializer
