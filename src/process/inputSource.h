// The device's video inputs: which input boards there are, the source that each is, and the EDID by which a
// source is asked for a mode. Requests look for boards and read EDIDs on the receive thread, written EDIDs
// come on the work thread. One lock serialises them from the lists to the library's calls: an input's last
// EDID is that of the mode that was stored last, and nobody sees half a list. Nobody else takes that lock.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>

#include "calc/edid.h"
#include "calc/inputmodes.h"
#include "platform/input.h"

namespace ORVE_MCUC {

// Kinds of input boards, as the input library numbers them.
enum en_if_type : int { kDvi = 0, kDualDvi = 1, kHdmi14 = 2, kSdi3G = 7, kVga = 10 };

struct input_board_t {
  bool valid = false;
  uint16_t id = 0;
  int type = 0;  // en_if_type
  ll_input_cap cap{};
};

// The code of a source whose kind of board has none; its family is none of the others.
inline constexpr uint8_t kNoSourceCode = 0xFF;

// One source: board n is source and group n.
struct source_t {
  uint8_t signal_state = 0;
  uint8_t group = 0;
  uint8_t src_code = kNoSourceCode;  // en_source_code_t: family in the high nibble, number in the low one
  uint8_t input_ch = 0;              // input channel of the FPGA, 255: none
  uint16_t id = 0;
};

struct inputsource_name_t {
  uint8_t sourceCode = kNoSourceCode;
  uint8_t cardNO = 0;
  uint8_t lenName = 0;
  std::array<char, 126> name{};
};

class InputSource {
 public:
  static constexpr std::size_t kBoards = 7;
  static constexpr std::size_t kSources = kInputGroups;

  static InputSource* getInstance();
  static void deleteInstance();

  // Finds the boards anew, lists their sources and loads the stored modes into them.
  void InputBoardInit();
  // The 256-byte EDID of a group's source. 0; the library's result, or -1 without such a source, with out
  // unchanged.
  int ReadEDIDInfo(int group, std::span<uint8_t, kEdidBytes> out);
  // Stores the mode of a written EDID's first timing and loads an EDID for it. Needs at least a base block.
  void EDIDCommStorage(int group, std::span<const uint8_t> edid);
  // Builds and loads the EDID of a mode; frame in 0.01 Hz.
  void EDIDSetByMode(int group, uint16_t width, uint16_t height, uint16_t frame);

  std::optional<source_t> GetSourceByGroup(int group) const;
  inputsource_name_t name(std::size_t source) const;
  std::size_t sources() const;

 private:
  struct Lists {
    std::array<input_board_t, kBoards> _board{};
    std::array<source_t, kSources> gsource{};
    std::array<inputsource_name_t, kSources> m_inputSoruceName{};
    std::size_t RealSourceNum = 0;
  };

  // All with the lock held.
  void input_board_detect();
  void source_info_init();
  void source_edid_init();
  void nameSource(std::size_t n, int type, unsigned int sameBefore);
  void loadMode(int group, const InputMode& mode);
  std::optional<source_t> find(int group) const;

  // Whether the stored modes are known, by a read if need be.
  bool knowsModes();
  void storeMode(std::size_t group, const InputMode& mode);

  mutable std::mutex m_mutex;  // the lists and the library
  Lists m_lists;
  // Of the work thread alone.
  InSetPara_T InSetPara;
  bool m_modesKnown = false;
};

}  // namespace ORVE_MCUC
