// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::files: operations on whole files, on lines, and on folders with all that is in them. A single path is
// <ruvo/file.hpp>.

#include <ruvo/files/lines.hpp>
#include <ruvo/files/safe_names.hpp>
#include <ruvo/files/temporary.hpp>
#include <ruvo/files/tree.hpp>
#include <ruvo/files/whole.hpp>
