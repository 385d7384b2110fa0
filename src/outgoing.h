// What everybody below the message channel may ask of those above it: send a message, queue work. Any thread.
#pragma once

#include <memory>

#include "stub/mcucmessagestruct.h"
#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {

// Whoever carries it out.
class Outgoing {
 public:
  virtual int send(IMD_proto3rd message) = 0;
  virtual int queue(std::unique_ptr<MCUProcessDataBlock> item) = 0;

 protected:
  ~Outgoing() = default;
};

// Puts somebody in charge, who stays until another takes over; nullptr: nobody.
void setOutgoing(Outgoing* inCharge);

// Sends an unsolicited message to the task in its processID: 0, kErrEncode or kErrSend. Nobody in charge:
// kErrSend.
int sendMessage(IMD_proto3rd message);

// Queues a work item: 0, or kRefused with the item gone. Waits while a handler runs and while the queue is
// full, unless a handler calls it. Nobody in charge: kRefused.
int queueWork(std::unique_ptr<MCUProcessDataBlock> item);

}  // namespace ORVE_MCUC
