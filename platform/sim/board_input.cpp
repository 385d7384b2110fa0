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

// What every input presents before it is given another EDID: VESA E-EDID 1.3, a digital sink of sRGB colours
// whose one timing is 1920 x 1080 at 60 Hz (CEA-861), a range as wide as the descriptor can say, and no
// extension. The checksum is added.
constexpr std::array<unsigned char, kBlock> kBase{
    0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00,              // header
    0x3E, 0x45, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x1E,  // maker ORE, product, week, year
    0x01, 0x03, 0x80, 0x00, 0x00, 0x78, 0x0E,                    // version, digital, gamma 2.2
    0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54,  // sRGB primaries
    0x00, 0x00, 0x00,                                            // no established timings
    0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,              // no standard timings
    0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,              //
    0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58, 0x2C,
    0x45, 0x00,                          // detailed timing
    0x00, 0x00, 0x00, 0x00, 0x00, 0x1E,  //
    0x00, 0x00, 0x00, 0xFC, 0x00, 'L',  'E',  'D',  ' ',  'w',
    'a',  'l',                          // name
    'l',  '\n', ' ',  ' ',  ' ',  ' ',  //
    0x00, 0x00, 0x00, 0xFD, 0x00, 0x01, 0xFF, 0x01, 0xFF, 0x42,
    0x00, 0x0A,                          // range: 1..255 Hz and kHz, 660 MHz
    0x20, 0x20, 0x20, 0x20, 0x20, 0x20,  //
    0x00, 0x00, 0x00, 0x10};             // unused descriptor
constexpr std::size_t kNameAt = 0x48 + 5;
constexpr std::size_t kNameSize = 13;
// Where the parameters of a base EDID hold its name, zero-terminated.
constexpr std::size_t kNameParameterAt = 12;

Edid withChecksum(Edid edid) {
  const unsigned sum = std::accumulate(edid.begin(), edid.begin() + kBlock - 1, 0U);
  edid[kBlock - 1] = static_cast<unsigned char>(0x100 - (sum & 0xFF));
  return edid;
}

Edid baseEdid() {
  Edid edid{};
  std::copy(kBase.begin(), kBase.end(), edid.begin());
  return withChecksum(edid);
}

Edid loadedEdid(int id) {
  Edid edid = baseEdid();
  std::ifstream file(edidFile(id), std::ios::binary);
  Edid stored{};
  if (file.read(reinterpret_cast<char*>(stored.data()), stored.size())) edid = stored;
  return edid;
}

// The base EDID under the name of the parameters, which ends with a line feed and blanks as a name does
// there.
int buildBase(const modify_edid_para* para, unsigned char* edid) {
  Edid built = baseEdid();
  const unsigned char* name = para->bytes + kNameParameterAt;
  const auto length = static_cast<std::size_t>(std::find(name, name + kNameSize, 0) - name);
  if (length > 0) {
    const auto at = built.begin() + kNameAt;
    std::fill(std::copy_n(name, length, at), at + kNameSize, ' ');
    if (length < kNameSize) built[kNameAt + length] = '\n';
  }
  built = withChecksum(built);
  std::copy(built.begin(), built.end(), edid);
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
    file.close();
    failed = !file.good();
  }
  if (journalsWrites()) {
    const auto length = static_cast<unsigned>(std::max(size, 0));
    JournalLine("edid-load").word(std::to_string(id)).number(length).bytes({edid, length}).failedIf(failed);
  }
  return failed ? -1 : 0;
}
