#pragma once

// ruvo::files: operations on whole files and on folders with all that is in them.

#include <ruvo/files/tree.hpp>
#include <ruvo/files/whole.hpp>
