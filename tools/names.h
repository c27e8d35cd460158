#ifndef TAVU_TOOLS_NAMES_H
#define TAVU_TOOLS_NAMES_H

#include <cstdint>
#include <string>

/** Name of a TAVU_MT_ constant without the prefix, such as "VID_H264". */
std::string media_type_name(int32_t media_type);

/** The text for a terminal: bytes of control characters and invalid UTF-8 become \xNN. */
std::string printable(const std::string &text);

/** The four characters of a FourCC; bytes that are not printable become \xNN. */
std::string fourcc_text(uint32_t fourcc);

#endif
