#include "command/Plan.h"

#include "command/CsvReader.h"
#include "command/InputRole.h"
#include "command/Journal.h"
#include "command/PlanReader.h"

#include <algorithm>

namespace {

QByteArray maskedRow(const CsvReader& reader, std::size_t keyColumn, char delimiter) {
    QByteArray line;
    for (std::size_t i = 0; i < reader.cells().size(); ++i) {
        if (i > 0)
            line += delimiter;
        const std::string_view cell = reader.cells()[i];
        const bool isKey = i == keyColumn && reader.number() > 1 && !cell.empty();
        line += CsvReader::quoted(isKey ? std::string_view("********") : cell);
    }
    return line + '\n';
}

} // namespace

std::optional<Plan> Plan::check(const InputFile& file, const PlanNeeds& needs, Faults& faults) {
    return PlanReader(file, needs, faults).read();
}

bool Plan::isPlan(const InputFile& file) {
    const std::string_view content = PlanReader::withoutByteOrderMark(file);
    return PlanReader::hasSerials(content, PlanReader::delimiterOf(content));
}

Text Plan::noFault(const QString& path) const {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: a plan, no fault (instruments: %2)"),
                {path, QString::number(rows.size())});
}

JournalInput Plan::journalInput(const InputFile& file) {
    JournalInput input = ::journalInput(InputRole::plan, file);
    const std::string_view content = PlanReader::withoutByteOrderMark(file);
    const char delimiter = PlanReader::delimiterOf(content);
    input.content.clear();
    input.isMasked = true;
    CsvReader reader(content, delimiter);
    std::size_t keyColumn = 0;
    while (reader.next()) {
        const auto& cells = reader.cells();
        if (reader.number() == 1 || input.content.isEmpty())
            keyColumn =
                static_cast<std::size_t>(std::find_if(cells.begin(), cells.end(),
                                                      [](std::string_view cell) {
                                                          return PlanCells::trimmed(cell) == "key";
                                                      }) -
                                         cells.begin());
        input.content += maskedRow(reader, keyColumn, delimiter);
    }
    return input;
}
