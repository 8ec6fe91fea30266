// Checks of a plan over several cells: the addresses of a row, and all rows together.

#include "command/FieldTexts.h"
#include "command/InstrumentState.h"
#include "command/PlanReader.h"

#include <algorithm>

namespace {

/** So that ascending addresses are ascending numbers. */
template <typename Bytes>
std::uint32_t numberOf(const Bytes& bytes) {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = number << 8U | byte;
    return number;
}

std::optional<std::uint32_t> accessoryOf(const PlanRow& row, const CalibrationAccessory& accessory,
                                         QString* text = nullptr) {
    for (const ValueFile& file : row.accessories) {
        if (file.accessory != &accessory)
            continue;
        if (text != nullptr)
            *text = FieldTexts::accessorySerial(file.serialNo);
        return numberOf(file.serialNo);
    }
    return std::nullopt;
}

template <const CalibrationAccessory& Accessory>
bool accessorySerial(const PlanRow& row, std::uint32_t& value) {
    const auto number = accessoryOf(row, Accessory);
    value = number.value_or(0);
    return number.has_value();
}

template <const CalibrationAccessory& Accessory>
QString accessoryText(const PlanRow& row) {
    QString text;
    accessoryOf(row, Accessory, &text);
    return text;
}

bool serialNumber(const PlanRow& row, std::uint32_t& value) {
    value = static_cast<std::uint32_t>(row.serialNumber);
    return row.serialNumber >= 0;
}

QString serialNumberText(const PlanRow& row) {
    return serialText(row.serialNumber);
}

bool ipAddress(const PlanRow& row, std::uint32_t& value) {
    if (row.network.ip)
        value = numberOf(*row.network.ip);
    return row.network.ip.has_value();
}

QString ipAddressText(const PlanRow& row) {
    std::uint8_t octets[4] = {};
    std::copy(row.network.ip->begin(), row.network.ip->end(), octets);
    return FieldTexts::address(octets);
}

bool contains(const std::vector<std::int32_t>& serials, std::int32_t serial) {
    return std::find(serials.begin(), serials.end(), serial) != serials.end();
}

} // namespace

void PlanReader::checkAddresses() {
    const NetworkFields& fields = m_row.network;
    if (fields.dhcp == std::uint32_t{eDHCP_ON})
        return;
    for (const AddressFault& fault : addressFaults(fields.ip, fields.mask, fields.gateway)) {
        const bool isMask = fault.field == AddressFault::Field::Mask;
        add({m_row.number, indexOf(isMask ? "mask" : "ip")}, fault.text);
    }
}

void PlanReader::checkUnique(const Unique& what) {
    std::vector<std::pair<std::uint32_t, const PlanRow*>> values;
    for (const PlanRow& row : m_plan.rows) {
        std::uint32_t value = 0;
        if (what.valueOf(row, value))
            values.emplace_back(value, &row);
    }
    // By address, as the rows are in a vector: of equal values the first row comes first.
    if (!std::is_sorted(values.begin(), values.end()))
        std::sort(values.begin(), values.end());
    const PlanRow* first = nullptr;
    for (std::size_t i = 1; i < values.size(); ++i) {
        if (values[i - 1].first != values[i].first) {
            first = nullptr;
            continue;
        }
        if (first == nullptr)
            first = values[i - 1].second;
        const PlanRow& row = *values[i].second;
        add({row.number, indexOf(what.column)},
            Text(what.message, {what.textOf(row), QString::number(first->number)}));
    }
}

void PlanReader::checkAllRows() {
    constexpr Unique uniques[] = {
        {"serial", QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is in row %2 as well"),
         serialNumber, serialNumberText},
        {"ip", QT_TRANSLATE_NOOP("vq-tl4ctl", "The address %1 is in row %2 as well"), ipAddress,
         ipAddressText},
        {"white_plate", QT_TRANSLATE_NOOP("vq-tl4ctl", "White plate %1 is in row %2 as well"),
         accessorySerial<CalibrationAccessory::whitePlate>,
         accessoryText<CalibrationAccessory::whitePlate>},
        {"ambient_adapter",
         QT_TRANSLATE_NOOP("vq-tl4ctl", "Ambient adapter %1 is in row %2 as well"),
         accessorySerial<CalibrationAccessory::ambientAdapter>,
         accessoryText<CalibrationAccessory::ambientAdapter>}};
    for (const Unique& what : uniques)
        checkUnique(what);
    checkAttached();
}

bool PlanReader::isNeeded(std::int32_t serialNumber) const {
    return m_needs.only.empty() || contains(m_needs.only, serialNumber);
}

void PlanReader::keepNeeded() {
    auto& rows = m_plan.rows;
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [this](const PlanRow& row) { return !isNeeded(row.serialNumber); }),
               rows.end());
}

void PlanReader::checkAttached() {
    const std::size_t column = indexOf("serial");
    for (const PlanRow& row : m_plan.rows) {
        if (row.serialNumber >= 0 && isNeeded(row.serialNumber) && m_needs.attached &&
            !contains(*m_needs.attached, row.serialNumber))
            add({row.number, column},
                Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is not attached."),
                     {serialText(row.serialNumber)}));
    }
    for (const std::int32_t serial : m_needs.only) {
        const bool isPlanned =
            std::any_of(m_plan.rows.begin(), m_plan.rows.end(),
                        [&](const PlanRow& row) { return row.serialNumber == serial; });
        if (!isPlanned)
            m_found.push_back({{},
                               {QStringLiteral("--only"), 0, 0,
                                Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is not in the "
                                                                    "plan"),
                                     {serialText(serial)})}});
    }
}
