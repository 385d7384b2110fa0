// What the rest of the simulated board may ask of the message service, beside the calls in platform/apipc.h.
#ifndef PLATFORM_SIM_APIPC_SERVICE_H
#define PLATFORM_SIM_APIPC_SERVICE_H

namespace simboard {

/** Stops listening and closes the connections of all peers; what they sent before stays queued. Any thread;
 * does nothing while there is no service. After it apipc_init may be called again, once no thread is in the
 * service. */
void apipc_close_all_peers();

/** The board's time was moved: what is due by it is due now. */
void apipc_time_moved();

}  // namespace simboard

#endif
