// The exception family of the platform.  Every exception carries its message as a String;
// what() gives the same text as UTF-8 so that generic handlers can print it.
#pragma once

#include <exception>
#include <string>

#include "kernel/platform/string.h"

namespace veska {

class Exception : public std::exception {
 public:
  explicit Exception(String message);
  const String& Message() const noexcept { return message_; }
  const char* what() const noexcept override { return utf8_.c_str(); }

 private:
  String message_;
  std::string utf8_;
};

// Each platform error is its own type so that callers can catch exactly what they rely on.
class ERangeError : public Exception {
 public:
  using Exception::Exception;
};  // value out of range (checked arithmetic)
class EIntOverflow : public Exception {
 public:
  using Exception::Exception;
};  // integer overflow (checked arithmetic)
class EListError : public Exception {
 public:
  using Exception::Exception;
};  // list index out of bounds
class EClassNotFound : public Exception {
 public:
  using Exception::Exception;
};  // class name unknown to the registry
class EConvertError : public Exception {
 public:
  using Exception::Exception;
};  // text or date conversion failed
class EStreamError : public Exception {
 public:
  using Exception::Exception;
};  // base of the stream errors
class EReadError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};  // stream underrun or unexpected value tag
class EWriteError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};  // a stream refused to take data
class EFOpenError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};  // a file stream could not open its file
class EPropertyError : public Exception {
 public:
  using Exception::Exception;
};  // a published property used against its kind or access
class EInOutError : public Exception {
 public:
  using Exception::Exception;
};  // file system failure
class EBadStream : public Exception {
 public:
  using Exception::Exception;
};  // a model file of unknown kind
class EBadStreamName : public Exception {
 public:
  using Exception::Exception;
};  // a model file without a name

}  // namespace veska
