#include "tests/dialogs/settings/ConnectedFixture.h"

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
    called.append(QLatin1String(isBusy() ? "" : "!") + name);
    using Function = KVA_RESULT (*)(Arguments...);
    const auto function = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, symbol));
    return function ? function(arguments...) : KVA_ERROR;
}

} // namespace

// In place of the library's own, whose callers are in this program.

#define OBSERVED(function, Pointer)                                                                \
    KVA_RESULT function(Pointer record) {                                                          \
        return observed(#function, #function, record);                                             \
    }

extern "C" {

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    return observed(__func__, __func__, list, count, maxEntries);
}

KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait) {
    return observed(__func__, __func__, port, wait);
}

KVA_RESULT KVA_Disconnect() {
    return observed(__func__, __func__);
}

OBSERVED(KVA_GetDeviceInfo, KVA_DEVICEINFO*)
OBSERVED(KVA_GetNetworkInfo, KVA_NETWORKINFO*)
OBSERVED(KVA_SetNetworkInfo, const KVA_NETWORKINFO*)
OBSERVED(KVA_GetShutdownTime, uint8_t*)
OBSERVED(KVA_SetShutdownTime, const uint8_t*)

} // extern "C"

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return observed(__func__, "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA", data);
}

KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA* data) {
    return observed(__func__, "_Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA", data);
}

KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector() {
    return observed(__func__, "_Z35KVA_JIG_SetFactoryCalib_WriteSectorv");
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return observed(
        __func__, "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA",
        data);
}

namespace {

struct Action {
    QByteArray name;
    SettingsFixture::Page page;
    QString button;    ///< empty: the dialog is closed
    QStringList calls; ///< when all goes well; each of them fails once
    QString failing = "nothing";
};

QVector<Action> actions() {
    const QStringList list = words("KVA_GetDevicePortList KVA_GetDevicePortList");
    using F = SettingsFixture;
    return {
        {"connect", F::Network, "ConnectPushBtn", list + F::connectCalls},
        {"disconnect", F::Network, "disConnectPushBtn", {"KVA_Disconnect"}},
        {"read network", F::Network, "readBodyPushBtn", {"KVA_GetNetworkInfo"}},
        {"write network", F::Network, "writeBodyPushBtn", {"KVA_SetNetworkInfo"}},
        {"read power-off time", F::PowerOff, "getAutoPWOffPushBtn", {"KVA_GetShutdownTime"}},
        {"write power-off time", F::PowerOff, "setAutoPWOffPushBtn", {"KVA_SetShutdownTime"}},
        {"register plate", F::WhitePlate, "setWCPValPushBtn", registrationCalls},
        {"register adapter", F::AmbientAdapter, "setAmbAdpBodyPushBtn", registrationCalls},
        {"close", F::Network, "", {"KVA_Disconnect"}},
    };
}

} // namespace

/** The busy cursor: there while the library works, gone when a message comes up. */
class TestBusyCursor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void duringEachCall_data() {
        QVector<Action> rows;
        for (const Action& action : actions()) {
            QStringList functions = QStringList(action.failing) + action.calls;
            functions.removeDuplicates();
            for (const QString& function : functions) {
                rows.append(action);
                rows.last().name += ", " + function.toLatin1() + " fails";
                rows.last().failing = function;
            }
        }
        addRows(rows);
    }

    void duringEachCall() {
        const auto row = rowOf<Action>();
        ConnectedFixture f(row.page);
        if (row.page >= SettingsFixture::WhitePlate) {
            const CalibrationTab& tab = calibrationTab(row.page == SettingsFixture::AmbientAdapter);
            f.choose(tab.chooseButton, f.folder.write("values.csv", tab.file()));
        }
        if (row.button == "ConnectPushBtn")
            f.click("disConnectPushBtn");
        f.clearRecords();
        const bool isFailing = row.calls.contains(row.failing);
        if (isFailing)
            TestBench::answer(row.failing);
        called.clear();
        bool isBusyBehindABox = false;
        f.answers.onBox = [&](QMessageBox&) { isBusyBehindABox = isBusyBehindABox || isBusy(); };
        if (row.button.isEmpty())
            f.dialog.close();
        else
            f.click(row.button);

        QVERIFY(!called.isEmpty());
        QCOMPARE(called.filter("!"), QStringList());
        QCOMPARE(called, isFailing ? f.calls() : row.calls);
        QVERIFY(!isBusyBehindABox);
        QVERIFY(!QApplication::overrideCursor());
    }
};

TEST_CLASS(TestBusyCursor)
#include "tst_busy_cursor.moc"
