// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace ruvo {

/// The folders of an application.
enum class folder_type {
  root,       ///< the application's folder, which boot() is given; the others but `binaries` lie in it
  binaries,   ///< where the module's own file lies
  config,     ///< "config": settings
  data,       ///< "data": what the application keeps
  resources,  ///< "resources": what it is delivered with
  logs,       ///< "logs": the files of its logger
  temporal,   ///< "temporal": what may be erased when it does not run
};

}  // namespace ruvo
