/** Owning pointers to objects of C libraries. */
#ifndef TAVU_TOOLS_HANDLES_H
#define TAVU_TOOLS_HANDLES_H

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}
#include <cairo.h>

#include <cstdio>
#include <memory>

#include "tavu.h"

/** Frees through a function that takes the pointer. */
template <auto Free>
struct FreeBy {
    template <class T>
    void operator()(T *object) const {
        Free(object);
    }
};

/** Frees through a function that takes the pointer's address and clears it. */
template <auto Free>
struct ClearBy {
    template <class T>
    void operator()(T *object) const {
        Free(&object);
    }
};

struct ReleaseImage {
    void operator()(tavu_imgb_t *image) const { image->release(image); }
};

using FilePtr = std::unique_ptr<std::FILE, FreeBy<std::fclose>>;
using FormatPtr = std::unique_ptr<AVFormatContext, ClearBy<avformat_close_input>>;
using CodecPtr = std::unique_ptr<AVCodecContext, ClearBy<avcodec_free_context>>;
using FramePtr = std::unique_ptr<AVFrame, ClearBy<av_frame_free>>;
using PacketPtr = std::unique_ptr<AVPacket, ClearBy<av_packet_free>>;
using ScalerPtr = std::unique_ptr<SwsContext, FreeBy<sws_freeContext>>;
using SurfacePtr = std::unique_ptr<cairo_surface_t, FreeBy<cairo_surface_destroy>>;
using CairoPtr = std::unique_ptr<cairo_t, FreeBy<cairo_destroy>>;
using ImagePtr = std::unique_ptr<tavu_imgb_t, ReleaseImage>;
using ResizerPtr = std::unique_ptr<tavu_irsz_t, FreeBy<tavu_irsz_delete>>;

#endif
