// Carrying out one request: destination check, routing, reply.
#include "mcuctrace.h"
#include "outofmemory.h"
#include "proto/tshl_ctl.h"
#include "results.h"
#include "stub/mcuimdthread.h"
#include "stub/stubutil.h"

namespace ORVE_MCUC {

int StubUtil::onDataRecvFromIMDNew(IMD_proto3rd* request) {
  PARLEND_TRACE(kInfo) << " >>>>>>>>>> onDataRecvFromIMDNew Lock <<<<<<<<<<<<";
  CMutexGuardT<CMutexThread> guard(m_stubMenux);
  checkSelfDeviceRequestNew(request);
  // A frame that failed its checksum carries an acknowledge code already and is only answered.
  const int result = request->proto.m_ucAck == kAckDone ? carryOut(*request) : kFailed;
  m_McuIMDThreadPtr->ReplyMsgNew(request);
  PARLEND_TRACE(kInfo) << " >>>>>>>>>> onDataRecvFromIMDNew UnLock <<<<<<<<<<<<";
  return result;
}

bool StubUtil::checkSelfDeviceRequestNew(IMD_proto3rd* request) {
  const uint8_t destination = request->proto.m_ucDestinationAddrerss;
  PARLEND_TRACE(kInfo) << "Check sequence number, protoReply m_ucDestinationAddrerss = " << CTrace::hex
                       << destination << ", sequse id = " << CTrace::hex << m_DeviceSequseID;
  if (destination != m_DeviceSequseID) {
    PARLEND_TRACE(kError) << "=== checkSelfDeviceRequest ===Not this TALVOR's Msg, addr = " << CTrace::hex
                          << destination << " sequse id = " << CTrace::hex << m_DeviceSequseID;
  }
  return true;
}

int StubUtil::carryOut(IMD_proto3rd& request) {
  ThirdProtoMCUCMsg& proto = request.proto;
  int result = kFailed;
  if (!withinMemory("onDataRecvFromIMDNew", [&] { result = route(&request); })) {
    proto.m_ucAck = kAckRefused;
    proto.m_data.clear();
  } else if (result != kDone && proto.m_ucAck == kAckDone) {
    PARLEND_TRACE(kError) << "=== onDataRecvFromIMDNew ===not carried out although acknowledged: device type "
                          << proto.m_ucDeviceType << ", code " << proto.m_ucCode
                          << ", register = " << CTrace::hex << proto.m_uiRegisterUnitAddress
                          << ", length = " << proto.m_usValidDataLength << ", result = " << result;
  }
  return result;
}

int StubUtil::route(IMD_proto3rd* request) {
  using Task = int (Tshl_ctl::*)(IMD_proto3rd*);
  static constexpr Task kTasks[] = {&Tshl_ctl::Ssh_StartSendCard, &Tshl_ctl::Ssh_StartScanCard,
                                    &Tshl_ctl::Ssh_StartMultiCard, &Tshl_ctl::Ssh_StartDistribute,
                                    &Tshl_ctl::Ssh_Start3DLauncher};
  const uint8_t deviceType = request->proto.m_ucDeviceType;
  if (deviceType >= std::size(kTasks)) return kFailed;
  return (Tshl_ctl::getInstance()->*kTasks[deviceType])(request);
}

}  // namespace ORVE_MCUC
