#include <unistd.h>

#include <string_view>

#include "driverutil.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"
#include "process/tprocess_ctl.h"
#include "proto/tshl_ctl.h"
#include "stub/stubutil.h"

namespace {

// Process trace level by the first argument: none writes errors and warnings, an unknown one nothing.
int levelOf(int argc, char** argv) {
  if (argc < 2) return 0;
  const std::string_view option = argv[1];
  if (option == "-debug") return 3;
  if (option == "-info") return 2;
  return 4;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace ORVE_MCUC;
  openMissingStandardStreams();
  board_start(argc, argv);
  setTraceLevel(levelOf(argc, argv));
  CTrace::instance();
  PARLEND_TRACE(kInfo) << "================================== Parlend Start ================================";
  PARLEND_TRACE(kInfo) << "Version:" << 1 << "." << 1 << "." << 0 << "." << 0;
  DriverUtil::getInstance()->runCommand("mkdir -p /tmp/parlend");
  DriverUtil::getInstance()->initialize();
  Tprocess_ctl::getInstance()->initialize();
  Tshl_ctl::getInstance()->initialize();
  // Without its threads the process stays: what was written to flash and environment is of use to others, and
  // the log says which thread is missing.
  StubUtil::getInstance()->initialize();
  for (;;) pause();
}
