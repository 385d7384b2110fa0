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

constexpr char kVersion[] = "parlend " PARLEND_VERSION "\n";
constexpr char kHelp[] =
    R"(usage: parlend [LEVEL | --help | --version]

The sending-card daemon. It takes over the board, serves its peers through the
message service, and runs until it is ended. LEVEL is what it traces:

  (none)      errors and warnings
  -info       these, and debug lines
  -debug      everything
  -disable    nothing; so does any other argument

The trace goes to /log and to standard output. On the simulated board, the
environment variable PARLEND_BOARD names the board's directory, and without it
that is 'board' in the current one: /log is log there.

Exit status: 2 when the board cannot be used; a daemon that runs ends with a
signal.
)";

// What a first argument asks for that wants no daemon; empty: it is started.
std::string_view answerTo(int argc, char** argv) {
  const std::string_view option = argc < 2 ? "" : argv[1];
  if (option == "--help") return kHelp;
  if (option == "--version") return kVersion;
  return {};
}

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
  if (const std::string_view answer = answerTo(argc, argv); !answer.empty())
    return write(STDOUT_FILENO, answer.data(), answer.size()) == static_cast<ssize_t>(answer.size()) ? 0 : 1;
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
