// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::texto, free functions over text.

#include <ruvo/texto/charset.hpp>
#include <ruvo/texto/encoding.hpp>
#include <ruvo/texto/exact_view.hpp>
#include <ruvo/texto/identifiers.hpp>
#include <ruvo/texto/markup.hpp>
#include <ruvo/texto/numbers.hpp>
#include <ruvo/texto/pattern.hpp>
#include <ruvo/texto/search.hpp>
#include <ruvo/texto/words.hpp>
#include <ruvo/texto/written_numbers.hpp>
