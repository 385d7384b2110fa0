/*
 * Stand-ins for the device's libraries, so that the device's build can be linked where they are not: every
 * call fails and does nothing. No daemon is meant to run on them.
 */
#include <unistd.h>

#include "platform/apipc.h"
#include "platform/colour.h"
#include "platform/driver.h"
#include "platform/input.h"
#include "platform/netinfo.h"
#include "platform/stinfo.h"
#include "platform/sysconf.h"

/* Message service. */

unsigned char apcard_bit_self(void) {
  return 0;
}
int apipc_init(uint32_t task, int flags) {
  (void)task, (void)flags;
  return -1;
}
int apipc_loop_wait(void* context, apipc_recv_cb callback) {
  (void)context, (void)callback;
  sleep(1); /* who calls again at once must not spin */
  return -1;
}
int apipc_enq(apipc_msg_t* message) {
  (void)message;
  return -1;
}
int apipc_deq(apipc_msg_t* message) {
  (void)message;
  return -1;
}
void* apipc_que_attach(apipc_msg_t message) {
  (void)message;
  return NULL;
}
void apipc_que_detach(apipc_msg_t message, void* contents) {
  (void)message, (void)contents;
}
int apipc_send(uint32_t task, const void* buffer, unsigned int length) {
  (void)task, (void)buffer, (void)length;
  return -1;
}
int apipc_connect_chk_task_by_taskid(uint32_t task) {
  (void)task;
  return -1;
}

/* Environment store. */

int sysconf_openenv(void) {
  return -1;
}
const char* sysconf_getenv(const char* key) {
  (void)key;
  return NULL;
}
int sysconf_setenv(const char* key, const char* value) {
  (void)key, (void)value;
  return -1;
}
void sysconf_closeenv(void) {}
int sysconf_get_date_ymd(char* text) {
  (void)text;
  return -1;
}
int sysconf_get_date_hms(char* text) {
  (void)text;
  return -1;
}

/* Driver library. */

int FPGA_UDP_Init(void) {
  return -1;
}
int WriteFPGABlock(unsigned char bus, uint32_t address, uint32_t length, const unsigned char* data) {
  (void)bus, (void)address, (void)length, (void)data;
  return -1;
}
int ReadFPGABlock(unsigned char bus, uint32_t address, uint16_t length, unsigned char* buffer) {
  (void)bus, (void)address, (void)length, (void)buffer;
  return -1;
}
int Flash_Init(void) {
  return -1;
}
int ReadDataFromFlashx(uint32_t address, uint32_t length, unsigned char* buffer) {
  (void)address, (void)length, (void)buffer;
  return -1;
}
int WriteDataToFlashx(uint32_t address, uint32_t length, const unsigned char* data) {
  (void)address, (void)length, (void)data;
  return -1;
}
int WriteDataToFactoryTmpFlashx(uint32_t address, uint32_t length, const unsigned char* data) {
  (void)address, (void)length, (void)data;
  return -1;
}
int ReadFPGAformRecvCard(unsigned char bus, recvcard_mesg* request, unsigned char port,
                         unsigned char* buffer) {
  (void)bus, (void)request, (void)port, (void)buffer;
  return -1;
}
int WriteFPGAToRecvCard(unsigned char bus, recvcard_mesg* request, unsigned char port, unsigned char* data) {
  (void)bus, (void)request, (void)port, (void)data;
  return -1;
}

/* Colour library: curves and coefficients are left as they are. */

void HDR10GammaCalculation(uint16_t peak_light, uint16_t ambient_light, uint8_t brightness, int bit_depth,
                           uint8_t low_gray_effect, uint8_t high_gray_effect, unsigned char* table) {
  (void)peak_light, (void)ambient_light, (void)brightness, (void)bit_depth;
  (void)low_gray_effect, (void)high_gray_effect, (void)table;
}
void HLGGammaCalculation(uint8_t hlg_class, unsigned char* table) {
  (void)hlg_class, (void)table;
}
void PictureQualityCalculation(int mode, uint16_t saturation, uint16_t contrast, uint16_t hue, int arg,
                               unsigned char* coefficients) {
  (void)mode, (void)saturation, (void)contrast, (void)hue, (void)arg, (void)coefficients;
}

/* Video inputs. */

void ll_initial(void) {}
int ll_find_input_next(int id) {
  (void)id;
  return 0;
}
int ll_find_input_filter_all(int id) {
  (void)id;
  return 0;
}
int ll_get_input_info(int id, int* type, ll_input_cap* cap) {
  (void)id, (void)type, (void)cap;
  return -1;
}
int ll_input_get_edid(int id, unsigned char* edid, int size) {
  (void)id, (void)edid, (void)size;
  return -1;
}
int ll_input_set_edid(int id, const unsigned char* edid, int size) {
  (void)id, (void)edid, (void)size;
  return -1;
}
static int build_edid(const modify_edid_para* para, unsigned char* edid) {
  (void)para, (void)edid;
  return -1;
}
const modify_edid_api ModifyEDID_API = {.build = build_edid};

/* Network and status store. */

int netinfo_set_eth_mode(int mode) {
  (void)mode;
  return -1;
}
int netinfo_set_curr_ip(const char* ip, const char* mask, const char* gateway) {
  (void)ip, (void)mask, (void)gateway;
  return -1;
}
int st_info_op(int operation, uint32_t address, int length, unsigned char* value) {
  (void)operation, (void)address, (void)length, (void)value;
  return -1;
}
