// The check of plans: what it refuses, it says why, at a row; what it accepts, it takes once more
// with the cells in quotes, with semicolons and CR LF, to the same rows; no key is kept for the
// journal.
#include "command/CsvReader.h"
#include "command/Plan.h"
#include "command/PlanReader.h"
#include "tests/fuzz/FuzzFile.h"

#include <set>

namespace {

const QString path = QStringLiteral("/nowhere/plan.csv");

QByteArray rewritten(const InputFile& file) {
    const std::string_view content = PlanReader::withoutByteOrderMark(file);
    CsvReader reader(content, PlanReader::delimiterOf(content));
    QByteArray result = "\xEF\xBB\xBF";
    while (reader.next()) {
        QByteArray separator;
        for (const std::string_view cell : reader.cells()) {
            result += separator + CsvReader::quoted(cell);
            separator = ";";
        }
        result += "\r\n";
    }
    return result;
}

void requireSame(const NetworkFields& left, const NetworkFields& right) {
    require(left.wireless == right.wireless && left.dhcp == right.dhcp && left.ip == right.ip);
    require(left.mask == right.mask && left.gateway == right.gateway && left.dns == right.dns);
    require(left.ssid == right.ssid && left.key == right.key);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const InputFile file = {
        path, QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size))};
    Faults faults;
    const auto plan = Plan::check(file, {}, faults);
    require(plan.has_value() == faults.empty());
    for (const Fault& fault : faults)
        require(!fault.text.english().isEmpty() && !fault.toString().isEmpty());
    const JournalInput kept = Plan::journalInput(file);
    if (!plan)
        return 0;
    require(!plan->rows.empty());
    std::set<std::int32_t> serials;
    for (const PlanRow& row : plan->rows) {
        require(row.number >= 2 && row.serialNumber >= 0);
        require(serials.insert(row.serialNumber).second);
    }
    const auto again = Plan::check({path, rewritten(file)}, {}, faults);
    const auto masked = Plan::check({path, kept.content}, {}, faults);
    require(again && masked && again->rows.size() == plan->rows.size());
    for (std::size_t i = 0; i < plan->rows.size(); ++i) {
        require(again->rows[i].serialNumber == plan->rows[i].serialNumber);
        requireSame(again->rows[i].network, plan->rows[i].network);
        NetworkFields network = plan->rows[i].network;
        if (network.key)
            network.key = "********";
        requireSame(masked->rows[i].network, network);
    }
    return 0;
}
