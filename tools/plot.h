#ifndef TAVU_TOOLS_PLOT_H
#define TAVU_TOOLS_PLOT_H

#include <string>

#include "output_file.h"
#include "track.h"

/**
 * Draws a PNG file titled `name`: the bytes of a track's access units over time, key frames marked.
 * Runs gnuplot; throws WholeError if that fails.
 */
void plot_units(OutputFile &file, const std::string &name, const Track &track);

#endif
