#ifndef COMMAND_FIELDTEXTS_H
#define COMMAND_FIELDTEXTS_H

#include "instrument/KvaSdk.h"

#include <QDateTime>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/** The texts of an instrument's fields, in snapshots, differences and on the terminal. */
namespace FieldTexts {

/** The shortest decimal that gives the same single-precision number when read; if there is none,
    the bit pattern, such as "0x7fc00001". */
QString value(float value);
/** The same as a JSON number, or as a string if no number is exact. */
QJsonValue jsonValue(float value);

/** The eight digits of a serial number in binary-coded decimal; letters for other half-bytes. */
QString accessorySerial(const std::uint8_t (&serialNo)[4]);

/** "off", "15", "30", "60" minutes; "mode 7" for an unknown mode. */
QString powerOff(std::uint8_t mode);
/** The words that `--power-off` takes, in the order of the modes. */
const QStringList& powerOffWords();
/** The mode of such a word. */
std::optional<std::uint8_t> powerOffMode(std::string_view word);

/** "off", "on"; otherwise the number. */
QString onOff(std::uint32_t flag);
QString address(const std::uint8_t (&octets)[4]);
/** Reads four numbers from 0 to 255, of one to three digits. @param octets  four
    @return null, or the place of the error in @p text, which may be its end */
const char* parseAddress(std::string_view text, std::uint8_t* octets);
/** The field up to its NUL; its bytes, as "0x…", if they are not UTF-8 or not printable.
 */
QString text(const char* field, std::size_t size);

QString firmware(const KVA_DEVICEINFO& device);
QString macAddress(const KVA_DEVICEINFO& device);
QString hex(const void* bytes, std::size_t size);

/** The local time with its UTC offset: "2026-11-20 18:30:00+09:00". */
QString time(const QDateTime& time);

} // namespace FieldTexts

#endif
