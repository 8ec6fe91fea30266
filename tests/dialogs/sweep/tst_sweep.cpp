// Every function of the library, every kind of fault, every place of a whole session: after each
// step the dialog shows what it has to show, and the instrument ends up with what was committed.

#include "simulator/KvaSim.h"
#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/dialogs/sweep/DialogModel.h"
#include "tests/dialogs/sweep/FaultKinds.h"

#include <cstring>

namespace {

using TestBench::bytesOf;

/** One thing that a user does: a button, and what is to be done before it is pressed. */
struct Step {
    SettingsFixture::Page page;
    QString button;
    void (*expect)(DialogModel& model);
    void (*prepare)(SettingsFixture& f, DialogModel& model) = nullptr; ///< null: nothing to be done
    int file = -1; ///< chosen in the file dialog; -1: none
};

void prepareNetwork(SettingsFixture& f, DialogModel& model) {
    const QStringList texts = networkTexts(networkValues());
    f.setNameAndKey(texts[0], texts[1]);
    f.setOctets(octetsOf(networkValues()));
    model.typeNetwork(texts);
}

void preparePowerOff(SettingsFixture& f, DialogModel& model) {
    f.click("sixtyRadioBtn");
    model.choosePowerOff(3);
}

const QVector<Step>& session() {
    using F = SettingsFixture;
    using M = DialogModel;
    static const QVector<Step> steps = {
        {F::Network, "ConnectPushBtn", [](M& m) { m.pressConnect(); }},
        {F::Network, "readBodyPushBtn", [](M& m) { m.pressReadNetwork(); }},
        {F::PowerOff, "getAutoPWOffPushBtn", [](M& m) { m.pressReadPowerOff(); }},
        {F::Network, "writeBodyPushBtn", [](M& m) { m.pressWriteNetwork(); }, prepareNetwork},
        {F::PowerOff, "setAutoPWOffPushBtn", [](M& m) { m.pressWritePowerOff(); }, preparePowerOff},
        {F::WhitePlate, "selWCPFilePushBtn", [](M& m) { m.chooseFile(M::WhitePlate); }, nullptr,
         M::WhitePlate},
        {F::WhitePlate, "setWCPValPushBtn", [](M& m) { m.pressRegister(M::WhitePlate); }},
        {F::AmbientAdapter, "selAmbLightAdpFilePushBtn",
         [](M& m) { m.chooseFile(M::AmbientAdapter); }, nullptr, M::AmbientAdapter},
        {F::AmbientAdapter, "setAmbAdpBodyPushBtn",
         [](M& m) { m.pressRegister(M::AmbientAdapter); }},
        {F::Network, "disConnectPushBtn", [](M& m) { m.pressDisconnect(); }},
    };
    return steps;
}

/** The functions that a session calls in which nothing fails. */
QStringList callsOfSession() {
    return words("KVA_RegisterDeviceEventHandler KVA_GetDevicePortList KVA_GetDevicePortList") +
           SettingsFixture::connectCalls +
           words("KVA_GetNetworkInfo KVA_GetShutdownTime KVA_SetNetworkInfo KVA_SetShutdownTime") +
           registrationCalls + registrationCalls +
           words("KVA_Disconnect KVA_RegisterDeviceEventHandler");
}

QVector<Place> placesOfSession() {
    QVector<Place> places;
    QMap<QString, int> calls;
    for (const QString& function : callsOfSession())
        places.append({function, ++calls[function]});
    return places;
}

/** Reads the instrument through the library alone. @return nothing when a call fails */
std::optional<InstrumentModel> readInstrument() {
    InstrumentModel read;
    std::int32_t count = 0;
    const bool done = KVA_GetDevicePortList(&read.port, &count, 1) == KVA_SUCCESS && count == 1 &&
                      KVA_Connect(&read.port, 10) == KVA_SUCCESS &&
                      KVA_GetDeviceInfo(&read.device) == KVA_SUCCESS &&
                      KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&read.options) == KVA_SUCCESS &&
                      KVA_GetNetworkInfo(&read.network) == KVA_SUCCESS &&
                      KVA_GetShutdownTime(&read.powerOffMode) == KVA_SUCCESS &&
                      KVA_JIG_GetFactoryCalib_CALREFDATA(&read.committed) == KVA_SUCCESS &&
                      KVA_Disconnect() == KVA_SUCCESS;
    return done ? std::optional<InstrumentModel>(read) : std::nullopt;
}

