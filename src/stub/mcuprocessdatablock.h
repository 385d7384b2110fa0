// One item of deferred work. Made by the register space that queues it, owned by the queue from the moment it
// is added, deleted after its handler has run.
#pragma once

#include <cstdint>
#include <memory>

#include "stub/mcucmessagestruct.h"

namespace ORVE_MCUC {

inline constexpr int PROCESS_DATA_BLOCK_LENGTH = 65535;

class MCUProcessDataBlock {
 public:
  // Replaces the payload: length bytes, 0 .. 65535. False, and nothing changed, for any other length or
  // without memory.
  bool setData(const char* data, int length);
  // The payload, null when there is none. It is as large as what it carries.
  char* getData() { return m_data.get(); }
  int getDataLen() const { return m_dataLen; }

  ipcHeaderInfo ipcHeader;  // the request's transport head
  int32_t m_key = 0;        // selects the handler
  uint32_t m_result = 0;

  // Makes room for a payload of length bytes, to be filled in place. Null for a length that is
  // refused.
  char* allocate(int length);

 private:
  std::unique_ptr<char[]> m_data;
  int32_t m_dataLen = 0;
};

}  // namespace ORVE_MCUC
