#ifndef TAVU_TOOLS_PLOT_H
#define TAVU_TOOLS_PLOT_H

#include <string>

#include "output_file.h"
#include "track.h"

/**
 * Draws the bytes of a track's access units over time, key frames marked, as a PNG file titled with
 * a name. Has gnuplot do it; throws WholeError without.
 */
void plot_units(OutputFile &file, const std::string &name, const Track &track);

#endif
