// Video inputs as board.conf lists them, each with an EDID file.
#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <numeric>

#include "board_conf.h"
#include "board_journal.h"
#include "platform/input.h"
#include "simboard.h"

namespace simboard {
namespace {

using Edid = std::array<unsigned char, INPUT_EDID_SIZE>;
constexpr std::size_t kBlock = 128;

const Input* find(int id) {
  const auto& inputs = conf().inputs;
  const auto found =
      std::find_if(inputs.begin(), inputs.end(), [id](const Input& input) { return input.id == id; });
  return found == inputs.end() ? nullptr : &*found;
}

std::string edidFile(int id) {
  return path("hw/edid-" + std::to_string(id) + ".bin");
}

// A VESA E-EDID 1.3 base block whose first detailed timing is 1920 x 1080 at 60 Hz (CEA-861), and no
// extension.
Edid baseEdid() {
  constexpr std::array<unsigned char, 8> kHeader{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
  constexpr std::array<unsigned char, 18> kTiming{0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58,
                                                  0x2C, 0x45, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1E};
  Edid edid{};
  std::copy(kHeader.begin(), kHeader.end(), edid.begin());
  edid[0x12] = 1;
  edid[0x13] = 3;
  std::copy(kTiming.begin(), kTiming.end(), edid.begin() + 0x36);
  const unsigned sum = std::accumulate(edid.begin(), edid.begin() + kBlock - 1, 0U);
  edid[kBlock - 1] = static_cast<unsigned char>(0x100 - (sum & 0xFF));
  return edid;
}

Edid loadedEdid(int id) {
  Edid edid = baseEdid();
  std::ifstream file(edidFile(id), std::ios::binary);
  Edid stored{};
  if (file.read(reinterpret_cast<char*>(stored.data()), stored.size())) edid = stored;
  return edid;
}

int buildBase(const modify_edid_para*, unsigned char* edid) {
  const Edid base = baseEdid();
  std::copy(base.begin(), base.end(), edid);
  return 0;
}

}  // namespace
}  // namespace simboard

using namespace simboard;

const modify_edid_api ModifyEDID_API = {{}, &buildBase};

void ll_initial(void) {}

int ll_find_input_next(int id) {
  const auto& inputs = conf().inputs;
  if (id == 0) return inputs.empty() ? 0 : inputs.front().id;
  const Input* at = find(id);
  return at == nullptr || at == &inputs.back() ? 0 : (at + 1)->id;
}

int ll_find_input_filter_all(int id) {
  return find(id) != nullptr ? 1 : 0;
}

int ll_get_input_info(int id, int* type, ll_input_cap* cap) {
  const Input* input = find(id);
  if (input == nullptr) return -1;
  *type = input->type;
  std::memset(cap, 0, sizeof *cap);
  return 0;
}

int ll_input_get_edid(int id, unsigned char* edid, int size) {
  if (takeFault(Fault::EdidRead) || find(id) == nullptr || size < 0 || size > INPUT_EDID_SIZE) return -1;
  const Edid loaded = loadedEdid(id);
  std::copy_n(loaded.begin(), size, edid);
  return 0;
}

int ll_input_set_edid(int id, const unsigned char* edid, int size) {
  bool failed = takeFault(Fault::EdidLoad) || find(id) == nullptr || size != INPUT_EDID_SIZE;
  if (!failed) {
    std::ofstream file(edidFile(id), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(edid), size);
    failed = !file.good();
  }
  if (journalsWrites()) {
    const auto length = static_cast<std::size_t>(std::max(size, 0));
    JournalLine("edid-load").word(std::to_string(id)).number(length).bytes({edid, length}).failedIf(failed);
  }
  return failed ? -1 : 0;
}
