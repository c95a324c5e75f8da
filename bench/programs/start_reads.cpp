// SPDX-License-Identifier: BSL-1.0

// A program that reads a document of 1 KB.

#include <ruvo/bundle.hpp>
#include <ruvo/serializer.hpp>

#include <iostream>
#include <string>

int main() {
  std::wstring text = L"{\"lineas\":[0";
  while (text.size() < 1000) text += L",{\"articulo\":\"tornillo\",\"unidades\":12,\"precio\":3.75}";
  ruvo::bundle document;
  if (ruvo::serializer::json().deserialize(document, text + L"]}", nullptr)) return 1;
  return std::cout.good() ? 0 : 1;
}
