#include "files/BoundedLineReader.h"
#include "files/CFileIO.h"
#include "files/IniLine.h"
#include "files/NumberText.h"
#include "files/Pieces.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// ---- Looking up one key

/** Copies the text up to its first NUL, cut to fit into `CFileIO::profileValueSize` bytes.
    @return the length copied */
int copyValue(std::string_view text, char* out) {
    text = text.substr(0, text.find('\0'));
    text = text.substr(0, CFileIO::profileValueSize - 1);
    std::copy(text.begin(), text.end(), out);
    out[text.size()] = '\0';
    return static_cast<int>(text.size());
}

/** The value of a truncated line, whose length is unknown: padded, so that it counts as too long.
   An empty value stays empty, which counts as missing. */
std::string tooLong(std::string_view value) {
    std::string filled(value);
    if (!filled.empty())
        filled.resize(std::max(filled.size(), CFileIO::profileValueSize - 1), ' ');
    return filled;
}

enum class Lookup { found, missing, unreadable };

/** Looks up a key from the position of @p reader. Copies its value to @p out by `copyValue`; @p out
    changes only with the result `Lookup::found`. */
Lookup lookUp(BoundedLineReader& reader, const char* section, const char* key, char* out) {
    bool inSection = false;
    bool found = false;
    std::string line;
    std::string_view value;
    while (!found && reader.next(line)) {
        if (line.empty())
            continue;
        if (line.front() == '[')
            inSection = inSection || IniLine::beginsSection(line, section);
        else
            found = inSection && IniLine::assigns(line, key, value);
    }
    if (reader.failed())
        return Lookup::unreadable;
    if (!found)
        return Lookup::missing;
    copyValue(reader.wasCut() ? tooLong(value) : std::string(value), out);
    return Lookup::found;
}

// ---- Converting one value

/** Stores the value, `CFileIO::profileValueSize` bytes with its NUL, in its field.
    @return false when it does not fit */
using StoreValue = bool (*)(const char* value, KVA_NETWORKINFO& info);

template <std::uint32_t KVA_NETWORKINFO::*Field>
bool storeFlag(const char* value, KVA_NETWORKINFO& info) {
    info.*Field = static_cast<std::uint32_t>(NumberText::toInt32(value));
    return true;
}

template <std::uint8_t (KVA_NETWORKINFO::*Field)[4]>
bool storeAddress(const char* value, KVA_NETWORKINFO& info) {
    std::size_t count = 0;
    forEachPiece(value, '.', [&](std::string_view piece) {
        if (count == 4)
            return;
        // The piece is not NUL-terminated: the number ends at a point or at the value's NUL.
        const auto number = static_cast<std::uint32_t>(NumberText::toInt32(piece.data()));
        (info.*Field)[count++] = static_cast<std::uint8_t>(number & 0xFFU);
    });
    return true;
}

template <std::size_t Size, char (KVA_NETWORKINFO::*Field)[Size]>
bool storeText(const char* value, KVA_NETWORKINFO& info) {
    const std::size_t length = std::strlen(value);
    if (length > Size - 1)
        return false;
    std::memcpy(info.*Field, value, length);
    return true;
}

struct NetworkKey {
    const char* name;
    StoreValue store;
};

/** In the order of the look-ups, which is that of the file. */
constexpr NetworkKey networkKeys[] = {
    {"DHCPUse", storeFlag<&KVA_NETWORKINFO::DHCPUse>},
    {"IPAddress", storeAddress<&KVA_NETWORKINFO::IPAddress>},
    {"SubnetMask", storeAddress<&KVA_NETWORKINFO::SubnetMask>},
    {"DefaultGateway", storeAddress<&KVA_NETWORKINFO::DefaultGateway>},
    {"SSID", storeText<sizeof(KVA_NETWORKINFO::SSID), &KVA_NETWORKINFO::SSID>},
    {"EncryptKey", storeText<sizeof(KVA_NETWORKINFO::EncryptKey), &KVA_NETWORKINFO::EncryptKey>},
    {"DNS", storeAddress<&KVA_NETWORKINFO::DNS>},
    {"APConnectUse", storeFlag<&KVA_NETWORKINFO::APConnectUse>},
};

