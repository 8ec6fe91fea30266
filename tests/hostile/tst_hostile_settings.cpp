#include "tests/dialogs/settings/SettingsFixture.h"
#include "tests/hostile/SettingsCases.h"

#include <QtTest>

/** Hostile network settings files: what the reader makes of them, and the network tab. */
class TestHostileSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKindHasARow();
    void reader_data();
    void reader();
    void dialog_data();
    void dialog();
    void folderTypedIntoTheDialog();
};

namespace {

const QString button = QStringLiteral("readToFilePushBtn");

void addRows() {
    QTest::addColumn<SettingsCase>("c");
    for (const SettingsCase& c : settingsCases())
        QTest::newRow(c.row.constData()) << c;
}

QString dotted(const uint8_t (&octets)[4]) {
    QStringList texts;
    for (const uint8_t octet : octets)
        texts.append(QString::number(octet));
    return texts.join(QLatin1Char('.'));
}

/** What the network tab shows of such settings. */
QStringList shown(const KVA_NETWORKINFO& info) {
    return {QString::fromUtf8(info.SSID),
            QString::fromUtf8(info.EncryptKey),
            dotted(info.IPAddress),
            dotted(info.SubnetMask),
            dotted(info.DefaultGateway),
            dotted(info.DNS),
            info.APConnectUse != 0 ? QStringLiteral("enableRadioBtn")
                                   : QStringLiteral("disableRadioBtn"),
            info.DHCPUse != 0 ? QStringLiteral("dhcpOnRadioBtn")
                              : QStringLiteral("dhcpOffRadioBtn"),
            info.DHCPUse != 0 ? QStringLiteral("0") : QStringLiteral("16")};
}

QStringList shownBy(SettingsFixture& f) {
    return f.networkTexts() + f.checked().mid(0, 2) +
           QStringList(QString::number(f.enabledAddressEdits()));
}

} // namespace

void TestHostileSettings::everyKindHasARow() {
    QStringList rows;
    for (const SettingsCase& c : settingsCases())
        rows.append(QString::fromLatin1(c.row));
    QCOMPARE(strayKinds(rows), QStringList());
}

void TestHostileSettings::reader_data() {
    addRows();
}

void TestHostileSettings::reader() {
    QFETCH(SettingsCase, c);
    const WorkingFolder folder(c.place.folder);
    QVERIFY(folder.isReady());
    HostileFile file(c.place.name, c.trick, c.content);
    QVERIFY(file.place());
    const DebugLog log;
    KVA_NETWORKINFO info = {};
    bool result = false;
    const Expense expense;
    const QByteArray printed = printedDuring([&] {
        file.strike();
        result = CFileIO().ReadNetworkIni(file.path().constData(), &info);
        file.release();
    });

    QVERIFY(file.hasStruck());
    QCOMPARE(result, c.outcome != SettingsCase::Refused);
    QCOMPARE(bytesOf(info).toHex(), c.record.bytes().toHex());
    QCOMPARE(log.lines() + log.others(), QStringList());
    QCOMPARE(printed, QByteArray());
    QVERIFY(expense.isBearable());
}

void TestHostileSettings::dialog_data() {
    addRows();
}

void TestHostileSettings::dialog() {
    QFETCH(SettingsCase, c);
    const WorkingFolder folder(c.place.folder);
    QVERIFY(folder.isReady());
    HostileFile file(c.place.name, c.trick, c.content);
    QVERIFY(file.place());
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.setOctets({QStringLiteral("1x")});
    const QStringList before = f.everything();
    const QJsonObject state = SettingsFixture::state();
    file.strikeBetween(f.answers);
    f.answers.willChoose(c.place.name);
    const Expense expense;
    f.click(button);

    QVERIFY(file.hasStruck());
    const bool isLoaded = c.outcome == SettingsCase::Loaded;
    QCOMPARE(f.boxes(),
             QStringList(
                 isLoaded ? QStringLiteral("information: Successful read file data.")
                          : QStringLiteral("error: Failed to read Network Infomation file data.")));
    const QStringList line(QStringLiteral("Failed to read networkInfo parameter data. \n"));
    QCOMPARE(f.lines(), c.outcome == SettingsCase::Refused ? line : QStringList());
    if (isLoaded)
        QCOMPARE(shownBy(f), shown(c.record.record()));
    else
        QCOMPARE(f.everything(), before);
    QCOMPARE(bytesOf(f.controller->m_networkInfo).toHex(), c.record.bytes().toHex());
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(SettingsFixture::state(), state);
    QVERIFY(expense.isBearable());
}

/** It is opened in the file dialog, which stays until it is cancelled. */
void TestHostileSettings::folderTypedIntoTheDialog() {
    const WorkingFolder folder(QStringLiteral("files"));
    QVERIFY(folder.isReady());
    QVERIFY(QDir().mkdir(QStringLiteral("folder.ini")));
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.answers.willChoose(QStringLiteral("folder.ini"));
    f.click(button);

    QCOMPARE(f.answers.fileDialogs.size(), 2); // the same one, looked at again
    QCOMPARE(f.answers.fileDialogs[1].directory,
             QDir::current().filePath(QStringLiteral("folder.ini")));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.everything(), before);
}

QTEST_MAIN(TestHostileSettings)
#include "tst_hostile_settings.moc"
