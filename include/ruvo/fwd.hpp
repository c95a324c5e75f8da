#pragma once

// Forward declarations of the public types: enough to name them in signatures.

namespace ruvo {

class application;
class binary;
class bundle;
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

namespace serializer {
class ireader;
class iwriter;
class json;
}  // namespace serializer

}  // namespace ruvo