// ---- Writing the lines

using OpenFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/** Creates or empties the regular file at @p path; null when that fails. */
OpenFile createFile(const char* path) {
    OpenFile none(nullptr, std::fclose);
    // No O_TRUNC, since this may not be a regular file. O_NONBLOCK, since opening a pipe that
    // nobody reads would otherwise never return.
    const int descriptor =
        ::open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return none;
    struct stat status = {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
        ::ftruncate(descriptor, 0) == 0) {
        if (std::FILE* file = ::fdopen(descriptor, "w"))
            return {file, std::fclose};
    }
    ::close(descriptor);
    return none;
}

std::string numberLine(const char* key, std::uint32_t value) {
    return key + std::to_string(static_cast<std::int32_t>(value));
}

std::string addressLine(const char* key, const std::uint8_t (&octets)[4]) {
    std::string line = key + std::to_string(octets[0]);
    for (int i = 1; i < 4; ++i)
        line += '.' + std::to_string(octets[i]);
    return line;
}

template <std::size_t Size>
std::string textLine(const char* key, const char (&text)[Size]) {
    return key + std::string(text, ::strnlen(text, Size));
}

} // namespace

bool CFileIO::WriteNetworkIni(const char* path, const KVA_NETWORKINFO* info) {
    if (!path || !info)
        return false;
    const OpenFile file = createFile(path);
    if (!file)
        return false;
    const std::string lines[] = {
        "[Network]",
        "; 0:eDHCP_OFF, 1:eDHCP_ON",
        numberLine("DHCPUse=", info->DHCPUse),
        addressLine("IPAddress=", info->IPAddress),
        addressLine("SubnetMask=", info->SubnetMask),
        addressLine("DefaultGateway=", info->DefaultGateway),
        textLine("SSID=", info->SSID),
        textLine("EncryptKey=", info->EncryptKey),
        addressLine("DNS=", info->DNS),
        "; 0:eAPConnect_OFF, 1:eAPConnect_ON",
        numberLine("APConnectUse=", info->APConnectUse),
    };
    for (const std::string& line : lines) {
        std::fwrite(line.data(), 1, line.size(), file.get());
        std::fputc('\n', file.get());
        std::fflush(file.get());
    }
    return true;
}

bool CFileIO::ReadNetworkIni(const char* path, KVA_NETWORKINFO* info) {
    if (!path || !info)
        return false;
    KVA_NETWORKINFO taken = *info;
    struct stat status = {};
    for (const NetworkKey& key : networkKeys) {
        BoundedLineReader reader(path, IniLine::maxSize);
        // The file was changed between two keys: the settings would be a mixture of two files.
        if (&key != networkKeys && !isSameContent(reader.status(), status))
            return false;
        status = reader.status();
        char value[profileValueSize] = {};
        if (lookUp(reader, "Network", key.name, value) == Lookup::unreadable)
            return false;
        const std::size_t length = std::strlen(value);
        // A value that fills the buffer may have been truncated, so it is refused.
        if (length == 0 || length == profileValueSize - 1 || !key.store(value, taken)) {
            *info = taken;
            return false;
        }
    }
    *info = taken;
    return true;
}

int CFileIO::ReadProfileString(const char* section, const char* key, const char* defaultValue,
                               char* out, std::size_t /*size*/, const char* path) {
    const std::string_view fallback = defaultValue ? defaultValue : "";
    if (!out)
        return static_cast<int>(fallback.size());
    if (!section || !key || !path)
        return copyValue(fallback, out);
    BoundedLineReader reader(path, IniLine::maxSize);
    switch (lookUp(reader, section, key, out)) {
    case Lookup::unreadable:
        return static_cast<int>(fallback.size());
    case Lookup::missing:
        return copyValue(fallback, out);
    case Lookup::found:
        break;
    }
    return static_cast<int>(std::strlen(out));
}
