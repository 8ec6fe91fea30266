#include "command/CsvReader.h"
#include "command/FieldTexts.h"
#include "command/Plan.h"
#include "command/PlanCells.h"
#include "command/Report.h"
#include "command/Snapshot.h"
#include "command/UnfinishedMark.h"
#include "command/VerbSupport.h"

namespace {

QByteArray lineOf(const QStringList& cells) {
    QByteArrayList line;
    for (const QString& cell : cells) {
        const QByteArray bytes = cell.toUtf8();
        line.append(CsvReader::quoted({bytes.constData(), static_cast<std::size_t>(bytes.size())}));
    }
    return line.join(',') + "\r\n";
}

/** The text as a cell; empty, which changes nothing, if a spreadsheet or the plan's reader would
    change the text, for instance because it begins like a formula. */
QString textCell(const char* field, std::size_t size) {
    QString text = FieldTexts::text(field, size);
    const QByteArray bytes = text.toUtf8();
    const bool isWhole = bytes == QByteArray(field, static_cast<int>(::strnlen(field, size)));
    const bool isFormula = !text.isEmpty() && QStringLiteral("=+-@'").contains(text.at(0));
    const std::string_view cell(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (!isWhole || isFormula || PlanCells::isShortenedNumber(cell))
        return {};
    return text;
}

/** "on" or "off"; empty for any other value. */
QString flagCell(std::uint32_t flag) {
    if (flag > 1)
        return {};
    return FieldTexts::onOff(flag);
}

/** Why a plan with the instrument's own addresses would be refused; empty where it would not. */
Text addressFault(const KVA_NETWORKINFO& info) {
    KVA_NETWORKINFO other = info;
    other.DHCPUse = eDHCP_ON;
    return changedAddressFault(other, info);
}

/** Whether the row names the addresses: not where they are not used, or would be refused. */
bool namesAddresses(const KVA_NETWORKINFO& info) {
    return info.DHCPUse == eDHCP_OFF && addressFault(info).isEmpty();
}

/** The cells in the order of `planColumns`, from the one after the serial number to the power-off
    time. */
QStringList cellsOf(const InstrumentState& state) {
    QStringList cells;
    if (state.network) {
        const KVA_NETWORKINFO& info = *state.network;
        cells << flagCell(info.APConnectUse) << textCell(info.SSID, sizeof info.SSID) << QString()
              << flagCell(info.DHCPUse);
        if (namesAddresses(info))
            cells << FieldTexts::address(info.IPAddress) << FieldTexts::address(info.SubnetMask)
                  << FieldTexts::address(info.DefaultGateway) << FieldTexts::address(info.DNS);
    }
    const auto networkColumns = planColumns().indexOf(QStringLiteral("power_off")) - 1;
    while (cells.size() < networkColumns)
        cells.append(QString());
    const QString powerOff = FieldTexts::powerOff(state.powerOffMode);
    if (FieldTexts::powerOffWords().contains(powerOff))
        cells << powerOff;
    return cells;
}

/** The comment cell. It begins with a fixed word, so it is never a formula. */
QString comment(const InstrumentState& state) {
    QStringList parts;
    const auto add = [&](const char* name, const QString& text) {
        parts.append(QStringLiteral("%1 %2").arg(QLatin1String(name), text));
    };
    if (state.network) {
        const KVA_NETWORKINFO& info = *state.network;
        add("wireless", FieldTexts::onOff(info.APConnectUse));
        add("ssid", QStringLiteral("\"%1\"").arg(FieldTexts::text(info.SSID, sizeof info.SSID)));
        add("key", maskedKey(info));
        add("dhcp", FieldTexts::onOff(info.DHCPUse));
        add("ip", FieldTexts::address(info.IPAddress));
        add("mask", FieldTexts::address(info.SubnetMask));
        add("gateway", FieldTexts::address(info.DefaultGateway));
        add("dns", FieldTexts::address(info.DNS));
    } else {
        parts.append(QStringLiteral("no wireless module"));
    }
    add("power_off", FieldTexts::powerOff(state.powerOffMode));
    add("white_plate",
        FieldTexts::accessorySerial(state.calibration.*CalibrationAccessory::whitePlate.serialNo));
    add("ambient_adapter", FieldTexts::accessorySerial(
                               state.calibration.*CalibrationAccessory::ambientAdapter.serialNo));
    return parts.join(QStringLiteral("; "));
}

/** Says why the addresses that an instrument holds are not in its row. */
void sayLeftOut(std::int32_t serialNumber, const InstrumentState& state) {
    if (!state.network)
        return;
    const Text fault = addressFault(*state.network);
    if (!fault.isEmpty())
        sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: its addresses are left out: %2"),
                       {serialText(serialNumber), fault.translated()}));
}

/** Adds the instrument's row. @return why it could not be read; empty if it was */
Text addRow(std::int32_t serialNumber, bool fillsIn, QByteArray& content) {
    QStringList cells(serialText(serialNumber));
    InstrumentState state;
    CallWatch watch;
    Text problem;
    if (UnfinishedMark(serialNumber).exists())
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: unfinished. An earlier write did not "
                                                      "end: run vq-tl4ctl recover."),
                       {serialText(serialNumber)});
    else
        problem = readInstrument(watch, serialNumber, state);
    if (problem.isEmpty() && fillsIn) {
        cells += cellsOf(state);
        sayLeftOut(serialNumber, state);
    }
    while (cells.size() < planColumns().size())
        cells.append(QString());
    if (problem.isEmpty())
        cells.append(comment(state));
    else
        cells.append(problem.english());
    content += lineOf(cells);
    return problem;
}

} // namespace

ExitStatus planInit(const PlanInitOptions& options) {
    std::vector<std::int32_t> serials;
    Text problem = attachedInstruments(serials);
    if (problem.isEmpty() && serials.empty())
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "No instrument is attached."));
    if (problem.isEmpty())
        problem = creationProblem(options.file);
    // With a byte-order mark, as some spreadsheets otherwise assume another encoding.
    QByteArray content =
        "\xEF\xBB\xBF" + lineOf(QStringList(planColumns()) << QStringLiteral("# now"));
    ExitStatus status = Done;
    for (const std::int32_t serial : serials) {
        if (!problem.isEmpty())
            break;
        const Text unread = addRow(serial, options.fillsIn, content);
        if (unread.isEmpty())
            continue;
        sayToUser(unread);
        status = RefusedStatus;
    }
    if (problem.isEmpty())
        problem = createFile(options.file, content);
    if (problem.isEmpty()) {
        print(options.file);
        return status;
    }
    sayToUser(problem);
    return RefusedStatus;
}
