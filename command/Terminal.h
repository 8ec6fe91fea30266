#ifndef COMMAND_TERMINAL_H
#define COMMAND_TERMINAL_H

#include <QByteArray>
#include <QString>

#include <cstdio>

/** Standard error as a terminal: lines above, and at the foot of them a line that changes. Any
    thread. */
namespace Terminal {

/** Whether standard error is a terminal that can take a line back: not a dumb one. */
bool isInteractive();

enum class Colour { None, Green, Yellow, Red };
/** In that colour where the terminal has colours and `NO_COLOR` is not set, or empty. */
QString painted(const QString& text, Colour colour);

/** Writes a line in one piece, above the status line. */
void writeLine(std::FILE* stream, const QByteArray& line);

/** The line at the foot; empty for none. Cut to the terminal's width. Without effect where the
    terminal is not interactive. */
void setStatus(const QString& text);

} // namespace Terminal

#endif
