#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <limits>

#include "cases.h"
#include "commands.h"
#include "progress.h"
#include "report.h"

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double seconds_of(const Form &form, int64_t times) {
    const auto start = Clock::now();
    form.run(times);
    return seconds_since(start);
}

/** Number of calls that takes long enough for the clock, even if nothing disturbs them. */
int64_t calls_of(const Form &form) {
    constexpr double LONG_ENOUGH = 0.0005;
    int64_t times = 1;
    while (std::min({seconds_of(form, times), seconds_of(form, times), seconds_of(form, times)}) <
           LONG_ENOUGH)
        times *= 2;
    return times;
}

/**
 * Nanoseconds per call of each form: the minimum of many rounds, because disturbances only make a
 * round longer. Forms take turns so that all see the same clock rate.
 */
std::vector<double> nanoseconds_of(const std::vector<Form> &forms) {
    constexpr int LEAST_ROUNDS = 9;
    constexpr double SECONDS = 0.1;
    std::vector<int64_t> times(forms.size());
    std::transform(forms.begin(), forms.end(), times.begin(), calls_of);
    std::vector<double> least(forms.size(), std::numeric_limits<double>::infinity());
    const auto start = Clock::now();
    for (int round = 0; round < LEAST_ROUNDS || seconds_since(start) < SECONDS; round++)
        for (size_t i = 0; i < forms.size(); i++)
            least[i] = std::min(
                least[i], 1e9 * seconds_of(forms[i], times[i]) / static_cast<double>(times[i]));
    return least;
}

struct Result {
    std::string name, shape;
    size_t bytes;
    std::vector<std::string> levels;
    std::vector<double> nanoseconds;

    double bytes_per_second(size_t form) const {
        return 1e9 * static_cast<double>(bytes) / nanoseconds[form];
    }
};

Result measure(const NamedCase &kernel) {
    const Case prepared = kernel.prepare();
    if (const Form *wrong = find_wrong_form(prepared))
        throw WholeError(kernel.name + ": " + wrong->level +
                         " and the model give different results");
    Result result{kernel.name, kernel.shape, prepared.bytes, {}, nanoseconds_of(prepared.forms)};
    for (const Form &form : prepared.forms) result.levels.push_back(form.level);
    return result;
}

void print_text(const Result &result) {
    for (size_t i = 0; i < result.levels.size(); i++) {
        const std::string head = i == 0 ? result.name : i == 1 ? "  " + result.shape : "";
        char line[160];
        std::snprintf(line, sizeof line, "%-34s %-8s %12.2f %9.2f %7.2f\n", head.c_str(),
                      result.levels[i].c_str(), result.nanoseconds[i],
                      result.bytes_per_second(i) / 1e9,
                      result.nanoseconds[0] / result.nanoseconds[i]);
        std::cout << line;
    }
    std::cout.flush();
}

void print_csv(const Result &result) {
    for (size_t i = 0; i < result.levels.size(); i++) {
        char numbers[96];
        std::snprintf(numbers, sizeof numbers, "%zu,%.3f,%.0f\n", result.bytes,
                      result.nanoseconds[i], result.bytes_per_second(i));
        std::cout << result.name << ',' << result.shape << ',' << result.levels[i] << ','
                  << numbers;
    }
}

Json result_json(const Result &result) {
    Json forms = Json::array();
    for (size_t i = 0; i < result.levels.size(); i++)
        forms.push_back({{"form", result.levels[i]},
                         {"ns", result.nanoseconds[i]},
                         {"bytes_per_second", result.bytes_per_second(i)}});
    return {{"kernel", result.name},
            {"shape", result.shape},
            {"bytes", result.bytes},
            {"forms", forms}};
}

std::vector<NamedCase> chosen(const std::string &pattern) {
    std::vector<NamedCase> cases = kernel_cases();
    const auto other = [&](const NamedCase &kernel) {
        return kernel.name.find(pattern) == std::string::npos;
    };
    cases.erase(std::remove_if(cases.begin(), cases.end(), other), cases.end());
    if (cases.empty()) throw UsageError(pattern + ": no kernel name contains this (see --list)");
    return cases;
}

void print_head(bool csv) {
    std::cout
        << (csv ? "kernel,shape,form,bytes,ns,bytes_per_second\n"
                : "kernel                             form               ns      GB/s   speed\n");
}

}  // namespace

void list_kernels() {
    for (const NamedCase &kernel : kernel_cases()) std::cout << kernel.name << '\n';
}

void bench(const CommonOptions &common, const BenchOptions &options) {
    const std::vector<NamedCase> cases = chosen(options.pattern);
    Json kernels = Json::array();
    const bool table = common.has_text() && !options.csv;
    if (table || options.csv) print_head(options.csv);
    {
        Progress progress("kernels", common.quiet || (table && isatty(STDOUT_FILENO)));
        double done = 0;
        for (const NamedCase &kernel : cases) {
            const Result result = measure(kernel);
            if (table) print_text(result);
            if (options.csv) print_csv(result);
            if (common.json) kernels.push_back(result_json(result));
            progress.step(++done / static_cast<double>(cases.size()));
        }
    }
    if (common.json) print_json({{"kernels", kernels}});
}
