// SPDX-License-Identifier: BSL-1.0

// The reader and the writer of XML in one object.

#include <ruvo/xml.hpp>

#include "serializer/deserialize.hpp"

namespace ruvo::serializer {

namespace {

std::unique_ptr<xml_writer> make_writer(bool ordered) {
  if (ordered) return std::make_unique<xml_ordered_writer>();
  return std::make_unique<xml_unordered_writer>();
}

}  // namespace

xml::xml(bool ordered, bool tabulated)
    : reader_(std::make_unique<xml_reader>()), writer_(make_writer(ordered)) {
  writer_->set_tabulated(tabulated);
}

xml::~xml() = default;

bool xml::serialize(std::wstring& out, const bundle& in, exception* err, int options) {
  return writer_->write(out, in, err, options);
}

bool xml::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return deserialize_with(*reader_, out, in, err, [this](const wchar_t* at, const wchar_t* end) {
    return reader_->take_tokens(at, end);
  });
}

void xml::limit_indentation(unsigned long levels) noexcept { writer_->limit_indentation(levels); }

}  // namespace ruvo::serializer
