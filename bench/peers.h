// The best packaged peer of a conversion, with the same signature; null if there is none.
#ifndef TAVU_BENCH_PEERS_H
#define TAVU_BENCH_PEERS_H

#include <string>

#include "tavu.h"

tavu_fn_csc_t csc_peer(const std::string &kernel);

#endif
