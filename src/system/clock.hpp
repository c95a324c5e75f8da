// SPDX-License-Identifier: BSL-1.0
#pragma once

// The clocks.

namespace ruvo::platform {

/// 100-nanosecond ticks since 1970-01-01 00:00:00 UTC.
long long clock_ticks() noexcept;
/// Milliseconds that only go forwards.
unsigned long long steady_milliseconds() noexcept;

}  // namespace ruvo::platform
