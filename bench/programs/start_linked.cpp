// SPDX-License-Identifier: BSL-1.0

// A program that needs the library and uses nothing of it.

#include <ruvo/application.hpp>

#include <iostream>

unsigned long (*volatile named)() = ruvo::application::threadID;

int main() { return std::cout.good() ? 0 : 1; }
