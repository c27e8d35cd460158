#include "plot.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "commands.h"
#include "handles.h"
#include "names.h"

namespace {

constexpr const char *STYLE = R"(set terminal pngcairo size 1200,500 font 'sans,11'
set encoding utf8
set border 3 lc '#888888'
set tics nomirror out tc '#333333'
set grid ytics lt 1 lc '#dddddd'
set style fill solid noborder
set xlabel 'seconds' tc '#333333'
set yrange [0:*]
set offsets 0, 0, graph 0.05, 0
set key outside bottom center horizontal reverse Left
)";

/** A string literal for gnuplot. */
std::string quoted(const std::string &text) {
    std::string out = "'";
    for (const char c : text) {
        if (c == '\'') out += c;
        out += c;
    }
    return out + "'";
}

/** Times of the first and the last unit, and the usual interval between units. */
struct Timeline {
    double first = 0, last = 0, step = 0.04;
};

Timeline timeline_of(const Track &track) {
    std::vector<double> times, steps;
    for (const AccessUnit &unit : track.units) times.push_back(unit.seconds);
    std::sort(times.begin(), times.end());
    Timeline timeline{times.front(), times.back()};
    for (size_t i = 1; i < times.size(); i++) steps.push_back(times[i] - times[i - 1]);
    if (steps.empty()) return timeline;
    // The median, because streams may pause.
    const auto middle = steps.begin() + static_cast<ptrdiff_t>(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    // Keeps bars wide enough to be visible.
    timeline.step = std::max({*middle, (timeline.last - timeline.first) / 900, 0.001});
    return timeline;
}

struct Unit {
    const char *name;
    double bytes;
};

Unit unit_of(const Track &track) {
    int most = 0;
    for (const AccessUnit &unit : track.units) most = std::max(most, unit.bytes);
    if (most >= 2e6) return {"megabytes", 1e6};
    return most >= 2e3 ? Unit{"kilobytes", 1e3} : Unit{"bytes", 1};
}

/** Rows of time, bytes, key frame, and whether the detector disagrees. */
std::string data_of(const Track &track, double scale) {
    std::string rows = "$units << END\n";
    for (const AccessUnit &unit : track.units)
        rows += std::to_string(unit.seconds) + " " + std::to_string(unit.bytes / scale) + " " +
                std::to_string(unit.container_key) + " " +
                std::to_string(unit.container_key != unit.detector_key) + "\n";
    return rows + "END\n";
}

std::string title_of(const std::string &name, const Track &track) {
    const auto keys = track.count([](const AccessUnit &unit) { return unit.container_key; });
    return name + "   track " + std::to_string(track.index) + ", " + fourcc_text(track.fourcc) +
           ", " + std::to_string(track.width) + "x" + std::to_string(track.height) + "   " +
           std::to_string(track.units.size()) + " units, " + std::to_string(keys) + " key frames";
}

std::string script_of(const std::string &name, const Track &track) {
    const Timeline timeline = timeline_of(track);
    const Unit unit = unit_of(track);
    const auto text = [](double value) { return std::to_string(value); };
    std::string script = STYLE + data_of(track, unit.bytes);
    script += "set title " + quoted(title_of(printable(name), track)) + " noenhanced\n";
    script += "set ylabel '" + std::string(unit.name) + " of an access unit' tc '#333333'\n";
    script += "set boxwidth " + text(timeline.step * 0.8) + " absolute\n";
    script += "plot [" + text(timeline.first - timeline.step) + ":" +
              text(timeline.last + timeline.step) + "] ";
    script +=
        "$units using 1:($3 > 0 ? NaN : $2) with boxes lc '#7799bb' title 'other frames', "
        "$units using 1:($3 > 0 ? $2 : NaN) with boxes lc '#cc3311' title 'key frames', "
        "$units using 1:($3 > 0 ? $2 : NaN) with points pt 7 ps 0.7 lc '#cc3311' notitle";
    if (track.count([](const AccessUnit &u) { return u.container_key != u.detector_key; }) > 0)
        script +=
            ", $units using 1:($4 > 0 ? $2 : NaN) with points pt 4 ps 1.2 lw 2 lc '#222222' "
            "title 'detector disagrees'";
    return script + "\n";
}

/** Runs gnuplot on a script file; returns its exit status. */
int run_gnuplot(std::FILE *script, std::FILE *picture) {
    const char *const arguments[] = {"gnuplot", "--default-settings", "-", nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(script), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(picture), STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr,
                                   const_cast<char *const *>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw WholeError(std::string("cannot start gnuplot, which draws plots: ") +
                         std::strerror(error));
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    return status;
}

}  // namespace

void plot_units(OutputFile &file, const std::string &name, const Track &track) {
    const FilePtr script(std::tmpfile());
    const std::string text = script_of(name, track);
    if (!script || std::fwrite(text.data(), 1, text.size(), script.get()) != text.size() ||
        std::fflush(script.get()) != 0 || std::fseek(script.get(), 0, SEEK_SET) != 0)
        file.fail(std::string("cannot write a temporary file: ") + std::strerror(errno));
    if (run_gnuplot(script.get(), file.get()) != 0) file.fail("gnuplot failed");
    file.commit();
}
