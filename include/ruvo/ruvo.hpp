#pragma once

// All of kesta: every public header.

#include <ruvo/api.hpp>
#include <ruvo/application.hpp>
#include <ruvo/armonia.hpp>
#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/color.hpp>
#include <ruvo/console.hpp>
#include <ruvo/context.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/files.hpp>
#include <ruvo/folder_type.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/iserializer.hpp>
#include <ruvo/lapse.hpp>
#include <ruvo/list.hpp>
#include <ruvo/log_targets.hpp>
#include <ruvo/logger.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/memory_collector.hpp>
#include <ruvo/serializer.hpp>
#include <ruvo/texto.hpp>
#include <ruvo/time.hpp>
#include <ruvo/times.hpp>
#include <ruvo/var.hpp>
#include <ruvo/velda.hpp>
#include <ruvo/xml.hpp>
#include <ruvo/xvar.hpp>
