// Starting a detached thread the way every thread of the daemon is started.
#pragma once

#include <pthread.h>

namespace ORVE_MCUC {

// Starts entry(argument) as a detached thread and stores its id. Returns 0, or kErrThread after an Error line
// that begins with owner and names the step that failed and its error number.
int startDetachedThread(const char* owner, void* (*entry)(void*), void* argument, pthread_t& id);

}  // namespace ORVE_MCUC
