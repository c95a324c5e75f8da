// SPDX-License-Identifier: BSL-1.0

// A program in C++ that does nothing, with the same runtime library as the others.

#include <iostream>

int main() { return std::cout.good() ? 0 : 1; }
