#ifndef COMMAND_USAGETEXT_H
#define COMMAND_USAGETEXT_H

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

/** The messages of the command line parser itself, in the user's language. */
namespace UsageText {

/** The headings and labels of `--help`. */
std::shared_ptr<CLI::Formatter> formatter();

/** The error in the command line, and how to get help; for `CLI::App::failure_message`. An unknown
    error keeps the parser's own English message. */
std::string failure(const CLI::App* app, const CLI::Error& error);

} // namespace UsageText

#endif
