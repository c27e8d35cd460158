#include "decode.h"

#include <stdexcept>

namespace {

CodecPtr open_decoder(const AVStream &stream, Pick pick) {
    const AVCodec *codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec)
        throw std::runtime_error(std::string("no decoder for ") +
                                 avcodec_get_name(stream.codecpar->codec_id));
    CodecPtr decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        throw std::bad_alloc();
    decoder->pkt_timebase = stream.time_base;
    if (pick == Pick::KEY_FRAMES) decoder->skip_frame = AVDISCARD_NONKEY;
    const int status = avcodec_open2(decoder.get(), codec, nullptr);
    if (status < 0) throw std::runtime_error("cannot start decoding: " + av_error_text(status));
    return decoder;
}

}  // namespace

FrameReader::FrameReader(Media &media, const AVStream &stream, Pick pick)
    : media_(media),
      stream_(stream),
      pick_(pick),
      decoder_(open_decoder(stream, pick)),
      frame_(av_frame_alloc()),
      packet_(av_packet_alloc()) {
    if (!frame_ || !packet_) throw std::bad_alloc();
}

const AVFrame *FrameReader::next() {
    while (!receive()) {
        if (draining_) return nullptr;
        feed();
    }
    index_++;
    return frame_.get();
}

/** Takes a wanted frame from the decoder; false when it has none. */
bool FrameReader::receive() {
    int status = 0;
    while ((status = avcodec_receive_frame(decoder_.get(), frame_.get())) >= 0) {
        if (frame_->decode_error_flags != 0) fault("errors in a frame");
        if (pick_ == Pick::ALL || frame_->key_frame) return true;
    }
    if (status != AVERROR(EAGAIN) && status != AVERROR_EOF) fault(av_error_text(status));
    return false;
}

/** Gives the decoder the stream's next packet, at the end of the file null, which drains it. */
void FrameReader::feed() {
    bool found = false;
    while (!found && media_.read(*packet_)) {
        found = packet_->stream_index == stream_.index;
        if (!found) av_packet_unref(packet_.get());
    }
    draining_ = !found;
    packet_index_++;
    const int status = avcodec_send_packet(decoder_.get(), found ? packet_.get() : nullptr);
    av_packet_unref(packet_.get());
    if (status < 0) fault(av_error_text(status));
}

void FrameReader::fault(const std::string &reason) {
    media_.add_fault("decoding packet " + std::to_string(packet_index_) + ": " + reason);
}
