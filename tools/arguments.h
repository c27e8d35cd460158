#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "commands.h"

/** The command line; its commands run while it is parsed. */
struct Arguments {
    std::string input;  ///< the file that a command is about
    bool json = false;
    SheetOptions sheet;
    CompareOptions compare;
    ConvertOptions convert;

    void define(CLI::App &app);

  private:
    void define_probe(CLI::App &command);
    void define_sheet(CLI::App &command);
    void define_digest(CLI::App &command);
    void define_compare(CLI::App &command);
    void define_convert(CLI::App &command);
    void define_raw(CLI::App &command);
};
