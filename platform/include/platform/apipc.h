/*
 * The device's message service: peers are named by 32-bit task identifiers (the board's card bit in bits
 * 24..31, a service code in bits 0..23) and exchange messages of a 28-byte head and label and one frame.
 *
 * Calling order: apipc_init first and once; apipc_loop_wait on one thread only; apipc_enq only inside its
 * callback; apipc_deq, apipc_que_wait, apipc_que_attach and apipc_que_detach on one receiving thread;
 * apipc_send, apipc_connect_chk_task_by_taskid and apipc_connection_number from any thread.
 */
#ifndef PLATFORM_APIPC_H
#define PLATFORM_APIPC_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Records of the service that the daemon passes through and never looks into. */
struct __apsess_st;
struct __apmsg_st;

/* A queued message; owned by the service until it is detached. */
typedef struct __apmsg_st* apipc_msg_t;

/* Called once per arriving message on the waiting thread. 0 or more: the message was queued. */
typedef int (*apipc_recv_cb)(struct __apsess_st* peer, void* unused, apipc_msg_t message, int length);

/* The board's card bit, 0..255. */
unsigned char apcard_bit_self(void);

/* Announces this process under its own task identifier. Returns 0, or negative when the service is not there.
 */
int apipc_init(uint32_t task, int flags);

/* Blocks and calls back once per arriving message; may return at any time and is then called again. */
int apipc_loop_wait(void* context, apipc_recv_cb callback);

/* Queues a message handle for the receiving thread. Negative: not queued, the message is lost. */
int apipc_enq(apipc_msg_t* message);

/* Takes the oldest queued handle. Negative: the queue is empty. Never blocks. */
int apipc_deq(apipc_msg_t* message);

/* Sleeps until a message is queued or the time is over; may return early. Our own beside apipc_deq, which
 * does not block. */
void apipc_que_wait(int timeout_ms);
/* Says that apipc_enq has queued a message, for a back end whose apipc_enq does not wake apipc_que_wait. Any
 * thread. */
void apipc_que_told(void);

/* The contents of a message: head, label, and a frame of as many bytes as the label says (at most 65536).
 * Null: unreadable (the handle is still the caller's). */
void* apipc_que_attach(apipc_msg_t message);

/* Frees a message and its contents. Once per dequeued message. */
void apipc_que_detach(apipc_msg_t message, void* contents);

/* Sends head, label and frame (length: all of them) to a task. 0: sent. Does not keep the buffer. */
int apipc_send(uint32_t task, const void* buffer, unsigned int length);

/* -1: no live connection of that task; any other value: connected. */
int apipc_connect_chk_task_by_taskid(uint32_t task);

/* The number of that task's live connection: each connection gets one, and none is given twice while the
 * process runs, so that a task that left and came back is told from one that stayed. 0: no live connection.
 * Our own; on the device, whose service does not number connections, 1 while the task is connected. */
uint64_t apipc_connection_number(uint32_t task);

#ifdef __cplusplus
}
#endif

#endif
