/*
 * The device's environment store: persistent text settings by key, kept outside the daemon.
 */
#ifndef PLATFORM_SYSCONF_H
#define PLATFORM_SYSCONF_H

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the store for this thread. 0: open. sysconf_closeenv() is called afterwards in either case. */
int sysconf_openenv(void);

/* The value of a key, readable until the store is closed; null when the key is absent. */
const char* sysconf_getenv(const char* key);

/* Stores a value. 0: stored. */
int sysconf_setenv(const char* key, const char* value);

void sysconf_closeenv(void);

/* The board's local date as "year-month-day" into a zeroed buffer of 50 bytes. 0: done. */
int sysconf_get_date_ymd(char* text);

/* The board's local time as "hour:minute:second" into a zeroed buffer of 50 bytes. 0: done. */
int sysconf_get_date_hms(char* text);

#ifdef __cplusplus
}
#endif

#endif
