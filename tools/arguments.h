#ifndef TAVU_TOOLS_ARGUMENTS_H
#define TAVU_TOOLS_ARGUMENTS_H

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "commands.h"

/** The command line; parsing it sets `run` to the command with its options. */
struct Arguments {
    CommonOptions common;
    std::string plot;
    SheetOptions sheet;
    CompareOptions compare;
    ConvertOptions convert;
    BenchOptions bench;
    std::function<void()> run;

    void define(CLI::App &app);

  private:
    void define_probe(CLI::App &command);
    void define_sheet(CLI::App &command);
    void define_digest(CLI::App &command);
    void define_compare(CLI::App &command);
    void define_convert(CLI::App &command);
    void define_raw(CLI::App &command);
    void define_bench(CLI::App &command);
    void add_common(CLI::App &command);
    void forbid_two_outputs(const std::string &output) const;
};

#endif
