/*
 * The device's driver library: the sending FPGA's register bus, the parameter flash, and the cards behind the
 * FPGA's output ports. Every call may come from any thread.
 */
#ifndef PLATFORM_DRIVER_H
#define PLATFORM_DRIVER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The bus of the sending FPGA, the only one that the daemon uses. */
enum { PLATFORM_FPGA_BUS = 1 };

/* Sets up the FPGA's network channel. Negative: failed. */
int FPGA_UDP_Init(void);

/* FPGA bus: byte address, byte count. 0: done. A read counts its length in 16 bits. */
int WriteFPGABlock(unsigned char bus, uint32_t address, uint32_t length, const unsigned char* data);
int ReadFPGABlock(unsigned char bus, uint32_t address, uint16_t length, unsigned char* buffer);

/* Parameter flash: byte address, byte count. 0: done. A write erases as needed and is in the flash when it
 * returns; "sync" makes it durable. */
int Flash_Init(void);
int ReadDataFromFlashx(uint32_t address, uint32_t length, unsigned char* buffer);
int WriteDataToFlashx(uint32_t address, uint32_t length, const unsigned char* data);

/* Writes into the temporary copy of the factory image, which takes the place of the parameter flash at the
 * next reboot; addresses are those of the flash. 0: done. */
int WriteDataToFactoryTmpFlashx(uint32_t address, uint32_t length, const unsigned char* data);

/* One request to a card behind an output port; 18 bytes, packed, little-endian. */
#pragma pack(push, 1)
typedef struct recvcard_mesg {
  uint8_t DeviceType;    /* 1 receiving card, 2 multi-function card, 3 distribution card, 4 3D launcher */
  uint8_t ProtAddr;      /* output port 0..15; 0xFF: all ports */
  uint16_t BoardAddr;    /* card behind the port, counted from 0; 0xFFFF: all cards */
  uint8_t code;          /* 0 read, 1 write */
  uint8_t PacketType;    /* 0 */
  uint32_t RegisterAddr; /* register on the card */
  uint16_t length;       /* number of data bytes */
  uint32_t data;         /* not filled: the data are an argument of their own */
  uint16_t checksum; /* sum of the bytes of the fields up to length, and of a write's data, modulo 65536 */
} recvcard_mesg;
#pragma pack(pop)

/* Reads the record's length bytes from a card. 0: they are in the buffer; anything else: no answer. */
int ReadFPGAformRecvCard(unsigned char bus, recvcard_mesg* request, unsigned char port,
                         unsigned char* buffer);

/* Hands the record's length data bytes to the port. 0: sent. */
int WriteFPGAToRecvCard(unsigned char bus, recvcard_mesg* request, unsigned char port, unsigned char* data);

#ifdef __cplusplus
}
#endif

#endif
