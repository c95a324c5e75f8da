// SPDX-License-Identifier: BSL-1.0
#pragma once

// Failures of archives with what they are about.

#include <ruvo/exc.hpp>

#include <new>
#include <stdexcept>
#include <string>

#include "exc/detail.hpp"

namespace ruvo::zip {

/// The failure of an archive or an entry of that name; the detail is the reason.
template <class Failure>
Failure failure_of(const std::wstring& name, const wchar_t* reason) {
  return detail::about(Failure(name), [reason] { return std::wstring(reason); });
}

template <class Failure>
Failure failure_of_path(const wchar_t* message, const file& path) {
  return detail::about(Failure(message + static_cast<const std::wstring&>(path)),
                       [&path] { return static_cast<const std::wstring&>(path); });
}
inline exc::zipNoOrigen no_source(const file& path) {
  return failure_of_path<exc::zipNoOrigen>(L"No se ha encontrado el origen: ", path);
}
inline exc::zipNoDestino no_target(const file& path) {
  return failure_of_path<exc::zipNoDestino>(L"No se ha encontrado el destino: ", path);
}

/// Runs the body and copies its failure to `err`; true is success. Lack of memory is zipLimit of the subject.
template <class Body>
bool is_done(exception& err, const std::wstring& subject, Body body) {
  try {
    body();
    return true;
  } catch (const exception& failure) {
    failure.copy_on(err);
  } catch (const std::bad_alloc&) {
    failure_of<exc::zipLimit>(subject, L"memoria").copy_on(err);
  } catch (const std::length_error&) {
    failure_of<exc::zipLimit>(subject, L"memoria").copy_on(err);
  }
  return false;
}

}  // namespace ruvo::zip
