// The daemon's only way to the sending card's hardware: FPGA bus, parameter flash, system clock, shell. Every
// operation may be called from any thread.
#pragma once

#include <atomic>
#include <cstdint>

#include "calc/localmoment.h"
#include "mcucdatablock.h"
#include "mcucmutex.h"
#include "portlinks.h"

namespace ORVE_MCUC {

class DriverUtil {
 public:
  static DriverUtil* getInstance();
  // Forgets what was learnt of the hardware. Only while nobody uses it.
  static void deleteInstance();

  // Opens the parameter flash. False when it is not there; the daemon goes on without it.
  bool initialize();
  void unInitialize() {}

  // Makes reads of FPGA and cards by other threads wait until it goes; this thread's do not.
  [[nodiscard]] CMutexGuardT<CMutexThreadRecursive> holdReads() { return CMutexGuardT(m_mutex_read); }

  // FPGA bus: byte address, byte count. 0, or -1 after three failed tries or while the FPGA is down. A read
  // counts its length modulo 65536.
  int WriteFPGABusBlock(unsigned int address, const unsigned char* data, unsigned int length);
  int ReadFPGABusBlock(unsigned int address, unsigned char* buffer, unsigned int length);
  int WriteFPGABusOneWord(unsigned int address, unsigned char value);
  int ReadFPGABusOneWord(unsigned int address, unsigned char* value);

  // The same with two arguments that nothing uses. Blocks go in pieces of 1024 bytes and stop at the first
  // piece that fails; a length of 0 is a failure. A byte that cannot be read is 0.
  int FPGAC5_WriteOneWord(unsigned char, unsigned char, unsigned int address, unsigned char value);
  int FPGAC5_ReadOneWord(unsigned char, unsigned char, unsigned int address);
  int FPGAC5_WriteDataBlock(unsigned char, unsigned char, unsigned int address, unsigned int length,
                            const unsigned char* data);
  int FPGAC5_ReadDataBlock(unsigned char, unsigned char, unsigned int address, unsigned int length,
                           unsigned char* buffer);

  // Parameter flash: byte address, byte count. 0, or the driver's result of the third failed try. There is
  // one flash: the device byte of the longer forms selects nothing.
  int ReadBytesFromFlash(unsigned int address, unsigned int length, unsigned char* buffer);
  int ReadBytesFromFlash(unsigned char device, unsigned int address, unsigned int length,
                         unsigned char* buffer);
  int WriteDataToFlash(unsigned int address, unsigned int length, const unsigned char* data);
  int WriteDataToFlash(unsigned char device, unsigned int address, unsigned int length,
                       const unsigned char* data);
  int PageProgram(unsigned char device, unsigned int address, unsigned short length,
                  const unsigned char* data);
  int WriteDataToFactoryTmpFlash(unsigned int address, unsigned int length, const unsigned char* data);

  // Registers of a card behind an output port, by the card's type: 1 receiving card, 2 multi-function card, 3
  // distribution card, 4 3D launcher. A read is 0 with Num bytes in ParaPtr, kNoLink for a port that has no
  // link, else the driver's result; all cards at once (BoardAddr 0xFFFF) read as zeros and are not asked. The
  // shorter form reads the first card. A write may address all ports (0xFF) and all cards and needs no link;
  // the driver's result. Card calls are made once.
  static constexpr int kNoLink = -2;
  int ReadCardPara(unsigned int RegStartAddr, unsigned short PortAddr, unsigned short BoardAddr,
                   unsigned short Num, unsigned char* ParaPtr, unsigned char DevType);
  int ReadCardPara(unsigned int RegStartAddr, unsigned short PortAddr, unsigned short Num,
                   unsigned char* ParaPtr, unsigned char DevType);
  // Where the links are told; without, no port has one.
  static void useLinks(const PortLinks* links);
  int SendCardPara(unsigned int RegStartAddr, unsigned char PortAddr, unsigned short BoardAddr,
                   unsigned short Num, const unsigned char* ParaPtr, unsigned char DevType);

  // Files of receiving-card configurations. An index below 32 is the number of a file in their directory,
  // with any other one name is the full path of a file. Only regular files are touched, and no links are
  // followed.
  static constexpr char kCabCfgDirectory[] = "/usr/orve/etc/lsd/cabCfg/";
  static constexpr char kCabCfgIndex[] = "/usr/orve/etc/lsd/cabCfg/AllCabCfgFileName";
  static constexpr int kByName = 255;
  // Stores bytes at an offset, durably. 0, or 1 with the chunk lost.
  int WriteRvFileToFalsh(const char* name, int index, unsigned int offset, const unsigned char* data,
                         unsigned short length);
  // 0, whether there was such a file or not; -1 when it cannot be examined.
  int RemoveRvFile(const char* name, int index);
  // The numbers first..end - 1 of the directory. 0.
  int RemoveOtherRvFile(int first, int end);
  // Plays a file to the receiving cards, which takes at least 15 ms an item. mayGoOn is asked before each
  // write and every 100 ms of a pause; no playback outlasts ten minutes. 0, also without such a file; -1 when
  // something was not sent.
  int LoadRvCfgToRecvCard(unsigned int index, bool (*mayGoOn)() = nullptr);

  // A field of the local time: 0 year - 2000, 1 month 1..12, 2 day, 3 hour, 4 minute, 5 second, 6
  // weekday 1..7 (Sunday 1); 0 for any other field.
  unsigned char ReadTime(unsigned char field);
  // All of them, of one moment.
  LocalMoment ReadMoment();
  // Set the named fields of the local time and keep the others. The weekday follows from the date, so that
  // setting it changes nothing.
  void WriteTime(unsigned char hour, unsigned char minute, unsigned char second);
  void WriteDate(unsigned char year, unsigned char month, unsigned char day);
  void WriteWeekday(unsigned char weekday);

  // Runs a device command and waits for it: its exit status, -1 when it could not be run.
  int runCommand(const char* command);
  // Sets up the FPGA's network channel. Negative: failed.
  int initUdp();

  // State of the FPGA as its driver tells it: 0 down, -1 error, 255 no such source, anything else up.
  int ReadFpgaStatus(const char* command);
  // First line of a command's output, without its line end, into at least 64 bytes. 0 done (result unchanged
  // when there was no output at all), -1 no argument, not started or an empty line.
  int run_command_return_string(const char* command, char* result);
  // Removes the last line feed and the last carriage return.
  static void chomp(char* text);
  // Programs the clock chip: channel, frequency in Hz. 0, or 0xFF when the chip is not reached.
  int SetClock(unsigned char channel, unsigned int frequency);

 private:
  // After a transfer that failed for good: asks the FPGA's state and remembers a down FPGA.
  void learnFpgaStatus();

  // Set while the FPGA is known to be down: then no transfer reaches the driver.
  std::atomic<bool> FpgaDownFlg{false};
  CMutexThreadRecursive m_mutex_read;
};

}  // namespace ORVE_MCUC
