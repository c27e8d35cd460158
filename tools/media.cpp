#include "media.h"

extern "C" {
#include <libavutil/display.h>
}
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace {

/** Standard input in a file of its own where it is none, as many formats are read to and fro. */
FilePtr copy_of_standard_input() {
    struct stat status {};
    if (fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode)) return nullptr;
    if (isatty(STDIN_FILENO)) throw std::runtime_error("it is a terminal; expected a media file");
    FilePtr copy(std::tmpfile());
    char bytes[1 << 16];
    size_t size = 0;
    while (copy && (size = std::fread(bytes, 1, sizeof bytes, stdin)) > 0)
        if (std::fwrite(bytes, 1, size, copy.get()) != size) copy.reset();
    if (std::ferror(stdin) || !copy || std::fflush(copy.get()) != 0)
        throw std::runtime_error(std::string("cannot copy it: ") + std::strerror(errno));
    return copy;
}

/** What FFmpeg opens for a path; `copy` is that of standard input, if there is one. */
std::string address(const std::string &path, std::FILE *copy) {
    // The prefix keeps a colon in the name from being read as a protocol.
    if (path != "-") return "file:" + path;
    return "file:/dev/fd/" + std::to_string(copy ? fileno(copy) : STDIN_FILENO);
}

FormatPtr open(const std::string &url, const RawVideo *raw) {
    AVFormatContext *context = nullptr;
    AVDictionary *options = nullptr;
    if (raw) {
        av_dict_set(&options, "video_size", raw->size.c_str(), 0);
        av_dict_set(&options, "pixel_format", raw->format.c_str(), 0);
    }
    const int status = avformat_open_input(
        &context, url.c_str(), raw ? av_find_input_format("rawvideo") : nullptr, &options);
    av_dict_free(&options);
    if (status == AVERROR_INVALIDDATA || status == AVERROR_EOF)
        throw std::runtime_error("not a media file, or damaged");
    if (status < 0) throw std::runtime_error(av_error_text(status));
    return FormatPtr(context);
}

}  // namespace

std::string av_error_text(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    return av_make_error_string(text, sizeof text, code);
}

Media::Media(const std::string &path, const RawVideo *raw)
    : copy_(path == "-" ? copy_of_standard_input() : nullptr),
      context_(open(address(path, copy_.get()), raw)) {
    // This one takes any text for a picture if only the file's name ends in .txt.
    if (std::strcmp(context_->iformat->name, "tty") == 0)
        throw std::runtime_error("not a media file");
    const int status = avformat_find_stream_info(context_.get(), nullptr);
    if (status < 0) throw std::runtime_error(av_error_text(status));
    streams_.assign(context_->streams, context_->streams + context_->nb_streams);
    if (streams_.empty()) throw std::runtime_error("no tracks");
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
        const int status = av_read_frame(context_.get(), &packet);
        if (status < 0) {
            if (status != AVERROR_EOF) add_fault("cannot read on: " + av_error_text(status));
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
                                 " more faults)");
}

double Media::seconds(const AVStream &stream, int64_t timestamp, int64_t index) const {
    if (timestamp == AV_NOPTS_VALUE) {
        const AVRational rate =
            av_guess_frame_rate(context_.get(), const_cast<AVStream *>(&stream), nullptr);
        return rate.num > 0 ? static_cast<double>(index) / av_q2d(rate) : 0;
    }
    const double start = context_->start_time == AV_NOPTS_VALUE
                             ? 0
                             : static_cast<double>(context_->start_time) / AV_TIME_BASE;
    return static_cast<double>(timestamp) * av_q2d(stream.time_base) - start;
}

AVRational Media::pixel_aspect(const AVStream &stream, const AVFrame &frame) const {
    const AVRational aspect = av_guess_sample_aspect_ratio(
        context_.get(), const_cast<AVStream *>(&stream), const_cast<AVFrame *>(&frame));
    return aspect.num > 0 && aspect.den > 0 ? aspect : AVRational{1, 1};
}

int Media::quarter_turns(const AVStream &stream) {
    const void *matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (!matrix) return 0;
    const double anticlockwise = av_display_rotation_get(static_cast<const int32_t *>(matrix));
    return std::isnan(anticlockwise) ? 0 : static_cast<int>(std::lround(-anticlockwise / 90)) & 3;
}

bool Media::has_codec_tags() const { return std::strcmp(context_->iformat->name, "mpegts") != 0; }

double Media::progress() const {
    const int64_t size = context_->pb ? avio_size(context_->pb) : 0;
    return size > 0 ? static_cast<double>(avio_tell(context_->pb)) / static_cast<double>(size) : 0;
}