/** Every byte that the instrument keeps over a power cycle. */
QByteArray keptBytes(const InstrumentModel& instrument) {
    return (bytesOf(instrument.committed) + bytesOf(instrument.network) +
            bytesOf(instrument.powerOffMode) + bytesOf(instrument.device) +
            bytesOf(instrument.options))
        .toHex();
}

/** One fault at one place. */
struct PlacedFault {
    QByteArray name;
    const FaultKind* kind;
    Place place;
    bool isOnwards;
    int index;
};

QVector<ValueFile> valueFiles(const TestFolder& folder) {
    QVector<ValueFile> files = {
        {folder.write("plate.new.csv", calibrationTab(false).file()), "plate", "87654321", {}},
        {folder.write("adapter.csv", calibrationTab(true).file()), "adapter", "00054321", {}}};
    for (int i = 0; i < KVA_WHITE_PLATE_VALUES; ++i)
        files[0].record.rfWhite.spcData[i] = fileValue(i);
    for (int i = 0; i < KVA_AMBIENT_ADAPTER_VALUES; ++i)
        files[1].record.ambAdp.spcData[i] = fileValue(i);
    const std::uint8_t plate[4] = {0x87, 0x65, 0x43, 0x21};
    const std::uint8_t adapter[4] = {0x00, 0x05, 0x43, 0x21};
    std::memcpy(files[0].record.whiteSerialNo, plate, sizeof plate);
    std::memcpy(files[1].record.ambAdpSerialNo, adapter, sizeof adapter);
    return files;
}

void setController(SettingsFixture& f, const std::shared_ptr<CKvaSdk_Ctrl>& controller) {
    f.controller.reset();
    f.dialog.setSdkCtrl(controller);
    f.selection.setSdkCtrl(controller);
    f.controller = controller;
}

} // namespace

/** The settings dialog through a whole session with a fault somewhere. */
class TestSweep : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() {
        QVERIFY(m_combinations > 0);
        qInfo("%d combinations", m_combinations);
    }

    void placesAreThoseOfASession() {
        SettingsFixture f;
        const std::optional<InstrumentModel> instrument = readInstrument();
        QVERIFY(instrument.has_value());
        LibraryModel library(*instrument, {});
        DialogModel model(library, m_files);
        open(f, model, {});
        take(f, model, session());
        end(f, model);
        QCOMPARE(SettingsFixture::calls(), callsOfSession());
        checkInstrument(library);
        // What the sweep tells apart: nothing written, and all of it.
        const InstrumentModel after = library.afterPowerCycle();
        QVERIFY(bytesOf(after.committed) != bytesOf(instrument->committed));
        QVERIFY(bytesOf(after.network) != bytesOf(instrument->network));
    }

    void fault_data() {
        QVector<PlacedFault> rows;
        for (const FaultKind& kind : faultKinds()) {
            for (const bool isOnwards : {false, true}) {
                for (const Place& place : placesOfSession()) {
                    if (!kind.concerns(place.function) || (isOnwards && !kind.repeats))
                        continue;
                    const QString name = QString("%1, %2 call %3 %4")
                                             .arg(kind.name, place.function)
                                             .arg(place.call)
                                             .arg(isOnwards ? "onwards" : "once");
                    rows.append({name.toLatin1(), &kind, place, isOnwards, int(rows.size())});
                }
            }
        }
        addRows(rows);
    }

    void fault() {
        const auto row = rowOf<PlacedFault>();
        SettingsFixture f;
        const std::optional<InstrumentModel> instrument = readInstrument();
        QVERIFY(instrument.has_value());
        LibraryModel library(*instrument, modelFault(*row.kind, row.place, row.isOnwards));
        DialogModel model(library, m_files);
        open(f, model, faultRule(*row.kind, row.place, row.isOnwards, row.index));
        if (!QTest::currentTestFailed())
            take(f, model, session());
        // A fault of the very last call is still to come.
        const bool isOver =
            row.place.function != "KVA_RegisterDeviceEventHandler" || row.place.call == 1;
        if (!QTest::currentTestFailed() && isOver)
            recover(f, library, model);
        if (QTest::currentTestFailed())
            return;
        end(f, model);
        checkInstrument(library);
        bool isResponsive = false;
        QTimer::singleShot(0, &f.dialog, [&] { isResponsive = true; });
        QTRY_VERIFY(isResponsive);
        ++m_combinations;
    }

