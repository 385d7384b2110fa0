/*
 * The device's status store.
 */
#ifndef PLATFORM_STINFO_H
#define PLATFORM_STINFO_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Passes a register's bytes to the status store: operation (1: set), register address, byte count, bytes. 0:
 * done. */
int st_info_op(int operation, uint32_t address, int length, unsigned char* value);

#ifdef __cplusplus
}
#endif

#endif
