/*
 * The device's colour library: curves and coefficients that the FPGA's pixel stages are loaded with.
 */
#ifndef PLATFORM_COLOUR_H
#define PLATFORM_COLOUR_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
  COLOUR_TABLE_SIZE = 8192,     /* bytes of a curve: 4096 entries, 16 bits each, little-endian */
  COLOUR_COEFFICIENTS_SIZE = 32 /* bytes of a conversion's coefficients */
};

/* HDR10 curve (SMPTE ST 2084): peak and ambient light in cd/m2, brightness of the cards in percent (above 100
 * counts as 100), bit depth (10), effects on low and high grey levels 0..255. Fills COLOUR_TABLE_SIZE bytes.
 */
void HDR10GammaCalculation(uint16_t peak_light, uint16_t ambient_light, uint8_t brightness, int bit_depth,
                           uint8_t low_gray_effect, uint8_t high_gray_effect, unsigned char* table);

/* HLG curve (ARIB STD-B67, ITU-R BT.2100) of a class; class 0 is the plain curve. Fills COLOUR_TABLE_SIZE
 * bytes. */
void HLGGammaCalculation(uint8_t hlg_class, unsigned char* table);

/* Coefficients of a colour-space conversion (ITU-R BT.709). mode: 0 full RGB to full RGB, 1 full RGB to
 * limited YUV, 2 full RGB to full YUV, 3 full YUV to full RGB, 4 limited YUV to full RGB, 5 limited YUV to
 * limited YUV. Saturation and contrast are neutral at 50; hue turns the colours by degrees. On the simulated
 * board: sixteen signed 16-bit numbers, little-endian, 4096 being 1: the matrix by rows, what is subtracted
 * before it, what is added after it, and a zero. Fills COLOUR_COEFFICIENTS_SIZE bytes, with zeros for an
 * unknown mode. */
void PictureQualityCalculation(int mode, uint16_t saturation, uint16_t contrast, uint16_t hue, int arg,
                               unsigned char* coefficients);

#ifdef __cplusplus
}
#endif

#endif
