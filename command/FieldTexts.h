#ifndef COMMAND_FIELDTEXTS_H
#define COMMAND_FIELDTEXTS_H

#include "instrument/KvaSdk.h"

#include <QDateTime>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <string_view>

/** How the fields of an instrument are written, in snapshots, differences and on the terminal. */
namespace FieldTexts {

/** The shortest decimal that reads as the same single-precision number; its bit pattern, as
    "0x7fc00001", where no decimal does. */
QString value(float value);
/** The same as a JSON number, or as a text where no number does. */
QJsonValue jsonValue(float value);

/** The eight digits of a serial number in binary-coded decimal; letters where it is none. */
QString accessorySerial(const std::uint8_t (&serialNo)[4]);

/** "off", "15", "30", "60" minutes; "mode 7" for a mode without a meaning. */
QString powerOff(std::uint8_t mode);
/** The words that `--power-off` takes, in the order of the modes. */
const QStringList& powerOffWords();

/** "off", "on"; the number where it is neither. */
QString onOff(std::uint32_t flag);
QString address(const std::uint8_t (&octets)[4]);
/** Reads four numbers from 0 to 255, of one to three digits. @param octets  four
    @return null, or what is no such number: a place in @p text or its end */
const char* parseAddress(std::string_view text, std::uint8_t* octets);
/** The field up to its NUL; its bytes, as "0x…", where they are no UTF-8 or could not be printed.
 */
QString text(const char* field, std::size_t size);

QString firmware(const KVA_DEVICEINFO& device);
QString macAddress(const KVA_DEVICEINFO& device);
QString hex(const void* bytes, std::size_t size);

/** The local time with its distance from UTC: "2026-11-20 18:30:00+09:00". */
QString time(const QDateTime& time);

} // namespace FieldTexts

#endif
