#ifndef COMMAND_CSVREADER_H
#define COMMAND_CSVREADER_H

#include "command/Text.h"

#include <QByteArray>

#include <csv.h>

#include <string>
#include <string_view>
#include <vector>

/**
 * The rows of a CSV file, one after the other, by libcsv. Cells are bytes, with their blanks. A
 * cell in quotes may have delimiters, line ends, and doubled quotes; a quote anywhere else, a
 * CR within a line and a last line without an end are faults.
 */
class CsvReader {
public:
    /** @param content  outlives the object */
    CsvReader(std::string_view content, char delimiter);
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    /** Goes on to the next row that is not an empty line. @return whether there is one; without
        one, `problem` says why where it is not the end of the file */
    bool next();

    /** Of the row, as a spreadsheet counts: from 1, empty lines too. Where there is a problem, of
        the row that has it. */
    int number() const { return m_number; }
    /** Of the row; until the next one. */
    const std::vector<std::string_view>& cells() const { return m_cells; }
    const Text& problem() const { return m_problem; }

    /** The cell in quotes, as it is put into a file. */
    static QByteArray quoted(std::string_view cell);

private:
    static void takeCell(void* text, std::size_t size, void* self) noexcept;
    static void endRow(int end, void* self) noexcept;
    bool parse(std::string_view line);
    bool endAtEndOfFile();
    void collectCells();

    csv_parser m_parser = {};
    std::string_view m_rest;
    std::string m_text; ///< of all cells of the row
    std::vector<std::size_t> m_ends;
    std::vector<std::string_view> m_cells;
    int m_number = 0;
    int m_rowsInLine = 0;
    bool m_isInRow = false; ///< a cell in quotes goes on in the next line
    Text m_problem;
};

#endif
