#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/hostile/HostileFile.h"

namespace {

/** What checking the file logs: nothing where the reader fails, else number and values; those that
    the file does not have are 0. */
QStringList checkLines(const CalibrationCase& c) {
    if (!c.isRead)
        return {};
    QStringList values;
    for (int k = 0; k < calRefReader(c.adapter).valueCount; ++k) {
        // As printf does it, but for a zero's sign, which Qt's log leaves out.
        const auto value = static_cast<double>(c.values.value(k));
        values.append(QString::asprintf("%f", value == 0.0 ? 0.0 : value));
    }
    return TestBench::checkLines(c.serialNumber, values);
}

/** The serial number of an accepted file as the window shows it. */
QString shownNumber(const CalibrationCase& c) {
    return QString("%1").arg(c.serialNumber, 8, 10, QChar('0'));
}

/** The calibration record of the connected instrument, in hexadecimal. */
QByteArray heldRecord() {
    return bytesOf(TestBench::held(KVA_JIG_GetFactoryCalib_CALREFDATA)).toHex();
}

/** The three texts of the tab: instrument's serial number, file name, file's serial number. */
QStringList textsOf(SettingsFixture& f, const CalibrationTab& tab) {
    return f.calibrationTexts().mid(tab.firstText, 3);
}

QString dotted(const uint8_t (&octets)[4]) {
    QStringList texts;
    for (const uint8_t octet : octets)
        texts.append(QString::number(octet));
    return texts.join('.');
}

/** What the network tab shows of such settings. */
QStringList shown(const KVA_NETWORKINFO& info) {
    const bool isDhcpOn = info.DHCPUse != 0;
    return {QString::fromUtf8(info.SSID),
            QString::fromUtf8(info.EncryptKey),
            dotted(info.IPAddress),
            dotted(info.SubnetMask),
            dotted(info.DefaultGateway),
            dotted(info.DNS),
            info.APConnectUse != 0 ? "enableRadioBtn" : "disableRadioBtn",
            isDhcpOn ? "dhcpOnRadioBtn" : "dhcpOffRadioBtn",
            isDhcpOn ? "0" : "16"};
}

QStringList shownBy(SettingsFixture& f) {
    return f.networkTexts() + f.checked().mid(0, 2) +
           QStringList(QString::number(f.enabledAddressEdits()));
}

const char* success = "information: Successful read file data.";

/** The addresses of the fixture's instrument. */
const QString addresses = "192.168.0.10.255.255.255.0.192.168.0.1.8.8.4.0";

QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

struct FolderRow {
    const char* name;
    SettingsFixture::Page page;
    QString button;
    QString folder = "folder.csv";
};

} // namespace

/** Hostile files: what the tabs and the instrument make of them; odd places to save at; folders
    chosen in place of a file. */
