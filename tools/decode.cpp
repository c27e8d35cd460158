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

/** One run of a decoder over a file. */
class Run {
  public:
    Run(Media &media, const AVStream &stream, Pick pick,
        const std::function<void(const AVFrame &)> &use)
        : media_(media), pick_(pick), use_(use), decoder_(open_decoder(stream, pick)) {}

    /** Null drains the decoder. */
    void decode(const AVPacket *packet) {
        const int status = avcodec_send_packet(decoder_.get(), packet);
        if (status < 0) fault(av_error_text(status));
        receive();
        packets_++;
    }

  private:
    void receive() {
        int status = 0;
        while ((status = avcodec_receive_frame(decoder_.get(), frame_.get())) >= 0) {
            if (frame_->decode_error_flags != 0) fault("errors in a frame");
            if (pick_ == Pick::ALL || frame_->key_frame) use_(*frame_);
        }
        if (status != AVERROR(EAGAIN) && status != AVERROR_EOF) fault(av_error_text(status));
    }

    void fault(const std::string &reason) {
        media_.add_fault("decoding packet " + std::to_string(packets_) + ": " + reason);
    }

    Media &media_;
    Pick pick_;
    const std::function<void(const AVFrame &)> &use_;
    CodecPtr decoder_;
    FramePtr frame_{av_frame_alloc()};
    int64_t packets_ = 0;
};

}  // namespace

void decode_video(Media &media, const AVStream &stream, Pick pick,
                  const std::function<void(const AVFrame &)> &use) {
    Run run(media, stream, pick, use);
    for (PacketPtr packet(av_packet_alloc()); media.read(*packet); av_packet_unref(packet.get()))
        if (packet->stream_index == stream.index) run.decode(packet.get());
    run.decode(nullptr);
}
