#include "command/PlanReader.h"

#include "command/AccessoryTexts.h"
#include "command/FieldTexts.h"
#include "command/FileCheck.h"
#include "command/InstrumentState.h"
#include "command/Journal.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace {

QString toText(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

bool isAscii(std::string_view text) {
    // Without an end at the first other byte: the compiler then takes many bytes at once.
    unsigned char all = 0;
    for (const char c : text)
        all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

bool hasControlCharacter(std::string_view text) {
    constexpr unsigned char lowestPrintable = 0x20;
    constexpr unsigned char deletion = 0x7F;
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < lowestPrintable || byte == deletion;
    });
}

/** "A" to "Z", "AA" and so on, as spreadsheets name their columns. */
QString columnLetters(std::size_t column) {
    QString letters;
    constexpr std::size_t count = 26;
    for (std::size_t rest = column + 1; rest > 0; rest = (rest - 1) / count)
        letters.prepend(QLatin1Char(static_cast<char>('A' + (rest - 1) % count)));
    return letters;
}

} // namespace

const std::vector<PlanReader::Column>& PlanReader::columns() {
    using Fields = NetworkFields;
    static const std::vector<Column> columns = {
        {"serial", &PlanReader::takeSerial, false},
        {"wireless", &PlanReader::takeOnOff<&Fields::wireless>, false},
        {"ssid", &PlanReader::takeText<&Fields::ssid, sizeof KVA_NETWORKINFO::SSID>, true},
        {"key", &PlanReader::takeText<&Fields::key, sizeof KVA_NETWORKINFO::EncryptKey>, true},
        {"dhcp", &PlanReader::takeOnOff<&Fields::dhcp>, false},
        {"ip", &PlanReader::takeAddress<&Fields::ip>, false},
        {"mask", &PlanReader::takeAddress<&Fields::mask>, false},
        {"gateway", &PlanReader::takeAddress<&Fields::gateway>, false},
        {"dns", &PlanReader::takeAddress<&Fields::dns>, false},
        {"power_off", &PlanReader::takePowerOff, false},
        {"white_plate", &PlanReader::takeValues<CalibrationAccessory::whitePlate>, true},
        {"ambient_adapter", &PlanReader::takeValues<CalibrationAccessory::ambientAdapter>, true}};
    return columns;
}

const QStringList& planColumns() {
    static const QStringList names = [] {
        QStringList result;
        for (const PlanReader::Column& column : PlanReader::columns())
            result.append(QLatin1String(column.name));
        return result;
    }();
    return names;
}

PlanReader::PlanReader(const InputFile& file, const PlanNeeds& needs, Faults& faults)
    : m_file(file), m_needs(needs), m_only(needs.only), m_faults(faults) {
    std::sort(m_only.begin(), m_only.end());
}

std::string_view PlanReader::withoutByteOrderMark(const InputFile& file) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string_view content(file.content.constData(),
                             static_cast<std::size_t>(file.content.size()));
    if (content.substr(0, byteOrderMark.size()) == byteOrderMark)
        content.remove_prefix(byteOrderMark.size());
    return content;
}

bool PlanReader::hasSerials(std::string_view content, char delimiter) {
    CsvReader reader(content, delimiter);
    const bool hasRow = reader.next();
    const auto& cells = reader.cells();
    return hasRow && cells.size() > 1 &&
           std::any_of(cells.begin(), cells.end(),
                       [](std::string_view cell) { return PlanCells::trimmed(cell) == "serial"; });
}

char PlanReader::delimiterOf(std::string_view content) {
    return hasSerials(content, ';') ? ';' : ',';
}

// ---- Faults

QString PlanReader::cellName(std::size_t column) const {
    QString letters = columnLetters(column);
    const bool hasName = column < m_names.size() && !m_names[column].isEmpty();
    if (hasName)
        return QStringLiteral("%1 (%2)").arg(letters, m_names[column]);
    return letters;
}

Fault PlanReader::faultAt(const Place& place, Text text) const {
    return {m_file.path, place.row, 0, std::move(text), cellName(place.column)};
}

void PlanReader::add(const Place& place, Text text) {
    m_found.emplace_back(place, faultAt(place, std::move(text)));
}

void PlanReader::addHere(const char* message, std::string_view cell) {
    addHere(Text(message, {FileCheck::quoted(cell)}));
}

