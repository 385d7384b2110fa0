/*
 * The device's video inputs: input boards, their capabilities and the EDID that each presents to its source.
 */
#ifndef PLATFORM_INPUT_H
#define PLATFORM_INPUT_H

#ifdef __cplusplus
extern "C" {
#endif

enum { INPUT_EDID_SIZE = 256 };

/* Capabilities of an input board, passed through. */
typedef struct ll_input_cap {
  unsigned char bytes[32];
} ll_input_cap;

/* Finds the input boards. */
void ll_initial(void);

/* The id after a given one (0: the first), in the order of the boards; 0 after the last. */
int ll_find_input_next(int id);

/* Non-zero: the id is one of an input. */
int ll_find_input_filter_all(int id);

/* Type (0 DVI, 1 dual-link DVI, 2 HDMI 1.4, 3 HDMI 2.0, 4..6 DP 1.1/1.2/1.4, 7..9 SDI 3G/6G/12G, 10 VGA) and
 * capabilities of an input. 0: filled. */
int ll_get_input_info(int id, int* type, ll_input_cap* cap);

/* The EDID of an input, at most size bytes of 256. 0: done. */
int ll_input_get_edid(int id, unsigned char* edid, int size);
int ll_input_set_edid(int id, const unsigned char* edid, int size);

/* Parameters of a base EDID: an 84-byte record, little-endian. */
typedef struct modify_edid_para {
  unsigned char bytes[84];
} modify_edid_para;

/* The EDID service: a table of operations, of which the ninth builds a base EDID of 256 bytes. 0: built. */
typedef struct modify_edid_api {
  void (*reserved[8])(void);
  int (*build)(const modify_edid_para* para, unsigned char* edid);
} modify_edid_api;
extern const modify_edid_api ModifyEDID_API;

#ifdef __cplusplus
}
#endif

#endif
