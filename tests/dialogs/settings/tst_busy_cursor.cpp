#include "tests/dialogs/settings/CalibrationTabs.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QtTest>

#include <dlfcn.h>

namespace {

/** The functions that were called, in order; in front of one that was called without the busy
   cursor stands an exclamation mark. */
QStringList called;

bool isBusy() {
    const QCursor* cursor = QApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}

/** Notes the call and passes it on to the library. */
template <typename... Arguments>
KVA_RESULT observed(const char* name, const char* symbol, Arguments... arguments) {
    called.append(QLatin1String(isBusy() ? "" : "!") + QLatin1String(name));
    using Function = KVA_RESULT (*)(Arguments...);
    const auto function = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, symbol));
    return function ? function(arguments...) : KVA_ERROR;
}

} // namespace

// In place of the library's own, whose callers are in this program.

extern "C" {

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    return observed("KVA_GetDevicePortList", "KVA_GetDevicePortList", list, count, maxEntries);
}

KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait) {
    return observed("KVA_Connect", "KVA_Connect", port, wait);
}

KVA_RESULT KVA_Disconnect() {
    return observed("KVA_Disconnect", "KVA_Disconnect");
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    return observed("KVA_GetDeviceInfo", "KVA_GetDeviceInfo", info);
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    return observed("KVA_GetNetworkInfo", "KVA_GetNetworkInfo", info);
}

KVA_RESULT KVA_SetNetworkInfo(const KVA_NETWORKINFO* info) {
    return observed("KVA_SetNetworkInfo", "KVA_SetNetworkInfo", info);
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    return observed("KVA_GetShutdownTime", "KVA_GetShutdownTime", mode);
}

KVA_RESULT KVA_SetShutdownTime(const uint8_t* mode) {
    return observed("KVA_SetShutdownTime", "KVA_SetShutdownTime", mode);
}

} // extern "C"

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return observed("KVA_JIG_GetFactoryCalib_CALREFDATA",
                    "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA", data);
}

KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA* data) {
    return observed("KVA_JIG_SetFactoryCalib_CALREFDATA",
                    "_Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA", data);
}

KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector() {
    return observed("KVA_JIG_SetFactoryCalib_WriteSector",
                    "_Z35KVA_JIG_SetFactoryCalib_WriteSectorv");
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return observed(
        "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
        "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA", data);
}

/** The busy cursor: there while the library works, gone when a message comes up. */
class TestBusyCursor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void duringEachCall_data();
    void duringEachCall();
};

namespace {

struct Action {
    const char* name;
    SettingsFixture::Page page;
    const char* button;
    QStringList calls; ///< when all goes well; each of them fails once
};

const QVector<Action>& actions() {
    static const QString fetch = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA");
    static const QStringList registration = {
        fetch, QStringLiteral("KVA_JIG_SetFactoryCalib_CALREFDATA"),
        QStringLiteral("KVA_JIG_SetFactoryCalib_WriteSector"), fetch, fetch};
    static const QString list = QStringLiteral("KVA_GetDevicePortList");
    static const QVector<Action> all = {
        {"connect", SettingsFixture::Network, "ConnectPushBtn",
         QStringList{list, list} + SettingsFixture::connectCalls()},
        {"disconnect",
         SettingsFixture::Network,
         "disConnectPushBtn",
         {QStringLiteral("KVA_Disconnect")}},
        {"read network",
         SettingsFixture::Network,
         "readBodyPushBtn",
         {QStringLiteral("KVA_GetNetworkInfo")}},
        {"write network",
         SettingsFixture::Network,
         "writeBodyPushBtn",
         {QStringLiteral("KVA_SetNetworkInfo")}},
        {"read power-off time",
         SettingsFixture::PowerOff,
         "getAutoPWOffPushBtn",
         {QStringLiteral("KVA_GetShutdownTime")}},
        {"write power-off time",
         SettingsFixture::PowerOff,
         "setAutoPWOffPushBtn",
         {QStringLiteral("KVA_SetShutdownTime")}},
        {"register plate", SettingsFixture::WhitePlate, "setWCPValPushBtn", registration},
        {"register adapter", SettingsFixture::AmbientAdapter, "setAmbAdpBodyPushBtn", registration},
        {"close", SettingsFixture::Network, "", {QStringLiteral("KVA_Disconnect")}},
    };
    return all;
}

/** In place of a function that fails. */
const QString none = QStringLiteral("nothing");

} // namespace

void TestBusyCursor::duringEachCall_data() {
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("failing");
    for (int i = 0; i < actions().size(); ++i) {
        QStringList failing = actions()[i].calls;
        failing.removeDuplicates();
        for (const QString& function : QStringList(none) + failing)
            QTest::addRow("%s, %s fails", actions()[i].name, qPrintable(function)) << i << function;
    }
}

void TestBusyCursor::duringEachCall() {
    QFETCH(int, action);
    QFETCH(QString, failing);
    const Action& todo = actions()[action];
    const bool isCalibration = todo.page >= SettingsFixture::WhitePlate;
    const CalibrationTab& tab = calibrationTab(todo.page == SettingsFixture::AmbientAdapter);
    const QTemporaryDir folder;
    SettingsFixture f;
    QVERIFY(f.connectFirst(todo.page));
    if (isCalibration) {
        f.answers.willChoose(writeFile(folder.filePath(QStringLiteral("values.csv")),
                                       valueFile(tab.serialLine, tab.valueCount)));
        f.click(tab.chooseButton);
    }
    if (QLatin1String(todo.name) == QLatin1String("connect"))
        f.click(QStringLiteral("disConnectPushBtn"));
    f.clearRecords();
    if (failing != none)
        QVERIFY(f.answer(failing));
    called.clear();
    bool busyBehindABox = false;
    f.answers.onBox = [&](QMessageBox&) { busyBehindABox = busyBehindABox || isBusy(); };
    if (todo.button[0] == '\0')
        f.dialog.close();
    else
        f.click(QLatin1String(todo.button));

    QVERIFY(!called.isEmpty());
    QCOMPARE(called.filter(QStringLiteral("!")), QStringList());
    QCOMPARE(called, failing == none ? todo.calls : f.calls());
    QVERIFY(!busyBehindABox);
    QVERIFY(!QApplication::overrideCursor());
}

QTEST_MAIN(TestBusyCursor)
#include "tst_busy_cursor.moc"
