// Network settings and the status store: calls that only the journal remembers.
#include "board_journal.h"
#include "platform/netinfo.h"
#include "platform/stinfo.h"
#include "simboard.h"

using namespace simboard;

int netinfo_set_eth_mode(int mode) {
  const bool failed = takeFault(Fault::NetCall);
  if (journalsWrites()) JournalLine("net-mode").word(std::to_string(mode)).failedIf(failed);
  return failed ? -1 : 0;
}

int netinfo_set_curr_ip(const char* ip, const char* mask, const char* gateway) {
  const bool failed = takeFault(Fault::NetCall);
  if (journalsWrites()) JournalLine("net-addr").word(ip).word(mask).word(gateway).failedIf(failed);
  return failed ? -1 : 0;
}

int st_info_op(int operation, uint32_t address, int length, unsigned char* value) {
  if (journalsWrites()) {
    JournalLine("status-info")
        .word(std::to_string(operation))
        .address(address)
        .word(std::to_string(length))
        .number(length > 0 ? *value : 0U);
  }
  return 0;
}
