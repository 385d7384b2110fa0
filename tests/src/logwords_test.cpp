// The lines around a section of work.
#include "logwords.h"

#include <gmock/gmock.h>

#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr SectionWords kWords{"== Begin ", "== Finish ", "Work", " =="};

TEST(LogSectionTest, LinesStandAroundTheWorkUnlessItIsAbandoned) {
  TestDaemon daemon;
  setTraceLevel(3);
  daemon.trace();
  { LogSection section(kWords); }
  {
    LogSection section({"== told ", "== done", {}, " =="}, 7U);
    section.abandon();
  }
  EXPECT_THAT(daemon.trace("== "), ElementsAre(HasSubstr("== Begin Work =="), HasSubstr("== Finish Work =="),
                                               HasSubstr("== told 7 ==")));
  setTraceLevel(0);
  { LogSection section(kWords); }
  EXPECT_THAT(daemon.trace("== "), testing::IsEmpty());
}

}  // namespace
}  // namespace ORVE_MCUC
