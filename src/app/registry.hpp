#pragma once

// Which application serves which thread.

#include <ruvo/application.hpp>

namespace ruvo::registry {

/// The application of the calling thread, or null. Takes no lock but where hundreds of threads are
/// registered.
application* find() noexcept;

/// False when the thread has an application already.
bool add(unsigned long thread, application& app);
/// False when the thread has none.
bool remove(unsigned long thread) noexcept;
/// Removes every thread of an application.
void remove_all(const application& app) noexcept;

}  // namespace ruvo::registry
