/*
 * Our own small calls beside the device's libraries: paths, shell and clock. On a development machine they
 * keep the daemon inside its board directory; on the device they are the system's own.
 */
#ifndef PLATFORM_BOARD_H
#define PLATFORM_BOARD_H

#include <stddef.h>
#include <stdint.h>
#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Brings the board up. Called once, first thing in main, before any other platform call; argv is kept for a
 * reboot of the simulated board. Does not return when the board cannot be used: says why on standard error
 * and ends the process with status 2. */
void board_start(int argc, char** argv);

/* Where a device path lies on this machine, zero-terminated. 0: done; -1: it does not fit into size bytes. */
int board_path(const char* device_path, char* path, size_t size);

/* Runs a command line and waits for it; what it prints is lost. Its exit status, or -1 when it could not be
 * run. */
int board_shell(const char* command);

/* Runs a command line and reads the first line that it prints (at most size - 1 characters, line end
 * included). Returns the number of characters, 0 when there was no output, -1 when the command could not be
 * started. */
int board_shell_line(const char* command, char* line, size_t size);

/* Pauses the calling thread; nothing for counts below 1. */
void board_pause(int64_t microseconds);

/* Microseconds of the board's time since some moment before the daemon's start: never set, never going back.
 * Pauses pass in the same time. */
int64_t board_monotonic_us(void);

/* The board's clock: seconds and nanoseconds since 1970. */
void board_clock(struct timespec* now);

/* Sets the board's clock. 0: set. */
int board_clock_set(time_t seconds);

#ifdef __cplusplus
}
#endif

#endif
