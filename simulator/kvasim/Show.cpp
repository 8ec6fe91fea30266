#include "simulator/kvasim/Show.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kvasim {

namespace {

using Row = std::vector<std::string>;

/** Columns of the width of their widest cell, two blanks apart. */
std::string table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += row[column];
            if (column + 1 < row.size())
                line.append(widths[column] - row[column].size() + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

/** Control characters would reach the terminal. */
std::string printable(std::string text) {
    for (char& character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x20 || code == 0x7F)
            character = '?';
    }
    return text;
}

std::string cell(const Json& value) {
    if (value.is_null())
        return "-";
    if (value.is_string())
        return printable(value.get<std::string>());
    if (value.is_object() && value.contains("length"))
        return "(" + value["length"].dump() + " bytes, hidden)";
    std::string text = printable(value.dump());
    constexpr std::size_t widest = 60;
    return text.size() > widest ? text.substr(0, widest - 3) + "..." : text;
}

Json at(const Json& value, const char* key) {
    return value.is_object() && value.contains(key) ? value[key] : Json();
}

std::vector<Row> networkRows(const Json& network) {
    std::vector<Row> rows = {{"NETWORK", "ACTIVE", "PENDING"}};
    const Json active = at(network, "active");
    const Json pending = at(network, "pending");
    for (const auto& item : active.items())
        rows.push_back(
            {"  " + item.key(), cell(item.value()), cell(at(pending, item.key().c_str()))});
    return rows;
}

void addReference(std::vector<Row>& rows, const std::string& title, const Json& committed,
                  const Json& staged) {
    rows.push_back({"  " + title + " serial number", cell(at(committed, "serialNumber")),
                    cell(at(staged, "serialNumber"))});
    const Json values = at(committed, "values");
    const Json others = at(staged, "values");
    for (std::size_t index = 0; index < values.size(); ++index)
        rows.push_back({"  " + title + " value " + std::to_string(index), cell(values[index]),
                        index < others.size() ? cell(others[index]) : "-"});
}

std::vector<Row> calibrationRows(const Json& calibration) {
    std::vector<Row> rows = {{"CALIBRATION", "COMMITTED", "STAGED"}};
    const Json committed = at(calibration, "committed");
    const Json staged = at(calibration, "staged");
    addReference(rows, "white", at(committed, "white"), at(staged, "white"));
    addReference(rows, "adapter", at(committed, "ambientAdapter"), at(staged, "ambientAdapter"));
    rows.push_back({"  reserved", cell(at(committed, "reserved")), cell(at(staged, "reserved"))});
    return rows;
}

std::string stateOf(const Json& instrument) {
    if (!instrument.value("plugged", false))
        return "unplugged";
    if (instrument.value("starting", false))
        return "starting";
    return instrument.value("connected", false) ? "connected" : "plugged";
}

std::string portOf(const Json& port) {
    return at(port, "type") == Json(1) ? "USB" : "network " + cell(at(port, "name"));
}

} // namespace

std::string listAsText(const Json& instruments) {
    std::vector<Row> rows = {{"SERIAL", "STATE", "PORT"}};
    for (const Json& instrument : instruments)
        rows.push_back({cell(at(instrument, "serialNumber")), stateOf(instrument),
                        portOf(at(instrument, "port"))});
    return table(rows);
}

std::string instrumentAsText(const Json& instrument) {
    std::vector<Row> rows = {{"INSTRUMENT", cell(at(instrument, "serialNumber"))}};
    rows.push_back({"  plugged", cell(at(instrument, "plugged"))});
    rows.push_back({"  port", portOf(at(instrument, "port"))});
    const Json device = at(instrument, "device");
    for (const auto& item : device.items())
        rows.push_back({"  device " + item.key(), cell(item.value())});
    for (const char* key :
         {"wirelessModule", "factoryOptionsReserved", "powerOffMode", "startUpMs"})
        rows.push_back({std::string("  ") + key, cell(at(instrument, key))});
    return table(rows) + '\n' + table(networkRows(at(instrument, "network"))) + '\n' +
           table(calibrationRows(at(instrument, "calibration")));
}

std::string faultsAsText(const Json& faults) {
    std::string text;
    for (const Json& fault : faults)
        text += printable(fault.dump()) + '\n';
    return text;
}

std::string callAsText(const Json& call) {
    const std::string name = cell(at(call, "resultName"));
    return at(call, "seq").dump() + "  " + cell(at(call, "function")) + ' ' +
           printable(at(call, "arguments").dump()) + "  " +
           (name.empty() ? at(call, "result").dump() : name) + "  " +
           at(call, "durationUs").dump() + " us\n";
}

} // namespace kvasim
