// The device's environment store, open for the life of an object.
#pragma once

#include "platform/sysconf.h"

namespace ORVE_MCUC {

// Closed at the end even when it did not open.
class OpenStore {
 public:
  OpenStore() : open_(sysconf_openenv() == 0) {}
  ~OpenStore() { sysconf_closeenv(); }
  OpenStore(const OpenStore&) = delete;
  OpenStore& operator=(const OpenStore&) = delete;
  explicit operator bool() const { return open_; }

 private:
  bool open_;
};

}  // namespace ORVE_MCUC
