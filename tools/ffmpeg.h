/** Functions whose interfaces differ between FFmpeg 5.1 and 7.1. */
#ifndef TAVU_TOOLS_FFMPEG_H
#define TAVU_TOOLS_FFMPEG_H

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

inline bool is_key_frame(const AVFrame &frame) {
#ifdef AV_FRAME_FLAG_KEY
    return (frame.flags & AV_FRAME_FLAG_KEY) != 0;
#else
    return frame.key_frame != 0;
#endif
}

/** The display matrix of the stream's frames, or null. */
inline const int32_t *display_matrix(const AVStream &stream) {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 30, 100)
    const AVCodecParameters &parameters = *stream.codecpar;
    const AVPacketSideData *data = av_packet_side_data_get(
        parameters.coded_side_data, parameters.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    const void *matrix = data ? data->data : nullptr;
#else
    const void *matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
#endif
    return static_cast<const int32_t *>(matrix);
}

#endif
