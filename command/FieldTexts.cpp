#include "command/FieldTexts.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

namespace {

/** Whether reading @p number as a double, as JSON does, and rounding it gives the same bits. */
bool readsAs(const QByteArray& number, float value) {
    const auto read = static_cast<float>(number.toDouble());
    // By bits: -0.0 is not 0.0 here.
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c)
    return std::memcmp(&read, &value, sizeof value) == 0;
}

/** In the order of the modes. */
constexpr std::string_view powerOffTexts[] = {"off", "15", "30", "60"};

/** Empty if there is none. */
QByteArray shortestDecimal(float value) {
    if (!std::isfinite(value))
        return {};
    for (int digits = 1; digits <= std::numeric_limits<double>::max_digits10; ++digits) {
        QByteArray number = QByteArray::number(static_cast<double>(value), 'g', digits);
        if (readsAs(number, value))
            return number;
    }
    return {};
}

QString bitPattern(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return QStringLiteral("0x%1").arg(bits, 8, 16, QLatin1Char('0'));
}

} // namespace

QString FieldTexts::value(float value) {
    const QByteArray number = shortestDecimal(value);
    if (number.isEmpty())
        return bitPattern(value);
    return QString::fromLatin1(number);
}

QJsonValue FieldTexts::jsonValue(float value) {
    // Qt's JSON writer has no -0.
    const bool isNegativeZero = value == 0.0F && std::signbit(value);
    const QByteArray number = shortestDecimal(value);
    if (number.isEmpty() || isNegativeZero)
        return bitPattern(value);
    return number.toDouble();
}

QString FieldTexts::accessorySerial(const std::uint8_t (&serialNo)[4]) {
    return hex(serialNo, sizeof serialNo);
}

const QStringList& FieldTexts::powerOffWords() {
    static const QStringList words = [] {
        QStringList result;
        for (const std::string_view word : powerOffTexts)
            result.append(QString::fromLatin1(word.data(), static_cast<int>(word.size())));
        return result;
    }();
    return words;
}

std::optional<std::uint8_t> FieldTexts::powerOffMode(std::string_view word) {
    const auto* const found = std::find(std::begin(powerOffTexts), std::end(powerOffTexts), word);
    if (found == std::end(powerOffTexts))
        return std::nullopt;
    return static_cast<std::uint8_t>(found - std::begin(powerOffTexts));
}

QString FieldTexts::powerOff(std::uint8_t mode) {
    if (mode < powerOffWords().size())
        return powerOffWords()[mode];
    return QStringLiteral("mode %1").arg(mode);
}

QString FieldTexts::onOff(std::uint32_t flag) {
    if (flag > 1)
        return QString::number(flag);
    return flag == 1 ? QStringLiteral("on") : QStringLiteral("off");
}

QString FieldTexts::address(const std::uint8_t (&octets)[4]) {
    return QStringLiteral("%1.%2.%3.%4")
        .arg(octets[0])
        .arg(octets[1])
        .arg(octets[2])
        .arg(octets[3]);
}

const char* FieldTexts::parseAddress(std::string_view text, std::uint8_t* octets) {
    const char* place = text.data();
    const char* const end = place + text.size();
    for (int i = 0; i < 4; ++i) {
        const char* const begin = place;
        int number = 0;
        while (place < end && place - begin < 4 && *place >= '0' && *place <= '9')
            number = number * 10 + (*place++ - '0');
        // The fourth number must end the text.
        const bool isWhole = place == end || (i < 3 && *place == '.');
        if (place == begin || place - begin > 3 || number > 255 || !isWhole)
            return begin;
        octets[i] = static_cast<std::uint8_t>(number);
        if (place < end)
            ++place;
    }
    return nullptr;
}

QString FieldTexts::text(const char* field, std::size_t size) {
    const QByteArray bytes(field, static_cast<int>(::strnlen(field, size)));
    QString text = QString::fromUtf8(bytes);
    const bool isPrintable = std::all_of(text.begin(), text.end(), [](QChar character) {
        return character.isPrint() || character.isSurrogate();
    });
    // A text that looks like bytes is written as bytes, so that the two differ.
    const bool isText = text.toUtf8() == bytes && isPrintable && !bytes.startsWith("0x");
    if (isText)
        return text;
    return QStringLiteral("0x") + QString::fromLatin1(bytes.toHex());
}

QString FieldTexts::firmware(const KVA_DEVICEINFO& device) {
    return QString::asprintf("%u.%02d.%04d", device.firmVersionMajor, device.firmVersionMinor,
                             device.firmVersionBuild);
}

QString FieldTexts::macAddress(const KVA_DEVICEINFO& device) {
    const QByteArray bytes(reinterpret_cast<const char*>(device.macAddress),
                           sizeof device.macAddress);
    return QString::fromLatin1(bytes.toHex(':').toUpper());
}

QString FieldTexts::hex(const void* bytes, std::size_t size) {
    return QString::fromLatin1(
        QByteArray(static_cast<const char*>(bytes), static_cast<int>(size)).toHex());
}

QString FieldTexts::time(const QDateTime& time) {
    const QDateTime here = time.toOffsetFromUtc(time.toLocalTime().offsetFromUtc());
    return here.toString(Qt::ISODate).replace(QLatin1Char('T'), QLatin1Char(' '));
}
