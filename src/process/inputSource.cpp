#include "process/inputSource.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "mcuctrace.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

constexpr uint8_t kNoSignalYet = 3;
constexpr uint8_t kNoChannel = 255;
// A library that goes round in circles is left after so many inputs.
constexpr int kMostSteps = 64;
constexpr int kMostId = 0xFFFF;

// FPGA input channels: row by the low nibble of a board's id, column by the next one.
constexpr uint8_t g_fpga_ch_table[3][6] = {
    {0, 1, 2, 3, 0, 0}, {4, 255, 255, 255, 0, 0}, {5, 255, 255, 255, 0, 0}};

uint8_t channelOf(unsigned int id) {
  const unsigned int row = id & 0x0F;
  const unsigned int column = id >> 4 & 0x0F;
  return row < std::size(g_fpga_ch_table) && column < std::size(g_fpga_ch_table[0])
             ? g_fpga_ch_table[row][column]
             : kNoChannel;
}

// What the sources of a board type are called; k boards of that type came before.
struct Family {
  const char* name;
  int type;
  uint8_t code;   // of k = 0
  bool numbered;  // the name ends in k + 1
  uint8_t nameLength;
};
constexpr Family kFamilies[] = {{"DVI", kDvi, 0x00, false, 3},
                                {"DUAL_DVI-", kDualDvi, 0x51, true, 10},
                                {"HDMI1.4-", kHdmi14, 0x61, true, 9},
                                {"SDI", kSdi3G, 0x30, false, 3},
                                {"VGA", kVga, 0x20, false, 3}};

Singleton<InputSource>& holder() {
  static Singleton<InputSource> instance;
  return instance;
}

}  // namespace

InputSource* InputSource::getInstance() {
  return holder().get([] { return new InputSource; });
}
void InputSource::deleteInstance() {
  holder().destroy();
}

void InputSource::InputBoardInit() {
  const std::lock_guard lock(m_mutex);
  m_lists = {};
  input_board_detect();
  source_info_init();
  source_edid_init();
}

void InputSource::input_board_detect() {
  ll_initial();
  std::size_t total = 0;
  std::size_t valid = 0;
  int id = ll_find_input_next(0);
  for (int step = 0; id != 0 && step < kMostSteps && total < kBoards; ++step, id = ll_find_input_next(id)) {
    if (id < 0 || id > kMostId || ll_find_input_filter_all(id) == 0) continue;
    input_board_t& board = m_lists._board[total++];
    board.id = static_cast<uint16_t>(id);
    board.valid = ll_get_input_info(id, &board.type, &board.cap) == 0;
    valid += board.valid ? 1 : 0;
    PARLEND_TRACE(kInfo) << "Input id = " << id << "Input type = " << board.type;
  }
  PARLEND_TRACE(kInfo) << "Input Total = " << total << "Input valid = " << valid;
}

void InputSource::source_info_init() {
  for (const input_board_t& board : m_lists._board) {
    if (!board.valid) continue;
    const std::size_t n = m_lists.RealSourceNum++;
    source_t& source = m_lists.gsource[n];
    source.signal_state = kNoSignalYet;
    source.group = static_cast<uint8_t>(n);
    source.id = board.id;
    source.input_ch = channelOf(board.id);
    const auto sameBefore = std::count_if(
        std::as_const(m_lists._board).data(), &board,
        [&board](const input_board_t& other) { return other.valid && other.type == board.type; });
    nameSource(n, board.type, static_cast<unsigned int>(sameBefore));
  }
}

void InputSource::nameSource(std::size_t n, int type, unsigned int sameBefore) {
  source_t& source = m_lists.gsource[n];
  inputsource_name_t& record = m_lists.m_inputSoruceName[n];
  record.cardNO = source.group;
  const auto* family = std::find_if(std::begin(kFamilies), std::end(kFamilies),
                                    [type](const Family& f) { return f.type == type; });
  if (family == std::end(kFamilies)) return;
  source.src_code = static_cast<uint8_t>(family->code + sameBefore);
  record.sourceCode = source.src_code;
  record.lenName = family->nameLength;
  const std::string number = family->numbered ? std::to_string(sameBefore + 1) : std::string();
  std::snprintf(record.name.data(), record.name.size(), "%s%s", family->name, number.c_str());
}

std::optional<source_t> InputSource::find(int group) const {
  const auto end = m_lists.gsource.begin() + static_cast<std::ptrdiff_t>(m_lists.RealSourceNum);
  const auto found = std::find_if(m_lists.gsource.begin(), end,
                                  [group](const source_t& source) { return source.group == group; });
  return found == end ? std::nullopt : std::optional(*found);
}

std::optional<source_t> InputSource::GetSourceByGroup(int group) const {
  const std::lock_guard lock(m_mutex);
  return find(group);
}

inputsource_name_t InputSource::name(std::size_t source) const {
  const std::lock_guard lock(m_mutex);
  return source < kSources ? m_lists.m_inputSoruceName[source] : inputsource_name_t{};
}

std::size_t InputSource::sources() const {
  const std::lock_guard lock(m_mutex);
  return m_lists.RealSourceNum;
}

}  // namespace ORVE_MCUC
