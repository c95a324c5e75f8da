// SPDX-License-Identifier: BSL-1.0
#pragma once

// The documents that are measured on: made with a fixed seed, or read from files that the caller names.

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

struct corpus {
  /// What the document is mainly made of; it decides which targets apply.
  enum flavour { records, doubles, small_objects };

  std::string name;
  std::string text;  // UTF-8
  flavour kind;
};

/// A feed of messages, a collection of coordinates, a catalogue, the answers of a service, whose names are in
/// camel case, the body of a request of 1 KB, and the files. Files that cannot be read are reported and left
/// out.
std::vector<corpus> corpora(int argc, char** argv);

/// A catalogue of articles of about as many bytes as asked for, from 1 KB to as many as fit into memory: the
/// articles of the first 200 KB come again and again.
std::string catalogue(std::size_t bytes);

}  // namespace bench
