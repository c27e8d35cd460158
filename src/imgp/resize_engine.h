// Bilinear resize in the vector form that suits the columns.
#ifndef TAVU_IMGP_RESIZE_ENGINE_H
#define TAVU_IMGP_RESIZE_ENGINE_H

#include "simd/vec.h"

#if TAVU_VEC

#include "imgp/resize_sink.h"

namespace tavu {
inline namespace TAVU_LEVEL_NAMESPACE {

// False, and nothing is done, if columns cannot be made of taps or rows do not follow each other.
bool resize_vec(const Sink &sink, const Columns &columns, const Rows &rows);

}  // namespace TAVU_LEVEL_NAMESPACE
}  // namespace tavu

#endif

#endif
