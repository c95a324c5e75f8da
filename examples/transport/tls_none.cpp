// SPDX-License-Identifier: BSL-1.0

// In place of TLS where there is no Schannel.

#include <ruvo/exc.hpp>

#include "stream.hpp"

namespace transport {

std::unique_ptr<stream> secure(std::unique_ptr<stream>, const std::string&, const std::string&) {
  throw ruvo::exc::RunTime(L"no TLS in this build");
}

}  // namespace transport
