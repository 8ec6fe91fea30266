#include "command/SettingsFile.h"

#include "command/FieldTexts.h"
#include "command/FileCheck.h"
#include "files/CFileIO.h"
#include "files/IniLine.h"

#include <QtGlobal>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::string_view section = "Network";
constexpr std::string_view digits = "0123456789";

// ---- Converting one value

/** Stores a value, text without NUL or CR, in its field, or adds a fault. */
using StoreValue = void (*)(FileCheck& check, const char* key, std::string_view value,
                            KVA_NETWORKINFO& info);

/** The number at the beginning of the value, as the tool reads it: blanks, a sign, digits; the rest
    is ignored. Unlike in the tool, digits are required, and the number must not be out of range. */
template <std::uint32_t KVA_NETWORKINFO::*Field>
void storeFlag(FileCheck& check, const char* key, std::string_view value, KVA_NETWORKINFO& info) {
    std::string_view text = value;
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    text = text.substr(0, text.find_first_not_of(digits));
    const bool number = !text.empty();
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    if (number && (text.empty() || (text == "1" && !negative)))
        info.*Field = text.empty() ? 0 : 1;
    else
        check.add(value.data(),
                  Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 has to be 0 or 1, not \"%2\""),
                       {QString::fromLatin1(key), FileCheck::quoted(value)}));
}

template <std::uint8_t (KVA_NETWORKINFO::*Field)[4]>
void storeAddress(FileCheck& check, const char* key, std::string_view value,
                  KVA_NETWORKINFO& info) {
    const char* wrong = FieldTexts::parseAddress(value, info.*Field);
    if (wrong != nullptr)
        check.add(wrong,
                  Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 has to be four numbers from 0 to "
                                                      "255, such as 192.168.0.10, not \"%2\""),
                       {QString::fromLatin1(key), FileCheck::quoted(value)}));
}

template <std::size_t Size, char (KVA_NETWORKINFO::*Field)[Size]>
void storeText(FileCheck& check, const char* key, std::string_view value, KVA_NETWORKINFO& info) {
    if (value.size() < Size)
        std::memcpy(info.*Field, value.data(), value.size());
    else // the message does not quote the text: it may be the security key
        check.add(value.data(),
                  Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 has %2 bytes, at most %3 are allowed"),
                       {QString::fromLatin1(key), QString::number(value.size()),
                        QString::number(Size - 1)}));
}

struct NetworkKey {
    const char* name;
    StoreValue store;
};

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

// ---- Finding the values

/** The index of the line that begins the section; the number of lines if there is none. */
std::size_t sectionLine(const std::vector<std::string_view>& lines) {
    const auto found = std::find_if(lines.begin(), lines.end(), [](std::string_view line) {
        return IniLine::beginsSection(line, section);
    });
    return static_cast<std::size_t>(found - lines.begin());
}

/** Adds the fault that the section is missing, at the line where it should begin. */
void addMissingSection(FileCheck& check) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const auto& lines = check.lines();
    if (!lines.empty() && lines[0].substr(0, byteOrderMark.size()) == byteOrderMark &&
        IniLine::beginsSection(lines[0].substr(byteOrderMark.size()), section)) {
        check.addAtLine(0, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "A byte-order mark stands before "
                                                               "[Network]: save the file without "
                                                               "it")));
        return;
    }
    check.addAtLine(0, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The file has no line that is "
                                                           "[Network] alone, without blanks or "
                                                           "comments")));
}

/** The first line of @p key with a value, and that value. Nothing if there is none. */
std::string_view findLine(const FileCheck& check, std::size_t begin, const char* key,
                          std::string_view& value) {
    for (std::size_t i = begin; i < check.lines().size(); ++i) {
        const std::string_view line = check.lines()[i];
        if (IniLine::assigns(line.substr(0, IniLine::maxSize), key, value))
            return line;
    }
    return {};
}

void checkKey(FileCheck& check, std::size_t begin, const NetworkKey& key, KVA_NETWORKINFO& info) {
    constexpr std::size_t longest = CFileIO::profileValueSize - 2;
    std::string_view value;
    const std::string_view line = findLine(check, begin, key.name, value);
    if (line.empty()) {
        check.addAtLine(begin,
                        Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The section has no %1 with a value"),
                             {QString::fromLatin1(key.name)}));
    } else if (value.empty()) {
        check.add(line.data(), Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 has no value"),
                                    {QString::fromLatin1(key.name)}));
    } else if (line.size() > IniLine::maxSize || value.size() > longest) {
        check.add(value.data(), Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The value of %1 is too long"),
                                     {QString::fromLatin1(key.name)}));
    } else if (check.isText(value)) {
        key.store(check, key.name, value, info);
    }
}

} // namespace

std::optional<KVA_NETWORKINFO> SettingsFile::check(const InputFile& file, Faults& faults) {
    FileCheck check(file, faults);
    if (!check.hasLines())
        return std::nullopt;
    const std::size_t begin = sectionLine(check.lines());
    if (begin == check.lines().size()) {
        addMissingSection(check);
        return std::nullopt;
    }
    KVA_NETWORKINFO info = {};
    for (const NetworkKey& key : networkKeys)
        checkKey(check, begin, key, info);
    if (!check.finish())
        return std::nullopt;
    return info;
}