private:
    /** Takes the steps until one of them shows something else than the model. */
    void take(SettingsFixture& f, DialogModel& model, const QVector<Step>& steps) {
        for (const Step& step : steps) {
            checkStep(f, model, step);
            if (QTest::currentTestFailed()) {
                qInfo("at %s", qPrintable(step.button));
                return;
            }
        }
    }

    void checkStep(SettingsFixture& f, DialogModel& model, const Step& step) {
        f.openPage(step.page);
        QCOMPARE(f.child(step.button).isEnabled(), model.canPress(step.button));
        if (!model.canPress(step.button))
            return;
        if (step.prepare)
            step.prepare(f, model);
        if (step.file >= 0)
            f.answers.willChoose(m_files[step.file].path);
        f.click(step.button);
        step.expect(model);
        compare(f, model);
        if (!QTest::currentTestFailed())
            tick(f, model);
    }

    void compare(SettingsFixture& f, DialogModel& model) {
        KvaSim_WaitForEvents();
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        const QStringList shown =
            DialogModel::view(f.boxes(), f.disabled(), f.checked(), f.texts());
        f.answers.boxes.clear();
        QCOMPARE(shown, model.takeView());
        QCOMPARE(watchOf(f.dialog).isActive(), model.isWatching());
        QCOMPARE(g_deviceDisconnected.load(), model.isLossPending());
    }

    void tick(SettingsFixture& f, DialogModel& model) {
        if (!model.isWatching())
            return;
        f.invoke("timerHit");
        model.tick();
        compare(f, model);
    }

    void open(SettingsFixture& f, DialogModel& model, const QJsonObject& rule) {
        // The fixture's controller came before the fault; the dialog gets one that comes after it.
        setController(f, nullptr);
        TestBench::clearCalls();
        if (!rule.isEmpty())
            TestBench::addFault(rule);
        setController(f, std::make_shared<CKvaSdk_Ctrl>());
        // It ticks when the test says so, and not in the middle of a step.
        watchOf(f.dialog).setInterval(24 * 60 * 60 * 1000);
        f.dialog.connectDevice(-1, false);
        f.dialog.show();
        model.open();
        compare(f, model);
    }

    void end(SettingsFixture& f, DialogModel& model) {
        setController(f, nullptr);
        model.end();
    }

    /** With the fault gone and the instrument plugged in, the dialog goes on as if nothing had
     * been. */
    void recover(SettingsFixture& f, LibraryModel& library, DialogModel& model) {
        KvaSim_ClearFaults();
        library.clearFault();
        TestBench::plug();
        library.plug();
        const Step& connect = session().first();
        const Step& disconnect = session().last();
        take(f, model, {disconnect, connect, disconnect});
    }

    void checkInstrument(const LibraryModel& library) {
        KvaSim_ClearFaults();
        TestBench::plug();
        KVA_Disconnect();
        TestBench::powerCycle();
        const std::optional<InstrumentModel> kept = readInstrument();
        QVERIFY(kept.has_value());
        QCOMPARE(keptBytes(*kept), keptBytes(library.afterPowerCycle()));
    }

    TestFolder m_folder;
    QVector<ValueFile> m_files = valueFiles(m_folder);
    int m_combinations = 0;
};

TEST_CLASS(TestSweep)
#include "tst_sweep.moc"
