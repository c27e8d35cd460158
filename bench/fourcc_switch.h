// A peer of the media type lookup: the type of a code, or TAVU_MT_NONE if it is unknown.
#ifndef TAVU_BENCH_FOURCC_SWITCH_H
#define TAVU_BENCH_FOURCC_SWITCH_H

#include <cstdint>

int32_t fcc2mt_by_switch(uint32_t code);

#endif
