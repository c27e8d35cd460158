#ifndef TAVU_TOOLS_DECODE_H
#define TAVU_TOOLS_DECODE_H

#include "media.h"

enum class Pick { ALL, KEY_FRAMES };

/**
 * Decodes a video stream frame by frame. Packets that cannot be decoded are recorded as faults of
 * the media file.
 */
class FrameReader {
  public:
    FrameReader(Media &media, const AVStream &stream, Pick pick = Pick::ALL);
    FrameReader(const FrameReader &) = delete;
    FrameReader &operator=(const FrameReader &) = delete;

    /**
     * The next frame, or the next key frame for Pick::KEY_FRAMES, valid until the next call; null
     * at the end.
     */
    const AVFrame *next();

    /** Number of frames returned so far, minus 1. */
    int64_t index() const { return index_; }
    /** Time of the last frame returned. */
    double seconds() const {
        return media_.seconds(stream_, frame_->best_effort_timestamp, index_);
    }

  private:
    bool receive();
    void feed();
    void fault(int status);
    void fault(const std::string &reason);

    Media &media_;
    const AVStream &stream_;
    Pick pick_;
    std::string too_large_;  ///< why the last picture was refused; set by the decoder
    CodecPtr decoder_;
    FramePtr frame_;
    PacketPtr packet_;
    int64_t packet_index_ = -1, index_ = -1;
    bool draining_ = false;
};

#endif
