#include "command/ValueFile.h"

#include "command/AccessoryTexts.h"
#include "command/FileCheck.h"
#include "files/BoundedLineReader.h"
#include "files/NumberText.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t serialNoLine = 2;
constexpr std::size_t valuesLine = 3;
constexpr std::size_t serialNoDigits = 2 * sizeof(CalibrationAccessory::SerialNo);
constexpr unsigned int highestSerialNo = 99999999; // in eight digits

constexpr std::string_view digits = "0123456789";

bool isAllDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of(digits) == std::string_view::npos;
}

/** Removes leading digits from @p text. @return whether there were any */
bool takeDigits(std::string_view& text) {
    const std::size_t count = std::min(text.find_first_not_of(digits), text.size());
    text.remove_prefix(count);
    return count > 0;
}

bool takeAny(std::string_view& text, std::string_view characters) {
    const bool takes = !text.empty() && characters.find(text.front()) != std::string_view::npos;
    text.remove_prefix(takes ? 1 : 0);
    return takes;
}

/** [+-]digits[.digits][e[+-]digits], and nothing else. */
bool isPlainDecimal(std::string_view text) {
    takeAny(text, "+-");
    if (!takeDigits(text) || (takeAny(text, ".") && !takeDigits(text)))
        return false;
    if (takeAny(text, "eE")) {
        takeAny(text, "+-");
        if (!takeDigits(text))
            return false;
    }
    return text.empty();
}

/** Whether all digits of a plain decimal are zero. */
bool isWrittenAsZero(std::string_view text) {
    return text.substr(0, text.find_first_of("eE")).find_first_of("123456789") ==
           std::string_view::npos;
}

/** The cells of a line, the empty ones too; at most @p most. */
std::vector<std::string_view> cellsOf(std::string_view line, std::size_t most) {
    std::vector<std::string_view> cells;
    while (cells.size() < most) {
        const std::size_t length = std::min(line.find(','), line.size());
        cells.push_back(line.substr(0, length));
        if (length == line.size())
            break;
        line.remove_prefix(length + 1);
    }
    return cells;
}

std::size_t cellCount(std::string_view line) {
    return 1 + static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
}

QString serialNoText(unsigned int serialNo) {
    return QStringLiteral("%1").arg(serialNo, int{serialNoDigits}, 10, QLatin1Char('0'));
}

void addWrongSerialNo(FileCheck& check, std::string_view line,
                      const CalibrationAccessory& accessory) {
    const unsigned int highest = std::min(accessory.highestSerialNo, highestSerialNo);
    check.add(line.data(),
              Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The serial number has to be eight digits, from "
                                                  "%1 to %2, not \"%3\""),
                   {serialNoText(accessory.lowestSerialNo), serialNoText(highest),
                    FileCheck::quoted(line)}));
}

void checkSerialNo(FileCheck& check, std::string_view line, const CalibrationAccessory& accessory,
                   CalibrationAccessory::SerialNo& serialNo) {
    line = withoutLineEndCr(line);
    if (!check.isText(line))
        return;
    if (line.size() != serialNoDigits || !isAllDigits(line)) {
        addWrongSerialNo(check, line, accessory);
        return;
    }
    unsigned int value = 0;
    for (std::size_t i = 0; i < serialNoDigits; i += 2) {
        const auto high = static_cast<unsigned int>(line[i] - '0');
        const auto low = static_cast<unsigned int>(line[i + 1] - '0');
        serialNo[i / 2] = static_cast<std::uint8_t>(high << 4U | low);
        value = value * 100 + high * 10 + low;
    }
    if (!accessory.isValid(value))
        addWrongSerialNo(check, line, accessory);
}

void checkCell(FileCheck& check, std::string_view cell, std::vector<float>& values) {
    const char* wrong = nullptr;
    if (cell.empty()) {
        wrong = QT_TRANSLATE_NOOP("vq-tl4ctl", "There is no value here");
    } else if (!check.isText(cell)) {
        return;
    } else if (!isPlainDecimal(cell)) {
        wrong = QT_TRANSLATE_NOOP("vq-tl4ctl", "\"%1\" is not a decimal number such as 92.465");
    } else {
        // The cell is not NUL-terminated: the number ends at the comma or the line end.
        values.push_back(NumberText::toFloat(cell.data()));
        if (!std::isfinite(values.back()))
            wrong = QT_TRANSLATE_NOOP("vq-tl4ctl", "\"%1\" is too large for single precision");
        else if (std::fpclassify(values.back()) == FP_ZERO && !isWrittenAsZero(cell))
            wrong = QT_TRANSLATE_NOOP("vq-tl4ctl", "\"%1\" is too small for single precision");
    }
    if (wrong)
        check.add(cell.data(), Text(wrong, {FileCheck::quoted(cell)}));
}

void checkValues(FileCheck& check, std::string_view line, const CalibrationAccessory& accessory,
                 std::vector<float>& values) {
    line = withoutLineEndCr(line);
    const std::size_t expected = accessory.valueCount;
    const std::size_t count = line.empty() ? 0 : cellCount(line);
    const std::vector<std::string_view> cells = cellsOf(line, expected + 1);
    if (count != expected) {
        const char* place = count > expected ? cells.back().data() : line.data() + line.size();
        check.add(place,
                  Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The line has %1 values instead of %2"),
                       {QString::number(count), QString::number(expected)}));
    }
    for (std::size_t i = 0; i < std::min(count, expected); ++i)
        checkCell(check, cells[i], values);
}

} // namespace

std::optional<ValueFile> ValueFile::check(const InputFile& file,
                                          const CalibrationAccessory& accessory, Faults& faults) {
    FileCheck check(file, faults);
    if (!check.hasLines())
        return std::nullopt;
    ValueFile result;
    result.accessory = &accessory;
    const auto& lines = check.lines();
    if (lines.size() > serialNoLine)
        checkSerialNo(check, lines[serialNoLine], accessory, result.serialNo);
    if (lines.size() > valuesLine)
        checkValues(check, lines[valuesLine], accessory, result.values);
    else
        check.addAtLine(lines.size(),
                        Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The file ends before its fourth line: "
                                                            "two headings, the serial number and "
                                                            "the values have to be there")));
    if (lines.size() == valuesLine + 1 && !file.content.endsWith('\n'))
        check.add(lines.back().data() + lines.back().size(),
                  Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The line of the values has no line end: "
                                                      "the file may have been cut off here")));
    if (!check.finish())
        return std::nullopt;
    return result;
}

const CalibrationAccessory& ValueFile::likelyAccessory(const InputFile& file) {
    Faults none;
    const FileCheck check(file, none);
    const auto& lines = check.lines();
    const std::size_t count = lines.size() > valuesLine ? cellCount(lines[valuesLine]) : 0;
    for (const AccessoryTexts& texts : AccessoryTexts::all) {
        if (count == texts.accessory.valueCount)
            return texts.accessory;
    }
    const bool adapterSerialNo =
        lines.size() > serialNoLine && lines[serialNoLine].substr(0, 3) == "000";
    return adapterSerialNo ? CalibrationAccessory::ambientAdapter
                           : CalibrationAccessory::whitePlate;
}
