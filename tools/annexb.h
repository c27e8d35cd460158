/** NAL units of H.264 and HEVC access units. */
#ifndef TAVU_TOOLS_ANNEXB_H
#define TAVU_TOOLS_ANNEXB_H

#include <cstdint>
#include <functional>
#include <vector>

extern "C" {
#include <libavcodec/codec_par.h>
}

/** Zero bytes after every unit made here, because readers may look slightly past its end. */
constexpr int UNIT_SLACK = 8;

/** Size of the length field before each NAL unit; 0 if units already have start codes. */
int nal_length_size(const AVCodecParameters &parameters);

/**
 * The same unit with start codes instead of lengths, followed by UNIT_SLACK bytes. Stops at a
 * length that does not fit and sets `broken`.
 */
std::vector<uint8_t> with_start_codes(const uint8_t *data, size_t size, int length_size,
                                      bool &broken);

/** The first NAL unit whose first byte `wanted` accepts, without start code; empty if none. */
std::vector<uint8_t> find_nal(const uint8_t *data, size_t size,
                              const std::function<bool(uint8_t)> &wanted);

#endif
