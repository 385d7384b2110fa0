#include "threadstart.h"

#include "mcuctrace.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

int failedStep(const char* owner, const char* step, int error) {
  PARLEND_TRACE(kError) << owner << "CreateThread() " << step << error;
  return kErrThread;
}

}  // namespace

int startDetachedThread(const char* owner, void* (*entry)(void*), void* argument, pthread_t& id) {
  pthread_attr_t attributes;
  if (const int error = pthread_attr_init(&attributes)) {
    return failedStep(owner, "pthread_attr_init() failed! errno=", error);
  }
  int result = 0;
  if (const int error = pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_JOINABLE)) {
    result = failedStep(owner, "pthread_attr_setdetachstate() failed! err=", error);
  } else if (const int refused = pthread_create(&id, &attributes, entry, argument)) {
    result = failedStep(owner, "pthread_create() failed! err=", refused);
  }
  pthread_attr_destroy(&attributes);
  if (result == 0) pthread_detach(id);
  return result;
}

}  // namespace ORVE_MCUC