class TestHostile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void calibrationReader_data() { addRows(calibrationCases()); }
    void calibrationReader() {
        const auto row = rowOf<CalibrationCase>();
        HostileFile file(row);
        file.place();
        file.strike();
        const QByteArray read = readCalRef(row.adapter, file.path());
        file.release();
        QCOMPARE(read, outcome(row.isRead, calRefRecord(row.adapter, row.serialNo, row.values),
                               row.printed));
        QVERIFY(file.wasBearable());
    }

    void networkTab_data() { addRows(settingsCases()); }
    void networkTab() {
        const auto row = rowOf<SettingsCase>();
        HostileFile file(row);
        SettingsFixture f;
        QVERIFY(f.connectFirst());
        f.setOctets({"1x"});
        const QStringList before = f.everything();
        const QJsonObject state = TestBench::state();
        file.place();
        file.strikeBetween(f.answers);
        f.answers.willChoose(row.file);
        f.click("readToFilePushBtn");

        QCOMPARE(f.boxes(),
                 QStringList(row.isLoaded ? success
                                          : "error: Failed to read Network Infomation file data."));
        const QStringList line("Failed to read networkInfo parameter data. \n");
        QCOMPARE(f.lines(), row.isLoaded ? QStringList() : line);
        if (row.isLoaded)
            QCOMPARE(shownBy(f), shown(row.record.record()));
        else
            QCOMPARE(f.everything(), before);
        QCOMPARE(bytesOf(f.controller->m_networkInfo).toHex(), row.record.bytes().toHex());
        QCOMPARE(TestBench::calls(), QStringList());
        QCOMPARE(TestBench::state(), state);
        QVERIFY(file.wasBearable());
    }

    void chosen_data() { addRows(calibrationCases()); }
    void chosen() {
        const auto row = rowOf<CalibrationCase>();
        const CalibrationTab& tab = calibrationTab(row.adapter);
        HostileFile file(row);
        SettingsFixture f;
        QVERIFY(f.connectFirst(tab.page));
        const QString held = textsOf(f, tab).constFirst();
        const QByteArray record = heldRecord();
        f.clearRecords();
        file.place();
        file.strikeBetween(f.answers);
        f.answers.willChoose(row.file);
        const QByteArray printed = printedDuring([&] { f.click(tab.chooseButton); });

        QCOMPARE(f.boxes(),
                 QStringList(row.isAccepted ? success : "error: Failed to read file data."));
        QCOMPARE(f.lines(), checkLines(row));
        QCOMPARE(printed, row.printed);
        QCOMPARE(TestBench::calls(), QStringList());
        QCOMPARE(textsOf(f, tab), (QStringList{held, QFileInfo(row.file).baseName(),
                                               row.isAccepted ? shownNumber(row) : QString()}));
        QCOMPARE(f.disabled().contains(tab.writeButton), !row.isAccepted);
        QCOMPARE(heldRecord(), record);
        QVERIFY(file.wasBearable());
    }

    void written_data() { addRows(calibrationCases()); }
    /** A good file was chosen; when it is to be written, this one is in its place. */
    void written() {
        const auto row = rowOf<CalibrationCase>();
        const CalibrationTab& tab = calibrationTab(row.adapter);
        HostileFile file(row);
        file.place(TestBench::valueFile(tab.lowestSerialLine, tab.valueCount));
        SettingsFixture f;
        QVERIFY(f.connectFirst(tab.page));
        f.answers.willChoose(row.file);
        f.click(tab.chooseButton);
        QCOMPARE(f.boxes(), QStringList(success));
        QStringList texts = textsOf(f, tab);
        const QByteArray record = heldRecord();
        f.clearRecords();

        f.answers.onBox = [&file](QMessageBox&) { file.release(); };
        file.place();
        file.strike();
        const QByteArray printed = printedDuring([&] { f.click(tab.writeButton); });

        const bool isRegistered = row.isRegistered();
        QCOMPARE(f.boxes(), QStringList(isRegistered ? "information: Successful device writing."
                                                     : tab.failureBox));
        const QStringList line("file.GetCalRefDataFromFile() failed.");
        QCOMPARE(f.lines(), row.isRead ? QStringList() : line);
        QCOMPARE(printed, row.printed);
        QCOMPARE(TestBench::calls(),
                 isRegistered ? registrationCalls : QStringList(registrationCalls[0]));
        if (isRegistered && !row.serialNo.isEmpty())
            texts[0] = shownNumber(row);
        QCOMPARE(textsOf(f, tab), texts);
        QVERIFY(!f.disabled().contains(tab.writeButton) &&
                !f.disabled().contains(tab.chooseButton));
        const auto written = [&] {
            return calRefRecord(row.adapter, row.serialNo, row.values, QByteArray::fromHex(record));
        };
        QCOMPARE(heldRecord(), isRegistered ? written().toHex() : record);
        QVERIFY(file.wasBearable());
    }

    void opens_data() {
        QVector<HostileCase> cases = oddPlaces(".ini");
        cases += {
            {"no extension", {}, HostileCase::None, "files", "saved"},
            {"hidden", {}, HostileCase::None, "files", ".ini"},
            {"name of 255 bytes", {}, HostileCase::None, "files", QString(255, 'n')},
        };
        addRows(cases);
    }
    /** Network settings are written there, and read again from there. */
    void opens() {
        const auto row = rowOf<HostileCase>();
        const HostileFolder folder(row.folder);
        SettingsFixture f;
        QVERIFY(f.connectFirst());
        const QStringList before = f.everything();
        const QJsonObject state = TestBench::state();
        f.choose("writeFilePushBtn", row.file);
        QCOMPARE(f.boxes(), QStringList("information: Successful file writing."));
        QCOMPARE(f.lines(), SettingsFixture::digitLines(addresses.split('.')));
        QCOMPARE(TestBench::calls(), QStringList());
        QCOMPARE(f.everything(), before);
        QCOMPARE(TestBench::state(), state);
        QCOMPARE(filesIn("."), QStringList(row.file));
        QFile file(row.file);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), benchNetworkIni());

        f.clearRecords();
        f.setOctets({});
        f.choose("readToFilePushBtn", row.file);
        QCOMPARE(f.boxes(), QStringList(success));
        QCOMPARE(f.everything(), before);
    }

    void folderTypedIntoTheDialog_data() {
        addRows(QVector<FolderRow>{
            {"read settings", SettingsFixture::Network, "readToFilePushBtn", "folder.ini"},
            {"save settings", SettingsFixture::Network, "writeFilePushBtn", "folder.ini"},
            {"white plate", SettingsFixture::WhitePlate, "selWCPFilePushBtn"},
            {"adapter", SettingsFixture::AmbientAdapter, "selAmbLightAdpFilePushBtn"},
        });
    }
    /** It is opened in the file dialog, which stays until it is cancelled. */
    void folderTypedIntoTheDialog() {
        const auto row = rowOf<FolderRow>();
        const HostileFolder folder;
        QVERIFY(QDir().mkdir(row.folder));
        SettingsFixture f;
        QVERIFY(f.connectFirst(row.page));
        const QStringList before = f.everything();
        const QJsonObject state = TestBench::state();
        f.answers.willChoose(row.folder);
        f.click(row.button);

        QCOMPARE(f.answers.fileDialogs.size(), 2); // the same one, looked at again
        QCOMPARE(f.answers.fileDialogs[1].directory, QDir::current().filePath(row.folder));
        QCOMPARE(f.boxes() + f.lines(), QStringList());
        QCOMPARE(f.everything(), before);
        QCOMPARE(TestBench::state(), state);
        QCOMPARE(filesIn(".") + filesIn(row.folder), QStringList());
    }
};

TEST_CLASS(TestHostile)

#include "tst_hostile.moc"
