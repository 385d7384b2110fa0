/*
 * The device's network settings.
 */
#ifndef PLATFORM_NETINFO_H
#define PLATFORM_NETINFO_H

#ifdef __cplusplus
extern "C" {
#endif

/* Addressing of the network interface: 0 static. 0: set. */
int netinfo_set_eth_mode(int mode);

/* Applies dotted IPv4 address, mask and gateway at once. 0: applied. */
int netinfo_set_curr_ip(const char* ip, const char* mask, const char* gateway);

#ifdef __cplusplus
}
#endif

#endif