// ---- One cell

void PlanReader::takeSerial(std::string_view cell) {
    switch (PlanCells::parseSerial(cell, m_row->serialNumber)) {
    case PlanCells::SerialFault::None:
        return;
    case PlanCells::SerialFault::NoNumber:
        addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "\"%1\" is not a serial number."), cell);
        break;
    case PlanCells::SerialFault::Inexact:
        addHere(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                  "\"%1\" may have lost digits: give the column of the serial "
                                  "numbers the format \"text\", and type them anew"),
                cell);
        break;
    }
    m_row->serialNumber = -1;
}

template <std::optional<std::uint32_t> NetworkFields::*Field>
void PlanReader::takeOnOff(std::string_view cell) {
    m_row->network.*Field = PlanCells::onOff(cell);
    if (!(m_row->network.*Field))
        addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "It has to be \"on\" or \"off\", not \"%1\""), cell);
}

template <std::optional<NetworkFields::Address> NetworkFields::*Field>
void PlanReader::takeAddress(std::string_view cell) {
    NetworkFields::Address address = {};
    if (FieldTexts::parseAddress(cell, address.data()) == nullptr)
        m_row->network.*Field = address;
    else
        addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "It has to be four numbers from 0 to 255, such as "
                                               "192.168.0.10, not \"%1\""),
                cell);
}

/** Without the text in the messages: it may be the security key. */
template <std::optional<std::string> NetworkFields::*Field, std::size_t Size>
void PlanReader::takeText(std::string_view cell) {
    if (hasControlCharacter(cell))
        addHere(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The text has a line end, a tab or another "
                                                    "control character")));
    else if (PlanCells::isShortenedNumber(cell))
        addHere(Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                       "The text looks like a number that a spreadsheet has "
                                       "shortened, such as 1.23E+15: give the column the format "
                                       "\"text\", and type it anew")));
    else if (cell.size() >= Size)
        addHere(
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The text has %1 bytes, at most %2 are allowed"),
                 {QString::number(cell.size()), QString::number(Size - 1)}));
    else
        (m_row->network.*Field).emplace(cell);
    if (PlanCells::trimmed(cell).size() != cell.size())
        m_plan.notes.push_back(faultAt(
            m_place,
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The text begins or ends with a blank, which "
                                                "belongs to it"))));
    // Once: a plan may have the same key in each row.
    if (m_hasDigitsAlone || cell.empty() || !PlanCells::isAllDigits(cell))
        return;
    m_hasDigitsAlone = true;
    m_plan.notes.push_back(faultAt(
        m_place, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The text has digits alone: a spreadsheet "
                                                     "takes away zeros before them"))));
}

void PlanReader::takePowerOff(std::string_view cell) {
    m_row->powerOffMode = FieldTexts::powerOffMode(cell);
    if (!m_row->powerOffMode)
        addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "It has to be off, 15, 30 or 60, not \"%1\""), cell);
}

template <const CalibrationAccessory& Accessory>
void PlanReader::takeValues(std::string_view cell) {
    const QString name = toText(cell);
    Faults faults;
    const auto file = InputFile::read(
        QDir::cleanPath(QDir(QFileInfo(m_file.path).path()).filePath(name)), faults);
    auto values = file ? ValueFile::check(*file, Accessory, faults) : std::nullopt;
    if (values) {
        m_row->accessories.push_back(std::move(*values));
        m_row->inputs.push_back(
            ::journalInput(AccessoryTexts::of(Accessory).role, *file, m_row->serialNumber));
        return;
    }
    addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "The file \"%1\" cannot be used:"), cell);
    for (const Fault& fault : faults)
        m_found.emplace_back(m_place, fault);
}

// ---- Rows

