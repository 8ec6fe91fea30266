// Every function of the library, every kind of fault, every place of a whole session: after each
// step the dialog shows what it has to show, and the instrument ends up with what was committed.

#include "simulator/KvaSim.h"
#include "tests/dialogs/settings/CalibrationTabs.h"
#include "tests/dialogs/sweep/DialogModel.h"
#include "tests/dialogs/sweep/FaultKinds.h"

#include <QApplication>
#include <QDir>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>

namespace {

/** One thing that a user does: a button, and what is to be done before it is pressed. */
struct Step {
    SettingsFixture::Page page;
    QString button;
    void (*prepare)(SettingsFixture& f, DialogModel& model);
    void (*expect)(DialogModel& model);
    int file; ///< chosen in the file dialog; -1: none
};

const TypedNetwork& typedNetwork() {
    static const TypedNetwork typed = {
        QStringLiteral("new-hall"), QStringLiteral("another-key"),
        QStringLiteral("10 20 30 40 255 255 0 0 10 20 0 1 9 9 9 9").split(QLatin1Char(' '))};
    return typed;
}

void prepareNothing(SettingsFixture&, DialogModel&) {}

void prepareNetwork(SettingsFixture& f, DialogModel& model) {
    f.child<QLineEdit>(QStringLiteral("SSIDlineEdit")).setText(typedNetwork().ssid);
    f.child<QLineEdit>(QStringLiteral("passwdlineEdit")).setText(typedNetwork().key);
    f.setOctets(typedNetwork().octets);
    model.typeNetwork(typedNetwork());
}

void preparePowerOff(SettingsFixture& f, DialogModel& model) {
    f.click(QStringLiteral("sixtyRadioBtn"));
    model.choosePowerOff(3);
}

const QVector<Step>& session() {
    using F = SettingsFixture;
    using M = DialogModel;
    static const QVector<Step> steps = {
        {F::Network, QStringLiteral("ConnectPushBtn"), prepareNothing,
         [](M& m) { m.pressConnect(); }, -1},
        {F::Network, QStringLiteral("readBodyPushBtn"), prepareNothing,
         [](M& m) { m.pressReadNetwork(); }, -1},
        {F::PowerOff, QStringLiteral("getAutoPWOffPushBtn"), prepareNothing,
         [](M& m) { m.pressReadPowerOff(); }, -1},
        {F::Network, QStringLiteral("writeBodyPushBtn"), prepareNetwork,
         [](M& m) { m.pressWriteNetwork(); }, -1},
        {F::PowerOff, QStringLiteral("setAutoPWOffPushBtn"), preparePowerOff,
         [](M& m) { m.pressWritePowerOff(); }, -1},
        {F::WhitePlate, QStringLiteral("selWCPFilePushBtn"), prepareNothing,
         [](M& m) { m.chooseFile(M::WhitePlate); }, M::WhitePlate},
        {F::WhitePlate, QStringLiteral("setWCPValPushBtn"), prepareNothing,
         [](M& m) { m.pressRegister(M::WhitePlate); }, -1},
        {F::AmbientAdapter, QStringLiteral("selAmbLightAdpFilePushBtn"), prepareNothing,
         [](M& m) { m.chooseFile(M::AmbientAdapter); }, M::AmbientAdapter},
        {F::AmbientAdapter, QStringLiteral("setAmbAdpBodyPushBtn"), prepareNothing,
         [](M& m) { m.pressRegister(M::AmbientAdapter); }, -1},
        {F::Network, QStringLiteral("disConnectPushBtn"), prepareNothing,
         [](M& m) { m.pressDisconnect(); }, -1},
    };
    return steps;
}

/** The calls of a session in which nothing fails. */
QVector<Place> placesOfSession() {
    const char* const registering[] = {
        "KVA_JIG_GetFactoryCalib_CALREFDATA", "KVA_JIG_SetFactoryCalib_CALREFDATA",
        "KVA_JIG_SetFactoryCalib_WriteSector", "KVA_JIG_GetFactoryCalib_CALREFDATA",
        "KVA_JIG_GetFactoryCalib_CALREFDATA"};
    QStringList functions = {QStringLiteral("KVA_RegisterDeviceEventHandler"),
                             QStringLiteral("KVA_GetDevicePortList"),
                             QStringLiteral("KVA_GetDevicePortList"),
                             QStringLiteral("KVA_Connect"),
                             QStringLiteral("KVA_GetDeviceInfo"),
                             QStringLiteral("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA"),
                             QStringLiteral("KVA_GetNetworkInfo"),
                             QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA"),
                             QStringLiteral("KVA_GetShutdownTime"),
                             QStringLiteral("KVA_GetNetworkInfo"),
                             QStringLiteral("KVA_GetShutdownTime"),
                             QStringLiteral("KVA_SetNetworkInfo"),
                             QStringLiteral("KVA_SetShutdownTime")};
    for (int accessory = 0; accessory < 2; ++accessory) {
        for (const char* function : registering)
            functions.append(QLatin1String(function));
    }
    functions.append(QStringLiteral("KVA_Disconnect"));
    functions.append(QStringLiteral("KVA_RegisterDeviceEventHandler"));

    QVector<Place> places;
    QMap<QString, int> calls;
    for (const QString& function : functions)
        places.append({function, ++calls[function]});
    return places;
}

QStringList names(const QVector<Place>& places) {
    QStringList functions;
    for (const Place& place : places)
        functions.append(place.function);
    return functions;
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

template <typename Record>
QByteArray bytesOf(const Record& record) {
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record).toHex();
}

/** Every byte that the instrument keeps over a power cycle. */
QVector<QByteArray> keptBytes(const InstrumentModel& instrument) {
    return {bytesOf(instrument.committed), bytesOf(instrument.network),
            bytesOf(instrument.powerOffMode), bytesOf(instrument.device),
            bytesOf(instrument.options)};
}

QVector<ValueFile> valueFiles(const QString& folder) {
    QVector<ValueFile> files = {{folder + QStringLiteral("/plate.new.csv"),
                                 QStringLiteral("plate"),
                                 QStringLiteral("87654321"),
                                 {}},
                                {folder + QStringLiteral("/adapter.csv"),
                                 QStringLiteral("adapter"),
                                 QStringLiteral("00054321"),
                                 {}}};
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

} // namespace

/** The settings dialog through a whole session with a fault somewhere. */
class TestSweep : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void placesAreThoseOfASession();
    void fault_data();
    void fault();

private:
    void run(SettingsFixture& f, DialogModel& model);
    void checkStep(SettingsFixture& f, DialogModel& model, const Step& step);
    void compare(SettingsFixture& f, DialogModel& model);
    void tick(SettingsFixture& f, DialogModel& model);
    void open(SettingsFixture& f, DialogModel& model, const QJsonObject& rule);
    void end(SettingsFixture& f, DialogModel& model);
    void recover(SettingsFixture& f, LibraryModel& library, DialogModel& model);
    void checkInstrument(const LibraryModel& library);

