// The sending card's parameters, put together from aspects that have an owner and a lock each, and the
// operations that several rooms share. One object for the process, reached from every thread. A function that
// needs one aspect takes that aspect.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calc/advmapping.h"
#include "maps/cardgeometry.h"
#include "portlinks.h"
#include "proto/store/devicestate.h"
#include "proto/store/lastpushed.h"
#include "proto/store/paratables.h"
#include "proto/store/registerimages.h"
#include "proto/store/resetstate.h"
#include "proto/store/screenstate.h"
#include "singleton.h"

namespace ORVE_MCUC {

// Where the X and Y offsets of ports 0..15 lie in the feature image.
extern const std::array<uint16_t, 16> PortParaXOffsetIndex;
extern const std::array<uint16_t, 16> PortParaYOffsetIndex;

class Data_Global : public RegisterImages,
                    public ConfigurationLock,
                    public ScreenState,
                    public MeasuredCards,
                    public PortLinks,
                    public LastPushed,
                    public ResetState,
                    public DeviceState {
 public:
  static Data_Global* getInstance();
  static void deleteInstance();

  // Boot: environment's serial number to flash, basic hardware page to memory and back.
  void SNTransfer();
  void ReadHardwareInfo();

  // The serial number as 8 bytes; left as it is unless the environment holds one that is not blank.
  void GetEnvSNPara(uint8_t* out);
  // The model ID as 2 bytes, low byte first; left as it is when the environment holds none.
  void GetEnvModelIDPara(uint8_t* out);
  // Factory network settings: environment and interface. 0, -1 when the store does not open, else the result
  // of setting the address.
  int SetIPVersion();

  // count hexadecimal characters to count / 2 bytes, high nibble first; any other character counts as 0.
  static int ASCII2Hex(const char* src, int count, uint8_t* dst);

  // Port records of the feature image: ports 0..15, the Y offset for ports 0..9 only; other ports change
  // nothing.
  void PortWidthUpdate(unsigned int port, uint16_t value);
  void PortHeightUpdate(unsigned int port, uint16_t value);
  void PortOffsetXUpdate(unsigned int port, uint16_t value);
  void PortOffsetYUpdate(unsigned int port, uint16_t value);
  void PortMorSUpdate(unsigned int port, uint8_t value);

  // Type 0: basic hardware page, type 1: feature parameters; as many bytes as dest holds. 0, the driver's
  // result, or -1 for another type.
  static int RestoreDataFromFlash(int type, std::span<uint8_t> dest);
  // Stored size as {width, height}. 0 when it was read and neither is 0, else -1.
  int Read_ScreenSize_FromFlash(uint32_t* out);
  int Read_CardSize_FromFlash(uint32_t* out);
  // Stores the output size and counts the change.
  void ChangeOutScreenPara(uint32_t width, uint32_t height);
  // Programs bytes of any number into flash, page by page. The last page's result.
  int CopyConstDataToFlash(uint32_t address, std::span<const uint8_t> data);
  // Writes a diagnostic line to a file when the output size in the feature image is zero.
  void DebugForScreenZero(int point, unsigned int addr, const char* description);
  // Measures the receiving cards and puts their size into bytes 6..9 of the screen parameters: 128 x 128 when
  // it cannot be measured.
  void refreshCardSizeInScreenPara();

  // Type 0: basic hardware page; type 1: feature, global, position and number parameters. Each failure is
  // logged and the rest saved all the same. What was decided is saved as it is: the image may show again what
  // the FPGA holds.
  void SaveParaToFlash(int type, const FeatureDraft& decided = {});
  // Rebuilds the FPGA from flash; without a loaded FPGA only the images are filled.
  void RestoreFPGA();
  // Output role of all sixteen ports: 0 master, else backup; to image, FPGA and flash.
  void SendMasterOrBackup(uint8_t backup);

  // Measures the receiving cards behind the first linked port, behind port 0 with an optical module. 0; -1
  // when the size is not a measured one.
  int GetRecvCardSize_EnvNew();
  // Smart configuration. table: fields 1, 2, 3 are rows, columns, cards per port; chars: byte 0 connection
  // mode, byte 2 master/backup. The size step applies the output size at once; the mapping writes windows,
  // card counts, port tables and roles to the FPGA and saves them. decided: what else the submission has put
  // into the feature image.
  void CalculateParaGetSreenSize(const ByteImage<1024>& table, FeatureDraft decided = {});
  void CalculateParaOfSenderInMosaicMode(const ByteImage<1024>& table, const ByteImage<32>& chars);
  // Advanced configuration: the same two steps. The mapping returns 0, or kErrPortPara with nothing changed.
  // Both steps of one configuration are given the same value; without it, the working arrays of the ports.
  // The FPGA is not told the size: the mapping saves what the size step returns.
  FeatureDraft AdvCalcParaGetSreenSize(const AdvancedScreen& screen);
  int AdvCalcParaOfSenderInMosaicMode(const AdvancedScreen& screen, const FeatureDraft& size = {});
  void AdvCalcParaGetSreenSize(const PortValues& rows, const PortValues& columns, const PortValues& xs,
                               const PortValues& ys);
  int AdvCalcParaOfSenderInMosaicMode();
  // Calculates one port's table of positions and writes it to the FPGA. Port 0..9; x and y change nothing:
  // positions are relative to the port's block. card: as the calculation has measured it, else as it is now.
  // Returns 0.
  int AdvCordinateCalc(int, uint8_t mode, unsigned int port, uint16_t x, uint16_t y, uint16_t rows,
                       uint16_t columns, std::optional<CardSize> card = {});
  // The monitor's parts that live here: pushes the ports' master/backup bytes when they have changed, and the
  // fiber link, which a check has read a moment ago.
  void SendRedundStatustoLSD();
  void SendFiberLinkInfo(std::span<const uint8_t> checked = {});

  // Pushes to peers: sent and forgotten.
  void SendDatetoLSD(uint32_t address, std::span<const uint8_t> data);
  void SendRebootMsgtoLSD(std::span<const uint8_t> data);
  void SendRVCardWHtoLSD();
  // Reads up to 8 registers anew into the feature image and pushes what it then holds to LSD. When they
  // cannot be read, what a check has read of them a moment ago takes their place; without, they are pushed as
  // they were. Nothing beyond 0x1EF, where the image mirrors no registers.
  void pushMirror(uint32_t fpgaRegister, std::size_t length, const char* logLine,
                  std::span<const uint8_t> checked = {});
  void SendMStoLSD1_4();
  void SendMStoLSD5_8();
  void SendMStoLSD9_16();
  void SendFlag_parlendload();
  void SendC8toVsp();

  static constexpr std::array<uint8_t, 4> IsNewFlashTag{0x39, 0xF6, 0xA5, 0x5A};  // marks a formatted flash

 private:
  Data_Global();
  ~Data_Global();
  friend class Singleton<Data_Global>;
  void BootRecover();
};

// The basic hardware page.
class Data_Preset {
 public:
  static Data_Preset* getInstance();
  static void deleteInstance();

  // Marks the page as saved and saves its first 16 bytes.
  void SaveBasicParaToFlash();

  std::array<uint8_t, 392> BasicHardWareReg{};
  RelaxedValue<bool> loadFailed;  // the page could not be read: it is not saved

 private:
  Data_Preset() = default;
};

}  // namespace ORVE_MCUC
