#include "tests/dialogs/settings/ConnectedFixture.h"

#include <cstring>

namespace {

const QString bodyButton = "writeBodyPushBtn";
const QString fileButton = "writeFilePushBtn";
const QString writeCall = "KVA_SetNetworkInfo";
const QString fileSuccess = "information: Successful file writing.";

struct Write {
    const char* name;
    QString file; ///< empty: to the body
    double wireless;
    double dhcp;
    QStringList octets; ///< typed
};

struct InvalidOctet {
    QByteArray name;
    bool isForFile;
    bool isDhcp;
    int edit;
    QString text;
    int checkedEdits;
};

struct SentText {
    const char* name;
    QJsonObject typed;
    QJsonObject sent;
};

/** What the instrument holds when @p values are written to it. */
QJsonObject stateWith(const QJsonObject& values) {
    QJsonObject state = TestBench::state();
    QJsonObject network = state["network"].toObject();
    QJsonObject pending = network["active"].toObject();
    for (auto value = values.begin(); value != values.end(); ++value)
        pending[value.key()] = value.value();
    network["pending"] = pending;
    state["network"] = network;
    return state;
}

QJsonObject withAddresses(QJsonObject values, const QString& address) {
    for (const char* name : {"IPAddress", "SubnetMask", "DefaultGateway", "DNS"})
        values[name] = address;
    return values;
}

QJsonObject withTexts(const QJsonValue& ssid, const QJsonValue& key) {
    QJsonObject values = networkValues();
    values["SSID"] = ssid;
    values["EncryptKey"] = key;
    return values;
}

/** Presses the button for the body, or the one for a file and chooses one. */
void write(ConnectedFixture& f, const QString& file) {
    if (file.isEmpty())
        f.click(bodyButton);
    else
        f.choose(fileButton, f.folder.path(file));
}

/** Bytes as the bench writes a text field that is no clean text. */
QJsonObject hexField(const QByteArray& bytes) {
    return {{"hex", QString(bytes.toHex())}};
}

} // namespace

