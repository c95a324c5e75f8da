// SPDX-License-Identifier: BSL-1.0
#pragma once

// Forward declarations of the public types: enough to name them in signatures.

namespace ruvo {

class application;
class binary;
class bundle;
class color;
class context;
class date;
class datetime;
class exception;
class file;
class fileCallback;
class fileFilter;
class iserializer;
class lapse;
class list;
class memo;
class time;
class var;
class xvar;

namespace http {
class request;
class response;
}  // namespace http

namespace jobs {
class job;
class pool;
}  // namespace jobs

namespace net {
class iresponse;
}  // namespace net

namespace serializer {
class ireader;
class iwriter;
class json;
}  // namespace serializer

namespace smtp {
class address;
class email;
class mailbox;
class response;
}  // namespace smtp

namespace task {
class async;
class bundle;
class call;
}  // namespace task

}  // namespace ruvo
