// The floors of the house: who may include whom. An include goes to a lower floor or stays on its own.
#pragma once

#include <array>
#include <string_view>

namespace house {

/** A folder or the beginning of a file's path; of several that fit the longest counts. */
struct Floor {
  std::string_view path;
  int number;
};

constexpr std::array kFloors{
    Floor{"platform/include/", 1},
    // Trace, locks, bytes and the helpers beside them.
    Floor{"src/", 2},
    Floor{"src/maps/", 3},
    Floor{"src/calc/", 4},
    // The only code that calls the driver library.
    Floor{"src/driver", 5},
    Floor{"src/envstore", 5},
    // What goes out: frames, items of work, and the calls that send and queue them.
    Floor{"src/outgoing", 6},
    Floor{"src/stub/outgoing", 6},
    Floor{"src/stub/mcucmessagestruct", 6},
    Floor{"src/stub/mcuprocessdatablock", 6},
    Floor{"src/proto/store/", 7},
    // Register spaces, cards, handlers, monitor, poll; the headers of router and dispatcher, whose lower half
    // lives here.
    Floor{"src/proto/", 8},
    Floor{"src/process/", 8},
    Floor{"src/proto/tshl_ctl.cpp", 9},
    Floor{"src/process/tprocess_ctl.cpp", 9},
    // Message channel and request handling.
    Floor{"src/stub/", 9},
    Floor{"src/stub/stubutil_startup", 10},
    Floor{"src/main.cpp", 10},
};

/** What a folder may include apart from itself; a folder that is not named sees everything. */
struct View {
  std::string_view folder;
  std::array<std::string_view, 6> sees;
};

constexpr std::array kViews{
    View{"src/", {"platform/include/"}},
    View{"platform/include/", {}},
    View{"platform/sim/", {"platform/include/"}},
    View{"platform/device/", {"platform/include/"}},
    // A second opinion of frames and board: nothing of the daemon.
    View{"tools/peer/", {}},
    // Of the daemon maps, calculations and the bytes that they are made of.
    View{"tools/", {"src/maps/", "src/calc/", "src/mcucdatablock.h", "platform/sim/board_conf.h"}},
    View{"tests/system/", {"tests/support/", "tools/", "src/maps/", "src/calc/", "src/mcucdatablock.h"}},
};

/** A service of the platform and who in the daemon calls it: files by the beginnings of their paths. */
struct Service {
  std::string_view header;
  std::array<std::string_view, 8> callers;
};

constexpr std::array kServices{
    Service{"platform/include/platform/driver.h", {"src/driverutil"}},
    // Shell and clock; beside driverutil the trace, and who asks for a path or a moment.
    Service{"platform/include/platform/board.h",
            {"src/driverutil", "src/main.cpp", "src/mcuctrace.cpp", "src/mcucutil.cpp", "src/regularfile.cpp",
             "src/proto/spaces/ratetest.cpp", "src/stub/loadflag.cpp"}},
    Service{"platform/include/platform/colour.h", {"src/process/colour.cpp"}},
    Service{"platform/include/platform/input.h", {"src/process/inputSource.h"}},
    Service{"platform/include/platform/netinfo.h", {"src/proto/store/data_common_identity.cpp"}},
    Service{"platform/include/platform/stinfo.h", {"src/process/featureeffects.cpp"}},
    Service{"platform/include/platform/sysconf.h", {"src/envstore.h"}},
};

}  // namespace house
