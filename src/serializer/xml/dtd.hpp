// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ruvo/well_formed_xml.hpp>

#include "serializer/xml/strict_cursor.hpp"

namespace ruvo::serializer {

/// Behind the document type declaration that begins at `from`, whose declarations are kept as far as the
/// options say that they have an effect. Throws as the cursor does.
xml_cursor behind_document_type(const xml_cursor& from, const xml_read_options& options);

}  // namespace ruvo::serializer
