// The log lines of the brightness control. The texts are exact: service tools search the logs of devices in
// the field for them.
#include <array>

#include "mcuctrace.h"
#include "proto/spaces/brightnessboard.h"

namespace ORVE_MCUC {
namespace {

using Note = BrightnessNote;

// A line: a piece, a value, a piece, a value, ...; pieces that are left over end it.
struct NoteWords {
  Note note;
  Level level;
  std::array<const char*, 6> pieces;
};

constexpr std::array kNotes{
    NoteWords{Note::BeginWrite,
              kInfo,
              {"============================ Begin Write Bright Info ============================"}},
    NoteWords{Note::FinishWrite,
              kInfo,
              {"============================ Finish Write Bright Info ==========================="}},
    NoteWords{Note::FileLength, kInfo, {" ConfigFileLength = "}},
    NoteWords{Note::WriteChunk, kInfo, {"WriteDate BriAdjustBufferAddr:"}},
    NoteWords{Note::LastChunk, kInfo, {" ConfigFileLength = "}},
    NoteWords{
        Note::ChunkBeyond,
        kError,
        {"=== SetBrightnessAdjustTable ===chunk beyond the brightness area, dropped: offset = ", " len = "}},
    NoteWords{Note::FileUnread,
              kError,
              {"=== BrightnessAdjust ===the brightness configuration could not be read."}},
    NoteWords{Note::ControlSwitch, kInfo, {"LastMixBriAdjustControl = "}},
    NoteWords{
        Note::Initialise, kInfo, {"====================== BrightnessAdjustInit ProgrammableAdjustEnable:"}},
    NoteWords{Note::FirstNode, kInfo, {"-------------- Find 1 Time Node ! --------------"}},
    NoteWords{Note::LastNode, kInfo, {"-------------- Find Last Time Node ! --------------"}},
    NoteWords{Note::FirstNodeAgain, kInfo, {"-------------Change last Node to First node ------------"}},
    NoteWords{Note::Armed, kInfo, {"InsertInterruptTimeToQueue SetTimeInt Hour:", " Min:"}},
    NoteWords{Note::TimeComing,
              kInfo,
              {"*********************** Brightness TIME INT Comming ***********************"}},
    NoteWords{Note::TimeGone, kInfo, {"**********************Brightness Times Gone Node:"}},
    NoteWords{
        Note::BlackEnds, kInfo, {"=============== SeiralComErrorProcess TimeOut Black=================="}},
    NoteWords{
        Note::HandBack, kInfo, {"=============== SeiralComErrorProcess TimeOut DISABLE=================="}},
    NoteWords{Note::TakeOver, kInfo, {"=============== SeiralComErrorProcess Adj=================="}},
    NoteWords{Note::TakeOverAtStart,
              kInfo,
              {"=============== SeiralComErrorProcess TimeOut Adjust =================="}},
    NoteWords{Note::SensorSecond,
              kInfo,
              {"......AutoBrightnessadjust ...SensorReadTimeCnt:", " SensorReadInterval:", " ......"}},
    NoteWords{Note::AutomaticPeriod, kInfo, {"AutoBrightnessadjust ..."}},
    NoteWords{Note::SensorNotAsked,
              kInfo,
              {"ReadCardPara: Pos = ", " PortAddr = ", " BoardAddr = ", " SensorAddr ="}},
    NoteWords{Note::SensorUnread, kError, {"=== Read Sensor card failed, return ===="}},
    NoteWords{Note::SensorInvalid, kError, {"=== Read Sensor card para error, return ===="}},
    NoteWords{Note::SensorRead, kInfo, {"=== Read Sensor card success, lux:"}},
    NoteWords{
        Note::AutomaticCount, kInfo, {"============= GetAverageLuxOneTime ProgrammableTimeTableArray[1]:"}},
    NoteWords{Note::AutomaticLux, kInfo, {"====== GetAverageLuxOneTime success! GetLuxVal:"}},
    NoteWords{Note::MixedBase, kInfo, {"======= GetMixAdjAverageLux SensorInfoBaseAddr:"}},
    NoteWords{Note::MixedLux, kInfo, {"==============Read  EnvironmentLux Success!GetLuxVal:"}},
    NoteWords{Note::MixedFailed, kInfo, {"==============Read  EnvironmentLux Fail! =========="}},
    NoteWords{
        Note::MixedOnce, kInfo, {"===================== MixBrightnessAdjust Once ====================="}},
    NoteWords{Note::LinearTable,
              kInfo,
              {"======= LuxToBrightnessLookupTable  MaxLux: ", " MinLux:", " GridLux:",
               " ProgrammableTimeTableArray[0x0B]:", " MaxSubSectionNum:"}},
    NoteWords{Note::MapItems, kInfo, {"==0===== MixAdjLuxToBriLookupTable  MapItemNum: "}},
    NoteWords{Note::MapEnds,
              kInfo,
              {"==1===== MixAdjLuxToBriLookupTable  LastNodeAmbLux = FirstNodeAmbLux: ", " EndNodeAmbLux:",
               " Lux:"}},
    NoteWords{Note::MapNext, kInfo, {"==2===== MixAdjLuxToBriLookupTable NextNodeAmbLux"}},
    NoteWords{Note::MapBetween, kInfo, {"==3===== MixAdjLuxToBriLookupTable PercentTemp"}},
    NoteWords{Note::MapPassed, kInfo, {"==4===== MixAdjLuxToBriLookupTable LastNodeAmbLux"}},
};

constexpr bool notesAreInOrder() {
  for (std::size_t i = 0; i < kNotes.size(); ++i) {
    if (static_cast<std::size_t>(kNotes[i].note) != i) return false;
  }
  return kNotes.back().note == Note::MapPassed;
}
static_assert(notesAreInOrder());

}  // namespace

void BrightnessBoard::note(BrightnessNote note, std::initializer_list<int64_t> values) {
  const NoteWords& words = kNotes[static_cast<std::size_t>(note)];
  if (!tracePasses(words.level)) return;
  TraceLine line(words.level, sourceName(__FILE__), __LINE__);
  const int64_t* value = values.begin();
  for (const char* piece : words.pieces) {
    if (piece == nullptr) break;
    line.record() << piece;
    if (value != values.end()) line.record() << *value++;
  }
}

}  // namespace ORVE_MCUC
