#include "decode.h"

#include <stdexcept>

#include "ffmpeg.h"
#include "limits.h"

namespace {

/** Refuses large pictures before their memory is allocated. */
int get_buffer(AVCodecContext *decoder, AVFrame *frame, int flags) {
    auto &reason = *static_cast<std::string *>(decoder->opaque);
    reason = too_large(frame->width, frame->height);
    return reason.empty() ? avcodec_default_get_buffer2(decoder, frame, flags) : AVERROR(EINVAL);
}

CodecPtr open_decoder(const AVStream &stream, Pick pick, std::string &too_large) {
    const AVCodec *codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec)
        throw std::runtime_error(std::string("no decoder for ") +
                                 avcodec_get_name(stream.codecpar->codec_id));
    CodecPtr decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        throw std::bad_alloc();
    decoder->pkt_timebase = stream.time_base;
    decoder->opaque = &too_large;
    decoder->get_buffer2 = get_buffer;
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
      decoder_(open_decoder(stream, pick, too_large_)),
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

/** Receives a selected frame from the decoder; false if it has none. */
bool FrameReader::receive() {
    int status = 0;
    while ((status = avcodec_receive_frame(decoder_.get(), frame_.get())) >= 0) {
        // Some decoders do not call get_buffer().
        too_large_ = too_large(frame_->width, frame_->height);
        if (!too_large_.empty()) {
            fault(too_large_);
            continue;
        }
        if (frame_->decode_error_flags != 0) fault("errors in a frame");
        if (pick_ == Pick::ALL || is_key_frame(*frame_)) return true;
    }
    if (status != AVERROR(EAGAIN) && status != AVERROR_EOF) fault(status);
    return false;
}

/** Sends the stream's next packet to the decoder; at the end of the file null, which drains it. */
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
    if (status < 0) fault(status);
}

void FrameReader::fault(int status) {
    fault(too_large_.empty() ? av_error_text(status) : too_large_);
}

void FrameReader::fault(const std::string &reason) {
    media_.add_fault("decoding packet " + std::to_string(packet_index_) + ": " + reason);
}
