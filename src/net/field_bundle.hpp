// SPDX-License-Identifier: BSL-1.0
#pragma once

// Fields as bundles: how the serializers of forms, cookies, parameters and messages see them.

#include <ruvo/forms.hpp>
#include <ruvo/fwd.hpp>

#include <string>

namespace ruvo::http {

/// The text of a value that is a scalar; refuses the others with the key.
std::wstring text_of_scalar(const std::wstring& key, const xvar& value);

/// The entries in their order and spelling; a list repeats its field. Refuses what is no scalar.
fields fields_of(const bundle& in);

/// Puts the fields into the bundle; a name that repeats becomes a list. Refuses, before anything is put, the
/// second of two names that are one key and are spelled differently.
void put_fields(bundle& out, const fields& all);

/// Puts the entries into the bundle, in place of those of the same keys: all, or none where memory lacks.
void put_entries(bundle& out, bundle made);

}  // namespace ruvo::http
