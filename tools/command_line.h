#ifndef TAVU_TOOLS_COMMAND_LINE_H
#define TAVU_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/** The command with this name; null if there is none. */
const CLI::App *find_command(const CLI::App &app, const std::string &name);

/**
 * The arguments in a form that CLI11 reads without guessing: the command, its options as
 * --name=value, "--", and the files, in reverse order. Throws CLI::ParseError for options before
 * the command, unknown options, missing values, and too many files.
 */
std::vector<std::string> normalized(const CLI::App &app, int argc, char **argv);

/** Throws CLI::ParseError if `option` is given with any argument that is not in `allowed`. */
void require_alone(const CLI::App &command, const CLI::Option &option,
                   const std::vector<std::string> &allowed = {});

#endif
