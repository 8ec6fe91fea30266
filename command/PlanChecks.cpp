// Checks of a plan over several cells: the addresses of a row, and all rows together.

#include "command/FieldTexts.h"
#include "command/InstrumentState.h"
#include "command/PlanReader.h"

#include <algorithm>
#include <array>

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

bool contains(const std::vector<std::int32_t>& ascending, std::int32_t serial) {
    return std::binary_search(ascending.begin(), ascending.end(), serial);
}

} // namespace

void PlanReader::checkAddresses() {
    const NetworkFields& fields = m_row->network;
    if (fields.dhcp == std::uint32_t{eDHCP_ON})
        return;
    for (const AddressFault& fault : addressFaults(fields.ip, fields.mask, fields.gateway)) {
        const bool isMask = fault.field == AddressFault::Field::Mask;
        add({m_row->number, indexOf(isMask ? "mask" : "ip")}, fault.text);
    }
}

void PlanReader::checkUnique(const Unique& what, Values& values) {
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
    std::array<Values, std::size(uniques)> values;
    // All rows once, as they are more than the processor's cache holds.
    for (const PlanRow& row : m_plan.rows) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            std::uint32_t value = 0;
            if (uniques[i].valueOf(row, value))
                values[i].emplace_back(value, &row);
        }
    }
    for (std::size_t i = 0; i < values.size(); ++i)
        checkUnique(uniques[i], values[i]);
    checkAttached(values.front());
}

bool PlanReader::isNeeded(std::int32_t serialNumber) const {
    return m_only.empty() || contains(m_only, serialNumber);
}

void PlanReader::keepNeeded() {
    if (m_only.empty())
        return;
    auto& rows = m_plan.rows;
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [this](const PlanRow& row) { return !isNeeded(row.serialNumber); }),
               rows.end());
}

void PlanReader::checkAttached(const Values& serials) {
    std::vector<std::int32_t> attached = m_needs.attached.value_or(std::vector<std::int32_t>());
    if (!std::is_sorted(attached.begin(), attached.end()))
        std::sort(attached.begin(), attached.end());
    for (const auto& [value, row] : serials) {
        const auto serial = static_cast<std::int32_t>(value);
        if (m_needs.attached && isNeeded(serial) && !contains(attached, serial))
            add({row->number, m_serialColumn},
                Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is not attached."),
                     {serialText(serial)}));
    }
    for (const std::int32_t serial : m_needs.only) {
        const auto value = static_cast<std::uint32_t>(serial);
        const auto planned = std::lower_bound(
            serials.begin(), serials.end(), value,
            [](const auto& entry, std::uint32_t sought) { return entry.first < sought; });
        if (planned == serials.end() || planned->first != value)
            m_found.push_back({{},
                               {QStringLiteral("--only"), 0, 0,
                                Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is not in the "
                                                                    "plan"),
                                     {serialText(serial)})}});
    }
}
