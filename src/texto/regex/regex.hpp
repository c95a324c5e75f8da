// SPDX-License-Identifier: BSL-1.0
#pragma once

// Patterns of the ECMAScript grammar on texts of any length.
//
// A pattern goes through three stages: parse() makes a tree of it, compile() a program of small instructions,
// and a matcher runs the program by backtracking, with a stack on the heap; none of them recurses, so neither
// a pattern nor a text can use up the stack of the thread. Three things keep the time linear. What failed
// once at a place of the text is not tried there again: a bit for each fork and place remembers it, and for
// loops over a set an interval of places. A way is only taken if the next character can begin it, which each
// fork knows beforehand. And a set again and again, such as `\w+`, is one instruction with at most one entry
// on the stack. Where a look-ahead or a back-reference forbids to remember failures, and for what is left
// over, a bound of steps and one of room end the work with std::regex_error.
//
// Held against the standard engine by tests/texto/pattern_test.cpp and, without it, by fuzz/patterns.cpp.

#include "texto/regex/match.hpp"