    QTemporaryDir m_folder;
    QString m_startFolder;
    QVector<ValueFile> m_files;
    int m_combinations = 0;
};

void TestSweep::initTestCase() {
    QVERIFY(m_folder.isValid());
    m_startFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder.path()));
    m_files = valueFiles(m_folder.path());
    QVERIFY(!writeFile(m_files[0].path, valueFile("87654321", KVA_WHITE_PLATE_VALUES)).isEmpty());
    QVERIFY(
        !writeFile(m_files[1].path, valueFile("00054321", KVA_AMBIENT_ADAPTER_VALUES)).isEmpty());
}

void TestSweep::cleanupTestCase() {
    QVERIFY(QDir::setCurrent(m_startFolder));
    QVERIFY(m_combinations > 0);
    qInfo("%d combinations", m_combinations);
}

void TestSweep::open(SettingsFixture& f, DialogModel& model, const QJsonObject& rule) {
    // The fixture's own controller came before the fault; the dialog gets one that comes after it.
    f.dialog.setSdkCtrl(nullptr);
    f.selection.setSdkCtrl(nullptr);
    f.controller.reset();
    KvaSim_ClearCallLog();
    if (!rule.isEmpty())
        QVERIFY2(KvaSim_AddFault(QJsonDocument(rule).toJson().constData()), KvaSim_LastError());
    f.controller = std::make_shared<CKvaSdk_Ctrl>();
    f.dialog.setSdkCtrl(f.controller);
    f.selection.setSdkCtrl(f.controller);
    // It ticks when the test says so, and not in the middle of a step.
    watchOf(f.dialog).setInterval(24 * 60 * 60 * 1000);
    f.dialog.connectDevice(-1, false);
    f.dialog.show();
    model.open();
    compare(f, model);
}

void TestSweep::end(SettingsFixture& f, DialogModel& model) {
    f.dialog.setSdkCtrl(nullptr);
    f.selection.setSdkCtrl(nullptr);
    f.controller.reset();
    model.end();
}

void TestSweep::compare(SettingsFixture& f, DialogModel& model) {
    KvaSim_WaitForEvents();
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    const QStringList shown = DialogModel::view(f.boxes(), f.disabled(), f.checked(), f.identity(),
                                                f.networkTexts(), f.calibrationTexts());
    f.answers.boxes.clear();
    QCOMPARE(shown, model.takeView());
    QCOMPARE(watchOf(f.dialog).isActive(), model.isWatching());
    QCOMPARE(g_deviceDisconnected.load(), model.isLossPending());
}

