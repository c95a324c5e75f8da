// SPDX-License-Identifier: BSL-1.0
#pragma once

// A client's program, which a server's script starts.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

struct place {
  std::string host;
  unsigned short port;
  std::vector<std::string> more;
};

/// Its arguments are HOST, PORT and what else the script has to say. The exit code is 0 when `client` is
/// content.
inline int run_client(int argc, char** argv, bool (*client)(const place& server)) {
  if (argc < 3) return 1;
  try {
    const auto port = static_cast<unsigned short>(std::strtoul(argv[2], nullptr, 10));
    return client({argv[1], port, {argv + 3, argv + argc}}) ? 0 : 1;
  } catch (const std::exception& error) {
    std::printf("failed: %s\n", error.what());
    return 1;
  }
}
