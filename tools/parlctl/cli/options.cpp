#include "options.h"

#include "output.h"

namespace parlctl {

peer::Peer Options::connect(uint32_t serviceCode) const {
  return {socketPath.empty() ? board().socketPath() : socketPath, serviceCode, peer::milliseconds(timeoutMs)};
}

void Options::print(const Result& result) const {
  writeOutput((json ? envelope(verb, result).dump() : result.text) + '\n');
  status_ = std::max(status_, textOf(result.outcome).status);
}

}  // namespace parlctl
