#include "command/CsvReader.h"

#include <QtGlobal>

#include <algorithm>
#include <new>

namespace {

/** For libcsv: no character is a blank to be removed, as blanks belong to cells. */
int isNoBlank(unsigned char /*character*/) {
    return 0;
}

} // namespace

CsvReader::CsvReader(std::string_view content, char delimiter) : m_rest(content) {
    if (csv_init(&m_parser, CSV_STRICT | CSV_STRICT_FINI) != 0)
        throw std::bad_alloc();
    csv_set_delim(&m_parser, static_cast<unsigned char>(delimiter));
    csv_set_space_func(&m_parser, isNoBlank);
}

CsvReader::~CsvReader() {
    csv_free(&m_parser);
}

void CsvReader::takeCell(void* text, std::size_t size, void* self) noexcept {
    auto& reader = *static_cast<CsvReader*>(self);
    // There is room: `parse` makes as much as the lines of the row have bytes.
    std::copy_n(static_cast<const char*>(text), size, reader.m_text.data() + reader.m_textSize);
    reader.m_textSize += size;
    reader.m_ends.push_back(reader.m_textSize);
}

void CsvReader::endRow(int /*end*/, void* self) noexcept {
    ++static_cast<CsvReader*>(self)->m_rowsInLine;
}

bool CsvReader::parse(std::string_view line) {
    m_rowsInLine = 0;
    m_rowSize += line.size();
    if (m_text.size() < m_rowSize)
        m_text.resize(m_rowSize);
    const std::size_t size = csv_parse(&m_parser, line.data(), line.size(), takeCell, endRow, this);
    if (size == line.size() && m_rowsInLine <= 1)
        return true;
    ++m_number;
    if (csv_error(&m_parser) == CSV_ENOMEM)
        throw std::bad_alloc();
    m_problem =
        size == line.size()
            ? Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "There is a CR in the line, not at its end"))
            : Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                     "There is a quote within a cell: the whole cell has to be in "
                                     "quotes, and the quote in it doubled"));
    return false;
}

bool CsvReader::next() {
    if (!m_problem.isEmpty())
        return false;
    m_textSize = 0;
    m_rowSize = 0;
    m_ends.clear();
    while (!m_rest.empty()) {
        const std::size_t end = m_rest.find('\n');
        if (end == std::string_view::npos)
            return endAtEndOfFile();
        const std::string_view line = m_rest.substr(0, end + 1);
        m_rest.remove_prefix(line.size());
        if (!parse(line))
            return false;
        const bool isEmptyLine =
            m_rowsInLine == 0 && !m_isInRow && (line == "\n" || line == "\r\n");
        m_isInRow = m_rowsInLine == 0 && !isEmptyLine;
        if (!m_isInRow)
            ++m_number;
        if (m_rowsInLine == 1) {
            collectCells();
            return true;
        }
    }
    return m_isInRow && endAtEndOfFile();
}

/** No complete row is left: the rest, if any, has no line end. */
bool CsvReader::endAtEndOfFile() {
    if (!parse(m_rest))
        return false;
    m_rest = {};
    ++m_number;
    const bool isOpen = csv_fini(&m_parser, takeCell, endRow, this) != 0;
    m_problem = isOpen ? Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "A cell in quotes is not closed"))
                       : Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                                "The last line has no line end: the file may have "
                                                "been cut off here"));
    return false;
}

void CsvReader::collectCells() {
    m_cells.resize(m_ends.size());
    const std::string_view text = m_text;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < m_ends.size(); ++i) {
        m_cells[i] = text.substr(begin, m_ends[i] - begin);
        begin = m_ends[i];
    }
}

QByteArray CsvReader::quoted(std::string_view cell) {
    QByteArray result(static_cast<int>(2 * cell.size() + 2), '\0');
    const std::size_t size =
        csv_write(result.data(), static_cast<std::size_t>(result.size()), cell.data(), cell.size());
    result.resize(static_cast<int>(std::min(size, static_cast<std::size_t>(result.size()))));
    return result;
}
