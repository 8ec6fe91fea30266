#ifndef COMMAND_FAULT_H
#define COMMAND_FAULT_H

#include "command/Text.h"

#include <QString>

#include <vector>

/** An error in an input file, with its place. */
struct Fault {
    QString file;
    int line = 0;   ///< from 1; 0 for the file as a whole; the row of a spreadsheet
    int column = 0; ///< from 1, in bytes; 0 for the line or the file as a whole
    Text text;
    QString cell = {}; ///< a spreadsheet's column, "F (ip)"; empty for other files

    /** "FILE:LINE:COLUMN: text" in the user's language, without the places that are 0; of a
        spreadsheet "FILE, row LINE, column F (ip): text". */
    QString toString() const;
};

using Faults = std::vector<Fault>;

#endif
