// SPDX-License-Identifier: BSL-1.0
#pragma once

#include "serializer/xml/strict_cursor.hpp"

namespace ruvo::serializer {

/// Where the document type declaration at `from` ends; throws exc::xmlBadFormated as the cursor does.
const wchar_t* behind_document_type(const xml_cursor& from);

}  // namespace ruvo::serializer
