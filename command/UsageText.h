#ifndef COMMAND_USAGETEXT_H
#define COMMAND_USAGETEXT_H

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

/** What the parser of the command line says by itself, in the user's language. */
namespace UsageText {

/** The headings and labels of `--help`. */
std::shared_ptr<CLI::Formatter> formatter();

/** What is wrong with the command line, and how to get help; for `CLI::App::failure_message`. A
    fault that is not known here stays as the parser tells it, in English. */
std::string failure(const CLI::App* app, const CLI::Error& error);

} // namespace UsageText

#endif
