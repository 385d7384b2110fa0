#include "stub/mcuprocessdatablock.h"

#include <cstring>
#include <new>

namespace ORVE_MCUC {

char* MCUProcessDataBlock::allocate(int length) {
  if (length < 0 || length > PROCESS_DATA_BLOCK_LENGTH) return nullptr;
  m_data.reset(new (std::nothrow) char[static_cast<std::size_t>(length)]);
  m_dataLen = m_data ? length : 0;
  return m_data.get();
}

bool MCUProcessDataBlock::setData(const char* data, int length) {
  if (data == nullptr && length > 0) return false;
  MCUProcessDataBlock fresh;
  char* room = fresh.allocate(length);
  if (room == nullptr) return false;
  if (length > 0) std::memcpy(room, data, static_cast<std::size_t>(length));
  m_data = std::move(fresh.m_data);
  m_dataLen = length;
  return true;
}

}  // namespace ORVE_MCUC