void TestSweep::tick(SettingsFixture& f, DialogModel& model) {
    if (!model.isWatching())
        return;
    f.invoke("timerHit");
    model.tick();
    compare(f, model);
}

void TestSweep::checkStep(SettingsFixture& f, DialogModel& model, const Step& step) {
    f.openPage(step.page);
    QCOMPARE(f.child(step.button).isEnabled(), model.canPress(step.button));
    if (!model.canPress(step.button))
        return;
    step.prepare(f, model);
    if (step.file >= 0)
        f.answers.willChoose(m_files[step.file].path);
    f.click(step.button);
    step.expect(model);
    compare(f, model);
    if (!QTest::currentTestFailed())
        tick(f, model);
}

void TestSweep::run(SettingsFixture& f, DialogModel& model) {
    for (const Step& step : session()) {
        checkStep(f, model, step);
        if (QTest::currentTestFailed()) {
            qInfo("at %s", qPrintable(step.button));
            return;
        }
    }
}

/** With the fault gone and the instrument plugged in, the dialog goes on as if nothing had been. */
void TestSweep::recover(SettingsFixture& f, LibraryModel& library, DialogModel& model) {
    KvaSim_ClearFaults();
    library.clearFault();
    QVERIFY(KvaSim_Plug(SettingsFixture::serialNumber));
    library.plug();
    const Step& connect = session().first();
    const Step& disconnect = session().last();
    for (const Step* step : {&disconnect, &connect, &disconnect}) {
        checkStep(f, model, *step);
        if (QTest::currentTestFailed()) {
            qInfo("afterwards at %s", qPrintable(step->button));
            return;
        }
    }
}

void TestSweep::checkInstrument(const LibraryModel& library) {
    KvaSim_ClearFaults();
    QVERIFY(KvaSim_Plug(SettingsFixture::serialNumber));
    KVA_Disconnect();
    QVERIFY(KvaSim_PowerCycle(SettingsFixture::serialNumber));
    const std::optional<InstrumentModel> kept = readInstrument();
    QVERIFY(kept.has_value());
    QCOMPARE(keptBytes(*kept), keptBytes(library.afterPowerCycle()));
}

void TestSweep::placesAreThoseOfASession() {
    SettingsFixture f;
    const std::optional<InstrumentModel> instrument = readInstrument();
    QVERIFY(instrument.has_value());
    LibraryModel library(*instrument, {});
    DialogModel model(library, m_files);
    open(f, model, {});
    for (const Step& step : session()) {
        checkStep(f, model, step);
        QVERIFY2(!QTest::currentTestFailed(), qPrintable(step.button));
    }
    end(f, model);
    QCOMPARE(SettingsFixture::calls(), names(placesOfSession()));
    checkInstrument(library);
    // What the sweep tells apart: nothing written, and all of it.
    QVERIFY(bytesOf(library.afterPowerCycle().committed) != bytesOf(instrument->committed));
    QVERIFY(bytesOf(library.afterPowerCycle().network) != bytesOf(instrument->network));
}

void TestSweep::fault_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("call");
    QTest::addColumn<bool>("onwards");
    QTest::addColumn<int>("index");
    const QVector<FaultKind>& kinds = faultKinds();
    int index = 0;
    for (int kind = 0; kind < kinds.size(); ++kind) {
        for (const bool onwards : {false, true}) {
            for (const Place& place : placesOfSession()) {
                if (!kinds[kind].concerns(place.function) || (onwards && !kinds[kind].repeats))
                    continue;
                const QString name =
                    QStringLiteral("%1, %2 call %3 %4")
                        .arg(kinds[kind].name, place.function)
                        .arg(place.call)
                        .arg(onwards ? QStringLiteral("onwards") : QStringLiteral("once"));
                QTest::newRow(qPrintable(name))
                    << kind << place.function << place.call << onwards << index++;
            }
        }
    }
}

void TestSweep::fault() {
    QFETCH(const int, kind);
    QFETCH(const QString, function);
    QFETCH(const int, call);
    QFETCH(const bool, onwards);
    QFETCH(const int, index);
    const FaultKind& faultKind = faultKinds()[kind];
    const Place place = {function, call};

    SettingsFixture f;
    const std::optional<InstrumentModel> instrument = readInstrument();
    QVERIFY(instrument.has_value());
    LibraryModel library(*instrument, modelFault(faultKind, place, onwards));
    DialogModel model(library, m_files);
    open(f, model, faultRule(faultKind, place, onwards, index));
    if (!QTest::currentTestFailed())
        run(f, model);
    // A fault of the very last call is still to come.
    const bool isOver =
        place.function != QLatin1String("KVA_RegisterDeviceEventHandler") || call == 1;
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

QTEST_MAIN(TestSweep)
#include "tst_sweep.moc"
