// Whether the deferred work is to end: long work looks here between its steps. Any thread.
#pragma once

namespace ORVE_MCUC {

void setWorkEnding(bool ending);
bool isWorkEnding();

}  // namespace ORVE_MCUC
