/** NAL units of H.264 and HEVC access units. */
#ifndef TAVU_TOOLS_ANNEXB_H
#define TAVU_TOOLS_ANNEXB_H

#include <cstdint>
#include <functional>
#include <vector>

extern "C" {
#include <libavcodec/codec_par.h>
}

/** Zero bytes behind every unit made here, for readers that look a little beyond its end. */
constexpr int UNIT_SLACK = 8;

/** Bytes of the length in front of each NAL unit; 0 where units have start codes already. */
int nal_length_size(const AVCodecParameters &parameters);

/**
 * The same unit with start codes instead of lengths, and UNIT_SLACK bytes behind it. Stops at a
 * length that does not fit and sets `broken`.
 */
std::vector<uint8_t> with_start_codes(const uint8_t *data, size_t size, int length_size,
                                      bool &broken);

/** Payload of the first NAL unit that `wanted` accepts by its first byte; empty if there is none.
 */
std::vector<uint8_t> find_nal(const uint8_t *data, size_t size,
                              const std::function<bool(uint8_t)> &wanted);

#endif
