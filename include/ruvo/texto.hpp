#pragma once

// ruvo::texto, free functions over text.
//
// A function whose name ends in `_` returns a new text; its twin without `_` changes its argument in place
// and returns it. Both give the same text. Character classes are those of the "C" locale: no unit above 127
// is a blank, a digit or a letter, unless a function says so. All functions are reentrant.

#include <ruvo/texto/encoding.hpp>
#include <ruvo/texto/identifiers.hpp>
#include <ruvo/texto/markup.hpp>
#include <ruvo/texto/numbers.hpp>
#include <ruvo/texto/search.hpp>
#include <ruvo/texto/words.hpp>