bool PlanReader::readHeader(const std::vector<std::string_view>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        m_place.column = i;
        const std::string_view name = PlanCells::trimmed(cells[i]);
        m_names.push_back(toText(name));
        m_isComment.push_back(!name.empty() && name.front() == '#');
        const auto column = std::find_if(columns().begin(), columns().end(),
                                         [&](const Column& known) { return name == known.name; });
        const bool isKnown = column != columns().end();
        const bool isDoubled =
            isKnown && std::find(m_columns.begin(), m_columns.end(), &*column) != m_columns.end();
        m_columns.push_back(isKnown && !isDoubled ? &*column : nullptr);
        if (isDoubled)
            addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "There is a column \"%1\" already"), name);
        else if (!isKnown && !name.empty() && !m_isComment[i])
            addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "A plan has no column \"%1\". A column of your "
                                                   "own begins with \"#\"."),
                    name);
    }
    m_serialColumn = indexOf("serial");
    if (m_serialColumn < cells.size())
        return true;
    m_place.column = 0;
    addHere(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The header has no column \"serial\"")));
    return false;
}

/** The index of a column; the number of columns if the file does not have it. */
std::size_t PlanReader::indexOf(const char* column) const {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(), [&](const Column* known) {
        return known != nullptr && std::strcmp(known->name, column) == 0;
    });
    return static_cast<std::size_t>(found - m_columns.begin());
}

bool PlanReader::isUtf8(std::string_view cell) {
    if (isAscii(cell))
        return true;
    const QByteArray bytes(cell.data(), static_cast<int>(cell.size()));
    if (QString::fromUtf8(bytes).toUtf8() == bytes)
        return true;
    addHere(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The text is not UTF-8: save the plan as \"CSV "
                                                "UTF-8\"")));
    return false;
}

void PlanReader::readCell(std::size_t column, std::string_view cell) {
    m_place.column = column;
    if (cell.empty() || (!m_hasOnlyAscii && !isUtf8(cell)))
        return;
    const Column* meaning = column < m_columns.size() ? m_columns[column] : nullptr;
    if (meaning == nullptr) {
        if (column < m_columns.size() && m_isComment[column])
            return;
        const bool isNamed = column < m_columns.size() && !m_names[column].isEmpty();
        if (!isNamed && !PlanCells::trimmed(cell).empty())
            addHere(QT_TRANSLATE_NOOP("vq-tl4ctl", "\"%1\" stands in a column without a name"),
                    cell);
        return;
    }
    const std::string_view text = meaning->hasText ? cell : PlanCells::trimmed(cell);
    if (!text.empty())
        (this->*meaning->take)(text);
}

void PlanReader::readRow(const CsvReader& reader) {
    const auto& cells = reader.cells();
    const auto isNothing = [](std::string_view cell) { return PlanCells::trimmed(cell).empty(); };
    if (std::all_of(cells.begin(), cells.end(), isNothing))
        return;
    m_row = &m_plan.rows.emplace_back();
    m_row->number = reader.number();
    m_row->serialNumber = -1;
    const std::size_t serial = m_serialColumn;
    // First, as the messages about the other cells name the serial number.
    if (serial < cells.size())
        readCell(serial, cells[serial]);
    if (serial >= cells.size() || isNothing(cells[serial]))
        add({m_row->number, serial},
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The row has no serial number")));
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i != serial)
            readCell(i, cells[i]);
    }
    checkAddresses();
}

// ---- All rows

bool PlanReader::finish() {
    std::stable_sort(m_found.begin(), m_found.end(), [](const auto& left, const auto& right) {
        return std::tie(left.first.row, left.first.column) <
               std::tie(right.first.row, right.first.column);
    });
    for (auto& found : m_found)
        m_faults.push_back(std::move(found.second));
    return m_found.empty();
}

std::optional<Plan> PlanReader::read() {
    const std::string_view content = withoutByteOrderMark(m_file);
    m_hasOnlyAscii = isAscii(content);
    const auto lines = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
    if ((!m_hasOnlyAscii || lines == 0) && !FileCheck(m_file, m_faults).hasLines())
        return std::nullopt;
    m_plan.rows.reserve(lines);
    CsvReader reader(content, delimiterOf(content));
    if (reader.next()) {
        m_place.row = reader.number();
        if (!readHeader(reader.cells())) {
            finish();
            return std::nullopt;
        }
        while (reader.next()) {
            m_place.row = reader.number();
            readRow(reader);
        }
    }
    if (!reader.problem().isEmpty())
        add({reader.number(), 0}, reader.problem());
    else if (m_plan.rows.empty())
        add({reader.number(), 0}, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The plan has no row")));
    checkAllRows();
    if (!finish())
        return std::nullopt;
    keepNeeded();
    return std::move(m_plan);
}
