// The device's video inputs: which input boards there are, the source that each is, and its EDID. On the
// receive thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "platform/input.h"

namespace ORVE_MCUC {

inline constexpr std::size_t kEdidSize = INPUT_EDID_SIZE;

// Kinds of input boards, as the input library numbers them.
enum en_if_type : int { kDvi = 0, kDualDvi = 1, kHdmi14 = 2, kSdi3G = 7, kVga = 10 };

struct input_board_t {
  bool valid = false;
  uint16_t id = 0;
  int type = 0;  // en_if_type
  ll_input_cap cap{};
};

// One source: board n is source and group n.
struct source_t {
  uint8_t signal_state = 0;
  uint8_t group = 0;
  uint8_t src_code = 0;  // family in the high nibble, number in the low one
  uint8_t input_ch = 0;  // input channel of the FPGA
  uint16_t id = 0;
};

struct inputsource_name_t {
  uint8_t sourceCode = 0;
  uint8_t cardNO = 0;
  uint8_t lenName = 0;
  std::array<char, 126> name{};
};

class InputSource {
 public:
  static constexpr std::size_t kBoards = 7;
  static constexpr std::size_t kSources = 9;

  static InputSource* getInstance();
  static void deleteInstance();

  // Finds the boards anew and lists their sources.
  void InputBoardInit();
  // The 256-byte EDID of a group's source. 0; the library's result, or -1 without such a source, with out
  // unchanged.
  int ReadEDIDInfo(int group, std::span<uint8_t, kEdidSize> out);
  // Null when no source has that group.
  const source_t* GetSourceByGroup(int group) const;
  const inputsource_name_t& name(std::size_t source) const { return m_inputSoruceName[source]; }
  std::size_t sources() const { return RealSourceNum; }

 private:
  void input_board_detect();
  void source_info_init();
  void nameSource(std::size_t n, int type, unsigned int sameBefore);

  std::array<input_board_t, kBoards> _board{};
  std::array<source_t, kSources> gsource{};
  std::array<inputsource_name_t, kSources> m_inputSoruceName{};
  std::size_t RealSourceNum = 0;
};

}  // namespace ORVE_MCUC
