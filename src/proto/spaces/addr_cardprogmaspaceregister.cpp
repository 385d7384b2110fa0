// Program space of the sending card: reads are zeros, writes are refused.
#include "proto/spaces/spaces.h"

namespace ORVE_MCUC {
namespace {

int ReadCardProgmaSpace(IMD_proto3rd& request) {
  request.proto.m_data.assign(request.proto.m_usValidDataLength, 0);
  request.proto.m_ucAck = kAckDone;
  return kDone;
}

int refuseWrite(IMD_proto3rd& request) {
  request.proto.m_ucAck = kAckRefused;
  return kRefused;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kCardProgram>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kCardProgram>(
      {.read = &ReadCardProgmaSpace, .write = &refuseWrite, .keyIsOffset = true, .unknownKey = kDone});
  return kSpace;
}

}  // namespace ORVE_MCUC
