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

    /** Reads the next row that is not an empty line. @return whether there is one; false with a
        `problem` when it is not the end of the file */
    bool next();

    /** The row's number as in a spreadsheet: from 1, with empty lines. With a problem, that of the
        wrong row. */
    int number() const { return m_number; }
    /** The row's cells; valid until the next row is read. */
    const std::vector<std::string_view>& cells() const { return m_cells; }
    const Text& problem() const { return m_problem; }

    /** The cell in quotes, as it is written to a file. */
    static QByteArray quoted(std::string_view cell);

private:
    static void takeCell(void* text, std::size_t size, void* self) noexcept;
    static void endRow(int end, void* self) noexcept;
    bool parse(std::string_view line);
    bool endAtEndOfFile();
    void collectCells();

    csv_parser m_parser = {};
    std::string_view m_rest;
    std::string m_text;         ///< of all cells of the row, and room for more
    std::size_t m_textSize = 0; ///< of the cells in it
    std::size_t m_rowSize = 0;  ///< of the row's lines so far
    std::vector<std::size_t> m_ends;
    std::vector<std::string_view> m_cells;
    int m_number = 0;
    int m_rowsInLine = 0;
    bool m_isInRow = false; ///< a quoted cell continues in the next line
    Text m_problem;
};

#endif
