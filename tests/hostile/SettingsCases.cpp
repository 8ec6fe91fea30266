#include "tests/hostile/HostileCases.h"

namespace {

using Cases = QVector<SettingsCase>;

SettingsCase loaded(const QByteArray& name, const QByteArray& content,
                    const NetworkBytes& record = sampleNetwork()) {
    return {{name, content, HostileCase::None, "files", "hostile.ini"}, true, record};
}

/** Refused at its first key, or for want of it. */
SettingsCase refused(const QByteArray& name, const QByteArray& content,
                     const NetworkBytes& record = {}) {
    return {{name, content, HostileCase::None, "files", "hostile.ini"}, false, record};
}

SettingsCase trick(const QByteArray& name, HostileCase::Trick trick) {
    SettingsCase c = refused(name, sampleNetworkIni());
    c.trick = trick;
    return c;
}

/** What is read before that key. */
NetworkBytes upTo(const char* key) {
    return sampleNetwork().clearFrom(key);
}

void addTricks(Cases& cases) {
    cases += {trick("directory", HostileCase::Folder), trick("unreadable", HostileCase::Unreadable),
              trick("disappears", HostileCase::Gone), trick("2 GiB of zeros", HostileCase::Zeros)};
    for (const HostileCase& odd : oddPlaces(".ini")) {
        cases += loaded(odd.name, sampleNetworkIni());
        cases.last().folder = odd.folder;
        cases.last().file = odd.file;
    }
}

void addContents(Cases& cases) {
    const QByteArray file = sampleNetworkIni();
    cases += {
        refused("empty", ""),
        refused("one byte: bracket", "["),
        refused("one byte: line end", "\n"),
        refused("one byte: NUL", QByteArray(1, '\0')),
        refused("UTF-16: low byte first", "\xFF\xFE" + utf16(file, true)),
        refused("UTF-16: low byte first, no mark", utf16(file, true)),
        refused("UTF-16: high byte first", "\xFE\xFF" + utf16(file, false)),
        refused("byte-order mark", "\xEF\xBB\xBF" + file),
        loaded("byte-order mark: alone on the first line", "\xEF\xBB\xBF\n" + file),
        refused("carriage returns alone", iniWith("\n", "\r")),
    };
}

// A NUL ends the value that it stands in; anywhere else it is a byte like others.
void addNulBytes(Cases& cases) {
    const auto nul = [](const char* text) { return QByteArray(text).replace('@', '\0'); };
    cases += {
        refused("NUL bytes: behind the header", iniWith("[Network]", nul("[Network]@"))),
        refused("NUL bytes: before the header", iniWith("[Network]", nul("@[Network]"))),
        refused("NUL bytes: in a key", iniWith("DHCPUse", nul("DHCP@Use"))),
        refused("NUL bytes: nothing but one as value", iniWith("Lab 5", nul("@")), upTo("SSID")),
        loaded("NUL bytes: in the SSID", iniWith("Lab 5", nul("La@b 5")),
               sampleNetwork().ssid(QByteArray("La\0\0\0", 5))),
        loaded("NUL bytes: in a number", iniWith("IPAddress=192", nul("IPAddress=19@2")),
               sampleNetwork().ipAddress("13000000")),
        loaded("NUL bytes: between the lines", iniWith("SSID=", nul("@@@\nSSID="))),
        loaded("NUL bytes: in a comment", iniWith("; 0:", nul(";@0:"))),
    };
}

// The bytes go into the record as they are. Second bytes of Shift-JIS may be '\' or '['.
void addShiftJis(Cases& cases) {
    const QByteArray room("\x91\xAA\x92\xE8\x8E\xBA");  // 測定室
    const QByteArray traps("\x83\x5C\x95\x5C\x81\x5B"); // ソ表ー
    cases += {
        loaded("Shift-JIS: SSID", iniWith("Lab 5", room), sampleNetwork().ssid(room)),
        loaded("Shift-JIS: SSID with second bytes of ASCII", iniWith("Lab 5", traps),
               sampleNetwork().ssid(traps)),
        loaded("Shift-JIS: comment", iniWith("; 0:eDHCP_OFF", "; " + traps)),
        refused("Shift-JIS: header", iniWith("[Network]", "[" + room + "]")),
        loaded("Shift-JIS: digits of full width", iniWith("IPAddress=192", "IPAddress=\x82\x50"),
               sampleNetwork().ipAddress("00a8000a")),
    };
}

// 511 bytes fill the buffer that a value is read into, so it may have been cut: it is refused.
void addLongValues(Cases& cases) {
    for (const int length : {511, 512, 513}) {
        const auto row = [length](const char* what) {
            return "511 to 513 bytes: " + QByteArray(what) + ' ' + QByteArray::number(length);
        };
        const QByteArray address = "192.168.0.10";
        const QByteArray zeros(length - address.size(), '0');
        cases += {
            refused(row("SSID of"), iniWith("Lab 5", QByteArray(length, 's')), upTo("SSID")),
            refused(row("key of"), iniWith("pass word=1", QByteArray(length, 'k')),
                    upTo("EncryptKey")),
            refused(row("address of"), iniWith("192.168.0.10", zeros + address), upTo("IPAddress")),
            loaded(row("unknown key of"),
                   iniWith("SSID=", "Other=" + QByteArray(length, 'o') + "\nSSID=")),
            loaded(row("comment of"), iniWith("; 0:eDHCP_OFF", QByteArray(length, ';'))),
        };
    }
    const QByteArray ssid(32, 's');
    const QByteArray key(64, 'k');
    cases += {
        loaded("field limits: SSID of 32", iniWith("Lab 5", ssid), sampleNetwork().ssid(ssid)),
        refused("field limits: SSID of 33", iniWith("Lab 5", ssid + 's'), upTo("SSID")),
        loaded("field limits: key of 64", iniWith("pass word=1", key),
               sampleNetwork().encryptKey(key)),
        refused("field limits: key of 65", iniWith("pass word=1", key + 'k'), upTo("EncryptKey")),
    };
}

// Numbers are whole ones: leading digits count, text without any is 0.
void addNumbers(Cases& cases) {
    const struct {
        const char* text;
        const char* octet;
        bool isOn;
    } numbers[] = {{"1e400", "01", true},
                   {"nan", "00", false},
                   {"inf", "00", false},
                   {"0x10", "00", false},
                   {"-0", "00", false}};
    for (const auto& number : numbers) {
        const QByteArray row = "numbers: " + QByteArray(number.text);
        cases +=
            loaded(row + " as switch", iniWith("DHCPUse=0", "DHCPUse=" + QByteArray(number.text)),
                   sampleNetwork().dhcpUse(number.isOn ? "01000000" : "00000000"));
        cases += loaded(row + " as octet",
                        iniWith("=192.168.0.10", '=' + QByteArray(number.text) + ".168.0.10"),
                        sampleNetwork().ipAddress(QByteArray(number.octet) + "a8000a"));
    }
    const QByteArray digits(100000, '1');
    cases += {
        refused("100000 digits: switch", iniWith("DHCPUse=0", "DHCPUse=" + digits), NetworkBytes()),
        refused("100000 digits: octet", iniWith("=192.168.0.10", '=' + digits + ".168.0.10"),
                upTo("IPAddress")),
        refused("100000 digits: SSID", iniWith("Lab 5", digits), upTo("SSID")),
        refused("100000 digits: key", iniWith("pass word=1", digits), upTo("EncryptKey")),
    };
}

} // namespace

Cases settingsCases() {
    Cases cases;
    addTricks(cases);
    addContents(cases);
    addNulBytes(cases);
    addShiftJis(cases);
    addLongValues(cases);
    addNumbers(cases);
    return cases;
}
