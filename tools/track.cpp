#include "track.h"

#include <memory>
#include <stdexcept>

#include "annexb.h"
#include "progress.h"

namespace {

/**
 * The codec's usual FourCC, or for audio its wave-format tag. Used for streams without a container,
 * which have no tag.
 */
uint32_t canonical_tag(const AVCodecParameters &parameters) {
    switch (parameters.codec_id) {
        case AV_CODEC_ID_HEVC: return MKTAG('H', '2', '6', '5');
        case AV_CODEC_ID_MPEG4: return MKTAG('M', 'P', '4', 'V');
        default: break;
    }
    const AVCodecTag *const tables[] = {parameters.codec_type == AVMEDIA_TYPE_AUDIO
                                            ? avformat_get_riff_audio_tags()
                                            : avformat_get_riff_video_tags(),
                                        nullptr};
    return av_codec_get_tag(tables, parameters.codec_id);
}

const char *kind_name(AVMediaType type) {
    const char *name = av_get_media_type_string(type);
    return name ? name : "unknown";
}

Track describe(const Media &media, const AVStream &stream) {
    const AVCodecParameters &parameters = *stream.codecpar;
    Track track{};
    track.index = stream.index;
    track.kind = kind_name(parameters.codec_type);
    track.fourcc = media.has_codec_tags() && parameters.codec_tag != 0 ? parameters.codec_tag
                                                                       : canonical_tag(parameters);
    track.media_type = tavu_fcc2mt(track.fourcc);
    track.width = parameters.width;
    track.height = parameters.height;
    return track;
}

/** Reads the access units of one video track. */
class UnitReader {
  public:
    UnitReader(Media &media, const AVStream &stream, Track &track)
        : media_(media),
          stream_(stream),
          track_(track),
          length_size_(nal_length_size(*stream.codecpar)) {
        if (stream.codecpar->codec_id == AV_CODEC_ID_H264)
            look_for_sequence(stream.codecpar->extradata, stream.codecpar->extradata_size);
    }

    void add(const AVPacket &packet) {
        const auto index = static_cast<int64_t>(track_.units.size());
        const int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
        track_.units.push_back({media_.seconds(stream_, time, index), packet.size,
                                (packet.flags & AV_PKT_FLAG_KEY) != 0, false});
        if (length_size_ == 0) {
            detect(packet.data, packet.size);  // packets have readable padding
        } else {
            detect_length_prefixed(packet);
        }
    }

  private:
    void detect_length_prefixed(const AVPacket &packet) {
        bool broken = false;
        const auto unit =
            with_start_codes(packet.data, static_cast<size_t>(packet.size), length_size_, broken);
        if (broken) fault("a NAL unit is longer than its access unit");
        detect(unit.data(), static_cast<int>(unit.size()) - UNIT_SLACK);
    }

    void detect(const uint8_t *data, int size) {
        if (size < 1) return;
        const bool first = track_.units.size() == 1;
        if (first && stream_.codecpar->codec_id == AV_CODEC_ID_H264) look_for_sequence(data, size);
        track_.units.back().detector_key = tavu_is_vkeyfrm(track_.media_type, data, size) != 0;
    }

    void look_for_sequence(const uint8_t *data, int size) {
        if (track_.sequence) return;
        try {
            track_.sequence = find_sequence(data, static_cast<size_t>(size));
        } catch (const std::exception &error) {
            media_.add_fault(error.what());
        }
    }

    void fault(const std::string &reason) {
        media_.add_fault("track " + std::to_string(track_.index) + ", unit " +
                         std::to_string(track_.units.size() - 1) + ": " + reason);
    }

    Media &media_;
    const AVStream &stream_;
    Track &track_;
    int length_size_;
};

}  // namespace

std::vector<Track> read_tracks(Media &media, bool quiet) {
    std::vector<Track> tracks;
    for (const AVStream *stream : media.streams()) tracks.push_back(describe(media, *stream));
    std::vector<std::unique_ptr<UnitReader>> readers;
    for (Track &track : tracks) {
        const AVStream &stream = *media.streams()[static_cast<size_t>(track.index)];
        const bool video = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        readers.push_back(video ? std::make_unique<UnitReader>(media, stream, track) : nullptr);
    }
    Progress progress("packets", quiet);
    const PacketPtr packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    while (media.read(*packet)) {
        if (UnitReader *reader = readers[static_cast<size_t>(packet->stream_index)].get())
            reader->add(*packet);
        progress.step(media.progress());
    }
    return tracks;
}
