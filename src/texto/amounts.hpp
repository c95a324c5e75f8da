// SPDX-License-Identifier: BSL-1.0
#pragma once

// Numbers for people, made of their digits: what doubles and decimals share.

#include <string>
#include <string_view>

namespace ruvo::texto {

/// See cifras_letras(). `whole` has up to 42 digits, and may begin with zeros; 0 to 99 cents.
std::wstring amount_in_words(bool is_negative, std::wstring_view whole, unsigned int cents);

/// A number in classic fixed notation, or a word for one, with the separators of the calling thread in place.
std::wstring punctuated(std::wstring_view plain);

}  // namespace ruvo::texto
