// A read that is answered from the parameter flash.
#pragma once

#include "driverutil.h"
#include "proto/store/deviceaccess.h"
#include "stub/mcucmessagestruct.h"

namespace ORVE_MCUC {

// Appends the request's length of bytes from a flash address as its data. The driver's result; no data unless
// 0.
inline int replyFromFlash(IMD_proto3rd& request, uint32_t flashAddress) {
  auto& data = request.proto.m_data;
  data.assign(request.proto.m_usValidDataLength, 0);
  const int result = readFlash(flashAddress, data);
  if (result != 0) data.clear();
  return result;
}

}  // namespace ORVE_MCUC