/** The network tab's buttons "Write To Body" and "Write To File...". */
class TestNetworkWrite : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writes_data() {
        const QStringList octets = octetsOf(networkValues());
        addRows(QVector<Write>{
            {"body, wireless 0, DHCP on", "", 0, 1, octets},
            {"body, wireless 0, DHCP off", "", 0, 0, octets},
            {"body, wireless 1, DHCP on", "", 1, 1, octets},
            {"body, wireless 1, DHCP off", "", 1, 0, octets},
            {"body, DHCP on, empty edits", "", 1, 1, {}},
            {"body, DHCP on, invalid edits", "", 1, 1, {"1a", "256"}},
            {"body, no switch checked", "", 2, 3, octets},
            {"file, no switch checked", "saved.ini", 2, 3, octets},
            {"file, wireless 0, DHCP on", "saved.ini", 0, 1, octets},
            {"file, wireless 0, DHCP off", "saved.ini", 0, 0, octets},
            {"file, wireless 1, DHCP on", "saved.ini", 1, 1, octets},
            {"file, wireless 1, DHCP off", "saved.ini", 1, 0, octets},
            {"file, no extension is added", "saved", 1, 0, octets},
            {"file, another extension", "saved.txt", 1, 0, octets},
            {"file, Japanese name", "保存 1.ini", 1, 0, octets},
        });
    }

    void writes() {
        const auto row = rowOf<Write>();
        const bool isForBody = row.file.isEmpty();
        const bool sendsZeros = isForBody && row.dhcp == 1;
        const bool keepsSwitches = row.wireless == 2;
        const QJsonObject values = networkValues(row.wireless, row.dhcp);
        // Where switches are sent, the instrument holds the others.
        const QJsonObject others{{"APConnectUse", 1 - row.wireless}, {"DHCPUse", 1 - row.dhcp}};
        ConnectedFixture f(SettingsFixture::Network, networkPatch(keepsSwitches ? values : others));
        const QJsonObject sent = sendsZeros ? withAddresses(values, "0.0.0.0") : values;
        const QJsonObject state = isForBody ? stateWith(sent) : TestBench::state();
        if (keepsSwitches) {
            for (const QString& name : switchButtons(0, 0) + switchButtons(1, 1))
                f.uncheck(name);
        } else {
            typeNetwork(f, values);
            f.setOctets(row.octets);
        }
        f.clearRecords();
        const QStringList before = f.everything();
        write(f, row.file);

        const QStringList reports =
            isForBody ? QStringList{networkWrittenBox, writeCall} : QStringList{fileSuccess};
        const QStringList checks = SettingsFixture::digitLines(row.octets);
        QCOMPARE(f.records(), reports + (sendsZeros ? QStringList() : checks));
        QCOMPARE(TestBench::state(), state);
        QCOMPARE(f.files(), isForBody ? QStringList() : QStringList(row.file));
        QCOMPARE(f.folder.read(row.file), isForBody ? QByteArray() : settingsFile(values));
        QCOMPARE(f.busyAtBox(), isForBody ? networkButtons : QStringList());
        QCOMPARE(f.everything(), before);
    }

    // Unlike what the instrument gets, a file gets what the page shows.
    void fileGetsTheShownAddressesWithDhcp() {
        ConnectedFixture f;
        typeNetwork(f, networkValues(1, 1));
        f.click(bodyButton);
        f.clearRecords();
        write(f, "saved.ini");

        QCOMPARE(f.boxes(), QStringList(fileSuccess));
        QCOMPARE(f.folder.read("saved.ini"), settingsFile(networkValues(1, 1)));
    }

    void invalidAddresses_data() {
        QVector<InvalidOctet> rows = {
            {"body, letter", false, false, 15, "1a", 16},
            {"body, greatest", false, false, 15, "999", 16},
            {"body, full-width", false, false, 15, "１２", 16},
            {"body, plus", false, false, 15, "+1", 16},
            {"body, minus", false, false, 15, "-1", 16},
            {"body, blank in front", false, false, 15, " 1", 16},
            {"body, blank behind", false, false, 15, "1 ", 16},
            {"body, blank", false, false, 15, " ", 16},
            {"file, empty, DHCP on", true, true, 0, "", 1},
            {"file, letter", true, false, 3, "1a", 4},
            {"file, letter, DHCP on", true, true, 3, "1a", 4},
            {"file, full-width", true, false, 4, "１２", 5},
            {"file, sign", true, false, 5, "-1", 6},
            {"file, blank", true, false, 6, " ", 7},
        };
        for (int edit = 0; edit < 16; ++edit) {
            const QByteArray name = "edit " + QByteArray::number(edit);
            rows += {{"body, " + name + " empty", false, false, edit, "", edit + 1},
                     {"body, " + name + " too great", false, false, edit, "256", 16},
                     {"file, " + name + " empty", true, false, edit, "", edit + 1},
                     {"file, " + name + " too great, DHCP on", true, true, edit, "256", 16}};
        }
        addRows(rows);
    }

    void invalidAddresses() {
        const auto row = rowOf<InvalidOctet>();
        ConnectedFixture f;
        const QJsonObject state = TestBench::state();
        const KVA_NETWORKINFO record = f.controller->m_networkInfo;
        typeNetwork(f, networkValues(0, row.isDhcp ? 1 : 0));
        f.addressEdits()[row.edit]->setText(row.text);
        const QStringList before = f.everything();
        write(f, row.isForFile ? "saved.ini" : "");

        QCOMPARE(f.answers.fileDialogs.size(),
                 row.isForFile ? 1 : 0); // the name is asked for first
        QCOMPARE(f.boxes(), QStringList("error: The input value is invalid."));
        QCOMPARE(f.calls(), QStringList());
        QCOMPARE(f.lines().filter("length:").size(), row.checkedEdits);
        QCOMPARE(f.files(), QStringList());
        QCOMPARE(TestBench::state(), state);
        QCOMPARE(std::memcmp(&f.controller->m_networkInfo, &record, sizeof record), 0);
        QCOMPARE(f.busyAtBox(), row.isForFile ? QStringList() : networkButtons);
        QCOMPARE(f.everything(), before);
    }

    void sentTexts_data() {
        const QString ssid(32, 's');
        const QString key(64, 'k');
        const QString tokyo = "東京 1階";
        const QString kanji = "京";
        // All octets alike. No rule but an octet's own: 0.0.0.0 is sent, a mask may have holes.
        const auto octets = [](const char* name, const QString& typed, int sent) -> SentText {
            const QString address = "%1.%1.%1.%1";
            return {name, withAddresses(networkValues(), address.arg(typed)),
                    withAddresses(networkValues(), address.arg(sent))};
        };
        addRows(QVector<SentText>{
            octets("lowest octets", "0", 0),
            octets("highest octets", "255", 255),
            octets("octets with leading zeros", "007", 7),
            octets("octets that are not octal", "010", 10),
            octets("octets of zeros", "000", 0),
            {"empty texts", withTexts("", ""), withTexts("", "")},
            {"longest texts", withTexts(ssid, key), withTexts(ssid, key)},
            {"Japanese texts", withTexts(tokyo, tokyo), withTexts(tokyo, tokyo)},
            {"more bytes than room", withTexts(kanji.repeated(32), kanji.repeated(64)),
             withTexts(hexField(kanji.repeated(11).toUtf8().left(32) + '\0'),
                       hexField(kanji.repeated(22).toUtf8().left(64) + '\0'))},
            {"cut between two characters",
             withTexts("ab" + kanji.repeated(30), "a" + kanji.repeated(63)),
             withTexts("ab" + kanji.repeated(10), "a" + kanji.repeated(21))},
        });
    }

    void sentTexts() {
        const auto row = rowOf<SentText>();
        ConnectedFixture f;
        const QJsonObject expected = stateWith(row.sent);
        typeNetwork(f, row.typed);
        const QStringList before = f.everything();
        f.click(bodyButton);

        QCOMPARE(f.boxes(), QStringList(networkWrittenBox));
        QCOMPARE(f.everything(), before);
        QCOMPARE(TestBench::state(), expected);
    }

    void fileGetsCutTexts() {
        ConnectedFixture f;
        typeNetwork(f);
        const QString kanji = "京";
        f.setNameAndKey(kanji.repeated(32), kanji.repeated(64));
        write(f, "saved.ini");

        QByteArray expected = settingsFile();
        expected.replace("typed name", kanji.repeated(32).toUtf8().left(32));
        expected.replace("typed key", kanji.repeated(64).toUtf8().left(64));
        QCOMPARE(f.folder.read("saved.ini"), expected);
    }

    void unwritableFile() {
        ConnectedFixture f;
        typeNetwork(f);
        const QStringList before = f.everything();
        write(f, "no-such-folder/saved.ini");

        QCOMPARE(f.records(), QStringList("error: Failed to write Network Infomation file data.") +
                                      SettingsFixture::digitLines(octetsOf(networkValues()))
                                  << "Failed to write network setting file. \n");
        QCOMPARE(f.everything(), before);
    }
};

TEST_CLASS(TestNetworkWrite)
#include "tst_network_write.moc"
