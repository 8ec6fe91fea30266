#include "tests/unit/instrument/ControllerFixture.h"

namespace {

const NumberRow modes[] = {{"0", 0}, {"1", 1},     {"2", 2},     {"3", 3},
                           {"4", 4}, {"127", 127}, {"128", 128}, {"255", 255}};

} // namespace

class TestControllerPowerOff : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }
    void readsMode_data() { addRows(modes); }
    void readsMode() {
        const auto row = rowOf<NumberRow>();
        ConnectedController controller;
        TestBench::set(R"({"powerOffMode": )" + QByteArray(row.name) + '}');
        uint8_t mode = 77;
        QVERIFY(controller.GetShutdownTime(mode));
        QCOMPARE(qint64{mode}, row.value);
        const QString line = "KVA_GetShutdownTime() success[mode:%1].\n";
        QCOMPARE(controller.left(),
                 QStringList({"0", line.arg(row.value), "KVA_GetShutdownTime {} 0"}));
    }

    void failsToRead() {
        ConnectedController controller;
        TestBench::answer("KVA_GetShutdownTime", -9796);
        uint8_t mode = 255;
        QVERIFY(!controller.GetShutdownTime(mode));
        QCOMPARE(int{mode}, 255);
        mode = 1;
        QVERIFY(!controller.GetShutdownTime(mode));
        QCOMPARE(int{mode}, 1);
        QCOMPARE(controller.m_lastResult, -9796);
        QCOMPARE(controller.log.lines(), QStringList({"KVA_GetShutdownTime() failed[mode:255].\n",
                                                      "KVA_GetShutdownTime() failed[mode:1].\n"}));
    }

    void writesMode_data() { addRows(modes); }
    void writesMode() {
        const auto row = rowOf<NumberRow>();
        ConnectedController controller;
        QVERIFY(controller.SetShutdownTime(static_cast<uint8_t>(row.value)));
        const QString line = "KVA_SetShutdownTime() success[mode:%1].\n";
        const QString call = R"(KVA_SetShutdownTime {"mode":%1} 0)";
        QCOMPARE(controller.left(), QStringList({"0", line.arg(row.value), call.arg(row.value)}));
        QCOMPARE(qint64{TestBench::held(KVA_GetShutdownTime)}, row.value);
    }

    void failsToWrite() {
        ConnectedController controller;
        TestBench::answer("KVA_SetShutdownTime", -9799);
        QVERIFY(!controller.SetShutdownTime(3));
        QCOMPARE(controller.left(), QStringList({"-9799", "KVA_SetShutdownTime() failed[mode:3].\n",
                                                 R"(KVA_SetShutdownTime {"mode":3} -9799)"}));
        QCOMPARE(int{TestBench::held(KVA_GetShutdownTime)}, 2);
    }
};

TEST_CLASS(TestControllerPowerOff)
#include "tst_controller_power_off.moc"
