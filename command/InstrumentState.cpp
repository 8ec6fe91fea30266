#include "command/InstrumentState.h"

#include "instrument/ResultNames.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

/** The records are filled with these before the first and the second reading. They differ in every
    bit, and no record consists of one of them throughout. */
constexpr int fillPatterns[] = {0x5A, 0xA5};

template <typename Record>
Record filledWith(int pattern) {
    Record record;
    std::memset(&record, pattern, sizeof record);
    return record;
}

template <typename Record>
bool hasSameBytes(const Record& left, const Record& right) {
    // Byte by byte on purpose: -0.0 is not 0.0 here, and a NaN equals itself.
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c)
    return std::memcmp(&left, &right, sizeof left) == 0;
}

template <std::size_t Size>
void copyText(const char (&from)[Size], char (&to)[Size]) {
    std::memcpy(to, from, ::strnlen(from, Size));
}

/** Reads each record once. Empty when all could be read. */
Text readOnce(InstrumentAccess& access, int pattern, InstrumentState& state) {
    auto device = filledWith<KVA_DEVICEINFO>(pattern);
    auto options = filledWith<KVA_JIG_ACTIONOPTIONFACTORYDATA>(pattern);
    auto network = filledWith<KVA_NETWORKINFO>(pattern);
    state.calibration = filledWith<KVA_JIG_CALREFDATA>(pattern);
    state.powerOffMode = static_cast<std::uint8_t>(pattern);

    CallResult result = access.read(device);
    if (!result.failed())
        result = access.read(options);
    // As in the tool, network settings are not read from an instrument without a module.
    const bool hasNetwork = !result.failed() && options.wifiModuleEnable != 0;
    if (hasNetwork)
        result = access.read(network);
    if (!result.failed())
        result = access.readPowerOffMode(state.powerOffMode);
    if (!result.failed())
        result = access.read(state.calibration);
    if (result.failed())
        return callFailure(result);

    std::memset(device.reserved1, 0, sizeof device.reserved1);
    std::memset(device.reserved2, 0, sizeof device.reserved2);
    state.device = device;
    state.wirelessModule = options.wifiModuleEnable;
    state.network.reset();
    if (hasNetwork)
        state.network = normalized(network);
    return {};
}

/** The name of the first call whose two answers differ; null when none do. */
const char* differingCall(const InstrumentState& first, const InstrumentState& second) {
    if (!hasSameBytes(first.device, second.device))
        return "KVA_GetDeviceInfo";
    if (first.wirelessModule != second.wirelessModule)
        return "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA";
    if (!isSame(first.network, second.network))
        return "KVA_GetNetworkInfo";
    if (first.powerOffMode != second.powerOffMode)
        return "KVA_GetShutdownTime";
    if (!hasSameBytes(first.calibration, second.calibration))
        return "KVA_JIG_GetFactoryCalib_CALREFDATA";
    return nullptr;
}

Text differingAnswers(const char* function) {
    return Text(
        QT_TRANSLATE_NOOP("vq-tl4ctl", "Two answers of %1 differ, or it left bytes unwritten."),
        {QString::fromLatin1(function)});
}

Text otherIdentity(std::int32_t serialNumber) {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                  "The instrument that is listed as %1 says that it has another "
                                  "serial number."),
                {serialText(serialNumber)});
}

} // namespace

bool isSameIdentity(const InstrumentState& left, const InstrumentState& right) {
    return hasSameBytes(left.device, right.device);
}

bool isSame(const KVA_NETWORKINFO& left, const KVA_NETWORKINFO& right) {
    return hasSameBytes(left, right);
}

bool isSame(const std::optional<KVA_NETWORKINFO>& left,
            const std::optional<KVA_NETWORKINFO>& right) {
    return left.has_value() == right.has_value() && (!left || hasSameBytes(*left, *right));
}

bool isSame(const KVA_JIG_CALREFDATA& left, const KVA_JIG_CALREFDATA& right) {
    return hasSameBytes(left, right);
}

KVA_NETWORKINFO normalized(const KVA_NETWORKINFO& info) {
    KVA_NETWORKINFO result = info;
    std::memset(result.SSID, 0, sizeof result.SSID);
    std::memset(result.EncryptKey, 0, sizeof result.EncryptKey);
    std::memset(result.padding, 0, sizeof result.padding);
    copyText(info.SSID, result.SSID);
    copyText(info.EncryptKey, result.EncryptKey);
    return result;
}

QString resultText(std::int32_t code) {
    const std::string name = resultName(code);
    if (name.empty())
        return QString::number(code);
    return QString::fromStdString(name);
}

Text callFailure(const CallResult& result) {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 answered %2."),
                {QString::fromLatin1(result.function), resultText(result.code)});
}

QString serialText(std::int32_t serialNumber) {
    return QString::number(serialNumber).rightJustified(8, QLatin1Char('0'));
}

Text openInstrument(InstrumentAccess& access, std::int32_t serialNumber) {
    const InstrumentAccess::Opened opened = access.open(serialNumber);
    switch (opened.state) {
    case InstrumentAccess::Opening::Open:
        break;
    case InstrumentAccess::Opening::CallFailed:
        return callFailure(opened.last);
    case InstrumentAccess::Opening::NotListed:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is not attached."),
                    {serialText(serialNumber)});
    case InstrumentAccess::Opening::ListedTwice:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is listed more than once."),
                    {serialText(serialNumber)});
    case InstrumentAccess::Opening::OtherIdentity:
        return otherIdentity(serialNumber);
    }
    return {};
}

Text readTwice(InstrumentAccess& access, std::int32_t serialNumber, InstrumentState& state) {
    InstrumentState first;
    Text problem = readOnce(access, fillPatterns[0], first);
    if (!problem.isEmpty())
        return problem;
    Text secondProblem = readOnce(access, fillPatterns[1], state);
    if (!secondProblem.isEmpty())
        return secondProblem;
    const char* function = differingCall(first, state);
    if (function != nullptr)
        return differingAnswers(function);
    const bool isSame = state.device.serialNumber == static_cast<std::uint32_t>(serialNumber);
    if (!isSame)
        return otherIdentity(serialNumber);
    return {};
}

Text requireCalibration(InstrumentAccess& access, const KVA_JIG_CALREFDATA& expected) {
    KVA_JIG_CALREFDATA record = expected;
    auto* bytes = reinterpret_cast<std::uint8_t*>(&record);
    std::transform(bytes, bytes + sizeof record, bytes,
                   [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
    const CallResult result = access.read(record);
    if (result.failed())
        return callFailure(result);
    if (!isSame(record, expected))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "The calibration record that the instrument answers is not "
                                      "the expected one."));
    return {};
}

bool isBlank(const KVA_JIG_CALREFDATA& record) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&record);
    const auto isAll = [&](std::uint8_t value) {
        return std::all_of(bytes, bytes + sizeof record,
                           [value](std::uint8_t byte) { return byte == value; });
    };
    return isAll(0x00) || isAll(0xFF);
}
