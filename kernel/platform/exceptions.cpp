#include "kernel/platform/exceptions.h"

#include <utility>

namespace veska {

Exception::Exception(String message) : message_(std::move(message)), utf8_(ToUtf8(message_)) {}

}  // namespace veska
