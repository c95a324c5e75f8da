#pragma once

#include <ruvo/context.hpp>

namespace ruvo {

/// The calling thread's application; a process-wide context with the default services when it has none.
context& current_context() noexcept;

}  // namespace ruvo
