#ifndef TAVU_TOOLS_COMMAND_LINE_H
#define TAVU_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/** The command of a name; null if there is none. */
const CLI::App *find_command(const CLI::App &app, const std::string &name);

/**
 * The arguments in the one form that CLI11 reads without guessing: the command, its options as
 * --name=value, "--", and the files, in reverse. Throws CLI::ParseError for options in front of the
 * command, options that it lacks or that lack their value, and more files than it takes.
 */
std::vector<std::string> normalized(const CLI::App &app, int argc, char **argv);

/** Throws CLI::ParseError if `option` is given with any other argument, except those `allowed`. */
void require_alone(const CLI::App &command, const CLI::Option &option,
                   const std::vector<std::string> &allowed = {});

#endif
