#include "mcuctrace.h"
#include "rounds.h"
#include "trace_writers.h"

namespace bench {

double parlendLines(int count) {
  using namespace ORVE_MCUC;
  setTraceLevel(3);
  PARLEND_TRACE(kInfo) << "the first line opens the file";
  const double start = nowUs();
  for (int i = 0; i < count; ++i) {
    const TraceValues values = traceValues(i);
    PARLEND_TRACE(kInfo) << "revise = " << values.revise << ", iDataLen = " << values.length
                         << ", usCheckout=" << values.checksum;
  }
  return (nowUs() - start) * 1e3 / count;
}

}  // namespace bench
