#ifndef TAVU_TOOLS_MEDIA_H
#define TAVU_TOOLS_MEDIA_H

#include <string>
#include <vector>

#include "handles.h"
#include "input_file.h"

/** FFmpeg's text for an error code. */
std::string av_error_text(int code);

/** How to read a file of raw BT.601 planes. */
struct RawVideo {
    std::string size;    ///< such as "320x180"
    std::string format;  ///< FFmpeg's name of the pixel format
    bool limited;        ///< range of the samples
};

/** A media file opened for reading, "-" for standard input; throws if it cannot be opened. */
class Media {
  public:
    explicit Media(const std::string &path, const RawVideo *raw = nullptr);

    /** Identifies the file, which no output may replace. */
    FileId id() const { return file_.id(); }

    const std::vector<AVStream *> &streams() const { return streams_; }

    /** The stream to decode; throws if there is no video. */
    AVStream &best_video() const;

    /**
     * Reads the next packet of any stream known at opening; false at the end. Damage is recorded as
     * a fault, not thrown, so that callers can first show the results up to there.
     */
    bool read(AVPacket &packet);

    void add_fault(const std::string &reason);
    /** Throws if faults were recorded. */
    void throw_faults() const;

    /** Seconds from the start, rounded to microseconds; by `index` if there is no timestamp. */
    double seconds(const AVStream &stream, int64_t timestamp, int64_t index) const;

    /** Number of clockwise quarter turns with which to show the stream's frames. */
    static int quarter_turns(const AVStream &stream);
    AVRational pixel_aspect(const AVStream &stream, const AVFrame &frame) const;
    /** False for containers whose codec tags are neither FourCCs nor wave-format tags. */
    bool has_codec_tags() const;
    /** Fraction of the file read so far, 0..1; 0 if unknown. */
    double progress() const;

  private:
    InputFile file_;
    FormatPtr context_;
    std::vector<AVStream *> streams_;
    std::string first_fault_;
    int faults_ = 0;
};

#endif
