// A peer of the look-up of media types: the type of a code, TAVU_MT_NONE for a foreign one.
#ifndef TAVU_BENCH_FOURCC_SWITCH_H
#define TAVU_BENCH_FOURCC_SWITCH_H

#include <cstdint>

int32_t fcc2mt_by_switch(uint32_t code);

#endif
