#ifndef FILES_CFILEIO_H
#define FILES_CFILEIO_H

#include "instrument/KvaSdk.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/**
 * The tool's two file formats: network settings (INI) and calibration values (CSV). Without state;
 * created on the stack for each file operation.
 *
 * Paths are in the local 8-bit encoding. Only regular files are read and written. A read error, or
 * a change of the file while it is read, has the same effect as a file that cannot be opened:
 * nothing is read from it. Throws only for lack of memory. Errors are reported only by the results,
 * except for the message of the CSV readers about the serial number line.
 */
class CFileIO {
public:
    /** Size of the buffer that `ReadProfileString` writes to, in bytes, its NUL included. */
    static constexpr std::size_t profileValueSize = 512;

    CFileIO() = default;
    virtual ~CFileIO();

    /** Creates or empties the regular file and writes the settings as eleven lines, the security
       key in clear text.
        @return whether the file could be opened for writing; a later failure to write does not
                change it. */
    bool WriteNetworkIni(const char* path, const KVA_NETWORKINFO* info);

    /** Reads the eight settings of the section "Network".
        @param info  zeroed by the caller: the fields from a refused key on keep their bytes (all
                     of them do when the file cannot be opened), and texts are copied without their
                     NUL
        @return false when the file cannot be opened, a key is missing or has no value, any value is
                longer than 510 bytes, the SSID than 32 or the key than 64. Numbers are read as
                `atoi` reads them and are not checked. */
    bool ReadNetworkIni(const char* path, KVA_NETWORKINFO* info);

    /** Looks up the value of @p key in @p section, both compared without regard to ASCII letter
        case. Once the section was seen, the keys of later sections count as well; the first match
        wins.
        @param defaultValue  copied when the key is not found or an argument is null (not when the
                             file cannot be opened: @p out then stays unchanged); may be null
        @param out           `profileValueSize` bytes, or null to get only the default's length
        @param size          ignored
        @return the length in bytes of the text in @p out (of the default when the file cannot be
                opened). A value that does not fit is cut to `profileValueSize` - 1 bytes, a value
                in a line beyond 64 KiB is padded to that length with blanks, and a NUL byte ends
                the value. */
    static int ReadProfileString(const char* section, const char* key, const char* defaultValue,
                                 char* out, std::size_t size, const char* path);

    /** Reads a white calibration plate value file: the serial number, 1 to 8 hexadecimal digits on
        the third line, and 38 values on the fourth. Only these two fields of @p record change, each
        only when its line is valid; an empty third line and missing lines leave them unchanged.
        @return false when the file cannot be opened, the serial line is longer than 8 (reported on
                standard output), the values are not exactly 38 or their line is longer than
                1 MiB. */
    bool GetCalRefDataFromFile(const char* path, KVA_JIG_CALREFDATA* record);

    /** The same for an ambient light adapter and its 75 values. A serial line that does not have
        exactly 8 characters is reported on standard output and leaves its field unchanged, but the
        read succeeds. */
    bool GetAmbAdpCalRefDataFromFile(const char* path, KVA_JIG_CALREFDATA* record);

    /** The two decimal digits of a binary-coded byte, 0 to 99; nibbles above 9 are not refused and
        give up to 165. */
    static unsigned int BcdToDec(unsigned char byte);

    /** The non-empty pieces of @p text between delimiters. */
    static std::vector<std::string> SplitString(std::string_view text, char delimiter);
};

#endif
