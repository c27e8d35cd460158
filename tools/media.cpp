#include "media.h"

extern "C" {
#include <libavutil/display.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <stdexcept>

#include "container_end.h"
#include "ffmpeg.h"
#include "limits.h"

namespace {

/** True for formats whose files refer to other files. */
bool is_refused(const std::string &format) {
    constexpr const char *REFUSED[] = {"avisynth", "concat", "dash",        "hls",   "imf",
                                       "rtsp",     "sdp",    "vapoursynth", "vobsub"};
    return std::find(std::begin(REFUSED), std::end(REFUSED), format) != std::end(REFUSED);
}

[[noreturn]] void fail_to_open(int status, const InputFile &file) {
    if (file.others_wanted())
        throw std::runtime_error("it refers to other files; only the named file is opened");
    if (status == AVERROR_INVALIDDATA || status == AVERROR_EOF)
        throw std::runtime_error("not a media file, or damaged");
    throw std::runtime_error(av_error_text(status));
}

const AVInputFormat *find_format(AVFormatContext &context, const InputFile &file) {
    const AVInputFormat *format = nullptr;
    const int status =
        av_probe_input_buffer2(context.pb, &format, file.url().c_str(), nullptr, 0, 0);
    if (status < 0) fail_to_open(status, file);
    if (is_refused(format->name))
        throw std::runtime_error("it refers to other files (" + std::string(format->name) +
                                 "); only the named file is opened");
    // This format accepts any text as a picture if the file name ends in .txt.
    if (std::strcmp(format->name, "tty") == 0) throw std::runtime_error("not a media file");
    return format;
}

FormatPtr open(InputFile &file, const RawVideo *raw) {
    FormatPtr context(avformat_alloc_context());
    if (!context) throw std::bad_alloc();
    file.attach(*context);
    const AVInputFormat *format =
        raw ? av_find_input_format("rawvideo") : find_format(*context, file);
    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "none", 0);
    if (raw) {
        av_dict_set(&options, "video_size", raw->size.c_str(), 0);
        av_dict_set(&options, "pixel_format", raw->format.c_str(), 0);
    }
    AVFormatContext *opened = context.release();  // freed if this fails
    const int status = avformat_open_input(&opened, file.url().c_str(), format, &options);
    av_dict_free(&options);
    if (status < 0) fail_to_open(status, file);
    return FormatPtr(opened);
}

/** Decodes the first packets to find parameters that the container does not state. */
void find_parameters(AVFormatContext &context) {
    std::vector<AVDictionary *> options(context.nb_streams);
    for (AVDictionary *&option : options) av_dict_set_int(&option, "max_pixels", MOST_PIXELS, 0);
    const int status = avformat_find_stream_info(&context, options.data());
    for (AVDictionary *&option : options) av_dict_free(&option);
    if (status < 0) throw std::runtime_error(av_error_text(status));
}

}  // namespace

std::string av_error_text(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    return av_make_error_string(text, sizeof text, code);
}

Media::Media(const std::string &path, const RawVideo *raw)
    : file_(path), context_(open(file_, raw)) {
    find_parameters(*context_);
    streams_.assign(context_->streams, context_->streams + context_->nb_streams);
    if (streams_.empty()) throw std::runtime_error("no tracks");
    const int64_t end = stated_end(file_, context_->iformat->name);
    if (end > file_.size())
        add_fault("truncated: it has " + std::to_string(file_.size()) + " of " +
                  std::to_string(end) + " bytes");
    if (!raw) return;
    streams_[0]->codecpar->color_range = raw->limited ? AVCOL_RANGE_MPEG : AVCOL_RANGE_JPEG;
    streams_[0]->codecpar->color_space = AVCOL_SPC_SMPTE170M;
}

AVStream &Media::best_video() const {
    const int index = av_find_best_stream(context_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0) throw std::runtime_error("no video track");
    return *streams_[static_cast<size_t>(index)];
}

bool Media::read(AVPacket &packet) {
    do {
        av_packet_unref(&packet);
        const int status = av_read_frame(context_.get(), &packet);
        if (status < 0) {
            if (status != AVERROR_EOF) add_fault("cannot read further: " + av_error_text(status));
            return false;
        }
        if (packet.flags & AV_PKT_FLAG_CORRUPT) add_fault("truncated or damaged");
    } while (static_cast<size_t>(packet.stream_index) >= streams_.size());
    return true;
}

void Media::add_fault(const std::string &reason) {
    if (faults_++ == 0) first_fault_ = reason;
}

void Media::throw_faults() const {
    if (faults_ == 1) throw std::runtime_error(first_fault_);
    if (faults_ > 1)
        throw std::runtime_error(first_fault_ + " (and " + std::to_string(faults_ - 1) +
                                 " more errors)");
}

double Media::seconds(const AVStream &stream, int64_t timestamp, int64_t index) const {
    constexpr double UNIT = 1e6;  // microseconds, as printed
    double time = 0;
    if (timestamp == AV_NOPTS_VALUE) {
        const AVRational rate =
            av_guess_frame_rate(context_.get(), const_cast<AVStream *>(&stream), nullptr);
        if (rate.num > 0) time = static_cast<double>(index) / av_q2d(rate);
    } else {
        const double start = context_->start_time == AV_NOPTS_VALUE
                                 ? 0
                                 : static_cast<double>(context_->start_time) / AV_TIME_BASE;
        time = static_cast<double>(timestamp) * av_q2d(stream.time_base) - start;
    }
    return std::round(time * UNIT) / UNIT;
}

AVRational Media::pixel_aspect(const AVStream &stream, const AVFrame &frame) const {
    const AVRational aspect = av_guess_sample_aspect_ratio(
        context_.get(), const_cast<AVStream *>(&stream), const_cast<AVFrame *>(&frame));
    return aspect.num > 0 && aspect.den > 0 ? aspect : AVRational{1, 1};
}

int Media::quarter_turns(const AVStream &stream) {
    const int32_t *matrix = display_matrix(stream);
    if (!matrix) return 0;
    const double anticlockwise = av_display_rotation_get(matrix);
    return std::isnan(anticlockwise) ? 0 : static_cast<int>(std::lround(-anticlockwise / 90)) & 3;
}

bool Media::has_codec_tags() const { return std::strcmp(context_->iformat->name, "mpegts") != 0; }

double Media::progress() const {
    const int64_t size = context_->pb ? avio_size(context_->pb) : 0;
    return size > 0 ? static_cast<double>(avio_tell(context_->pb)) / static_cast<double>(size) : 0;
}
