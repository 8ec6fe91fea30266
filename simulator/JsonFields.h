/**
 * Strict, exact conversion between JSON values and the fields of records.
 *
 * Every reader takes the path of its value ("instruments[0].port.name") and throws InputError with
 * that path and the reason when the value has the wrong type or is out of range. Nothing is rounded
 * into range, cut or replaced.
 */
#ifndef SIMULATOR_JSONFIELDS_H
#define SIMULATOR_JSONFIELDS_H

#include "simulator/JsonText.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvasim {

/** @throws InputError always: "path: reason". */
[[noreturn]] void refuse(const std::string& path, const std::string& reason);

/** The fields of one JSON object. Asked for field by field; `finish` then refuses what was not
   asked for. Keeps a reference to the object, which must outlive it. */
class JsonFields {
public:
    /** @throws InputError when @p object is not an object. */
    JsonFields(const Json& object, std::string path);

    /** The field, or null when it is left out. */
    const Json* find(const char* key);

    /** The field. @throws InputError when it is left out. */
    const Json& get(const char* key);

    /** The path of a field, whether there or not. */
    std::string pathOf(const char* key) const;

    /** @throws InputError when the object has a field that was not asked for. */
    void finish() const;

private:
    const Json& m_object;
    std::string m_path;
    std::vector<std::string> m_known;
};

/** An integer from @p lowest to @p highest. */
std::int64_t readInteger(const Json& value, const std::string& path, std::int64_t lowest,
                         std::int64_t highest);

/** An integer that fits the type. */
std::int32_t readInt32(const Json& value, const std::string& path);
std::uint32_t readUint32(const Json& value, const std::string& path);
std::uint8_t readUint8(const Json& value, const std::string& path);

bool readBool(const Json& value, const std::string& path);
std::string readString(const Json& value, const std::string& path);

/** One single-precision value: a number, or its bit pattern as "0x" and eight hexadecimal digits.
    A number is taken to the nearest single-precision value; one that would become infinite,
    subnormal or, not being zero, zero is refused. */
float readFloat(const Json& value, const std::string& path);

/** A number where a number carries the value exactly, the bit pattern for everything else:
   infinities, not-a-numbers with their payload, subnormal values and negative zero. */
Json floatToJson(float value);

/** Bytes as an object of one field: {"hex": two digits a byte, exactly @p size bytes}, {"fill": one
    value for all bytes} or {"seed": a number that a repeatable pattern is made from}. */
void readBytes(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size);

/** {"fill": n} where all bytes are the same, {"hex": "…"} otherwise. */
Json bytesToJson(const std::uint8_t* bytes, std::size_t size);

/** The pattern of {"seed": seed}. */
void fillFromSeed(std::uint64_t seed, std::uint8_t* bytes, std::size_t size);

/** A text field: a string without NUL of up to @p size bytes in UTF-8, the rest of the field then
    zero (a string of @p size bytes leaves no NUL), or the whole field as `readBytes` takes it. */
void readText(const Json& value, const std::string& path, char* field, std::size_t size);

/** A string where that is exact, {"hex": "…"} where the field has bytes that are not UTF-8 or that
    lie behind its first NUL. */
Json textToJson(const char* field, std::size_t size);

/** Four octets as "192.168.0.10". */
void readAddress(const Json& value, const std::string& path, std::uint8_t (&octets)[4]);
Json addressToJson(const std::uint8_t (&octets)[4]);

/** Eight decimal digits as a string, or {"hex": "…"} for bytes that are no binary-coded decimal. */
void readSerialDigits(const Json& value, const std::string& path, std::uint8_t (&bytes)[4]);
Json serialDigitsToJson(const std::uint8_t (&bytes)[4]);

/** Lower-case hexadecimal, two digits a byte, with @p separator between the bytes. */
std::string toHex(const std::uint8_t* bytes, std::size_t size, std::string_view separator = {});

/** Reads exactly @p size bytes of hexadecimal with @p separator between them.
    @return false when the text is anything else; the bytes are then not to be used. */
bool fromHex(std::string_view text, std::string_view separator, std::uint8_t* bytes,
             std::size_t size);

} // namespace kvasim

#endif
