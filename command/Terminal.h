#ifndef COMMAND_TERMINAL_H
#define COMMAND_TERMINAL_H

#include <QByteArray>
#include <QString>

#include <cstdio>

/** Standard error as a terminal: lines, and below them a status line that is overwritten. Any
    thread. */
namespace Terminal {

/** Whether standard error is a terminal that can overwrite a line: not a dumb one. */
bool isInteractive();

enum class Colour { None, Green, Yellow, Red };
/** The text in that colour if the terminal has colours and `NO_COLOR` is unset or empty. */
QString painted(const QString& text, Colour colour);

/** Writes a line with one call, above the status line. */
void writeLine(std::FILE* stream, const QByteArray& line);

/** Sets the status line, cut to the terminal's width; empty for none. Does nothing if the terminal
    is not interactive. */
void setStatus(const QString& text);

} // namespace Terminal

#endif
