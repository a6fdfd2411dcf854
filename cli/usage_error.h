// The two ways a command of the veska program fails besides an exception of the library.
#pragma once

#include <stdexcept>
#include <string>

namespace veska::cli {

// A mistake in the command line.  The program prints "veska: <what>. Try 'veska help'." on one
// line and exits with status 2, before any command has run.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& what) : std::runtime_error(what) {}
};

// A failure the library has already reported through the message sink (for example an unknown
// class name): the program adds nothing and exits with status 1.
class ReportedFailure : public std::exception {};

}  // namespace veska::cli
