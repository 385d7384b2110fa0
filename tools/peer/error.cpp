#include "peer/error.h"

#include <cerrno>
#include <system_error>

namespace peer {

void failWithErrno(Failure failure, std::string_view text) {
  const int number = errno;
  throw Error(failure, std::string(text) + ": " + std::generic_category().message(number));
}

}  // namespace peer
