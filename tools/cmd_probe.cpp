#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <optional>

#include "commands.h"
#include "names.h"
#include "plot.h"
#include "report.h"
#include "track.h"

namespace {

template <class... Values>
void print(const char *format, Values... values) {
    char line[256];
    std::snprintf(line, sizeof line, format, values...);
    std::cout << line;
}

bool by_container(const AccessUnit &unit) { return unit.container_key; }
bool by_detector(const AccessUnit &unit) { return unit.detector_key; }
bool agreed(const AccessUnit &unit) { return unit.container_key == unit.detector_key; }

void print_track(const Track &track) {
    print("track %d: %s  %s  0x%08" PRIx32 "  media type %d %s", track.index, track.kind.c_str(),
          fourcc_text(track.fourcc).c_str(), track.fourcc, track.media_type,
          media_type_name(track.media_type).c_str());
    if (track.width > 0) print("  %dx%d", track.width, track.height);
    if (track.sequence)
        print("  %s profile, level %s, coded for %dx%d", track.sequence->profile_name().c_str(),
              track.sequence->level_name().c_str(), track.sequence->width, track.sequence->height);
    std::cout << '\n';
}

/** Key frames are green; units on which container and detector disagree are red. */
void print_unit(int64_t index, const AccessUnit &unit, const Colours &colours) {
    const auto key = [](bool is_key) { return is_key ? "key" : "-"; };
    const char *colour = !agreed(unit) ? colours.red : by_container(unit) ? colours.green : "";
    print("%s%6" PRId64 " %12.6f %10d  %-9s  %s%s\n", colour, index, unit.seconds, unit.bytes,
          key(unit.container_key), key(unit.detector_key), *colour ? colours.plain : "");
}

void print_units(const Track &track) {
    const Colours colours(STDOUT_FILENO);
    print("\n%strack %d\n  unit         time      bytes  container  detector%s\n", colours.bold,
          track.index, colours.plain);
    int64_t index = 0;
    for (const AccessUnit &unit : track.units) print_unit(index++, unit, colours);
    print("%zu units, %" PRId64 " container key frames, %" PRId64 " detector key frames, %" PRId64
          " agreements\n",
          track.units.size(), track.count(by_container), track.count(by_detector),
          track.count(agreed));
}

void print_text(const std::vector<Track> &tracks) {
    for (const Track &track : tracks) print_track(track);
    for (const Track &track : tracks)
        if (track.kind == "video") print_units(track);
}

Json sequence_json(const SequenceInfo &info) {
    return {{"profile", info.profile_name()},
            {"profile_idc", info.profile},
            {"level", info.level_name()},
            {"level_idc", info.level},
            {"width", info.width},
            {"height", info.height}};
}

Json units_json(const Track &track) {
    Json units = Json::array();
    for (const AccessUnit &unit : track.units)
        units.push_back({{"index", units.size()},
                         {"time", unit.seconds},
                         {"bytes", unit.bytes},
                         {"container_key", unit.container_key},
                         {"detector_key", unit.detector_key}});
    return units;
}

Json track_json(const Track &track) {
    Json json = {{"index", track.index},
                 {"kind", track.kind},
                 {"fourcc", fourcc_text(track.fourcc)},
                 {"fourcc_number", track.fourcc},
                 {"media_type", track.media_type},
                 {"media_type_name", media_type_name(track.media_type)}};
    if (track.width > 0) json.update({{"width", track.width}, {"height", track.height}});
    if (track.sequence) json["sequence"] = sequence_json(*track.sequence);
    if (track.kind != "video") return json;
    json["units"] = units_json(track);
    json["summary"] = {{"units", track.units.size()},
                       {"container_keys", track.count(by_container)},
                       {"detector_keys", track.count(by_detector)},
                       {"agreements", track.count(agreed)}};
    return json;
}

Json tracks_json(const std::string &input, const std::vector<Track> &tracks) {
    Json json = {{"file", input}, {"tracks", Json::array()}};
    for (const Track &track : tracks) json["tracks"].push_back(track_json(track));
    return json;
}

/** The first track that has units. */
const Track &track_to_plot(const std::vector<Track> &tracks) {
    for (const Track &track : tracks)
        if (!track.units.empty()) return track;
    throw std::runtime_error("no video units to plot");
}

/** The file name without directories, shortened to fit above a plot. */
std::string short_name(const std::string &input) {
    constexpr size_t LONGEST = 60;
    if (input == "-") return "standard input";
    const std::string name = std::filesystem::path(input).filename();
    return name.size() > LONGEST ? name.substr(0, LONGEST - 3) + "..." : name;
}

}  // namespace

void probe(const CommonOptions &common, const std::string &plot) {
    Media media(common.input);
    std::optional<OutputFile> file;
    if (!plot.empty()) file.emplace(plot, std::initializer_list<FileId>{media.id()});
    const std::vector<Track> tracks = read_tracks(media, common.quiet);
    if (common.json) print_json(tracks_json(common.input, tracks));
    if (common.has_text(plot)) print_text(tracks);
    media.throw_faults();
    if (file) plot_units(*file, short_name(common.input), track_to_plot(tracks));
}
