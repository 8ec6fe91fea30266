#include "tests/dialogs/settings/SettingsFixture.h"

#include "simulator/KvaSim.h"

#include <QAbstractEventDispatcher>
#include <QtTest>

/** The disconnect watch. */
class TestWatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tickWithoutEvent();
    void tickAfterALoss();
    void goesOnLooking();
    void reportsOnceByItself();
    void otherEvents_data();
    void otherEvents();
    void connectsAgainAfterALoss();
    void eventOfTheNewConnectionIsReported();
    void eventBeforeTheConnectionIsReported();
    void stopsWithTheConnection_data();
    void stopsWithTheConnection();
};

namespace {

const QString checkLine = QStringLiteral("eEventCode_DisConnect check \n");
const QString trueLine = QStringLiteral("eEventCode_DisConnect true \n");
const QString lostBox =
    QStringLiteral("error: The connection with the measuring instrument was disconnected.");

QStringList eventLines(quint32 code) {
    QStringList lines(
        QStringLiteral("outEventCode[%1],outRAWDataCount[0],outError[0] \n").arg(code));
    if (code == eEventCode_Standby)
        lines.append(QStringLiteral("eEventCode_Standby \n"));
    else if (code == eEventCode_DisConnect)
        lines.append(QStringLiteral("eEventCode_DisConnect \n"));
    else if (code > eEventCode_Last)
        lines.append(QStringLiteral("eEventCode Unknown[%1] \n").arg(code));
    return lines;
}

} // namespace

void TestWatch::tickWithoutEvent() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.invoke("timerHit");

    QCOMPARE(f.lines(), QStringList(checkLine));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.everything(), before);
    QVERIFY(watchOf(f.dialog).isActive());
}

void TestWatch::tickAfterALoss() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(KvaSim_Unplug(SettingsFixture::serialNumber));
    KvaSim_WaitForEvents();
    QVERIFY(g_deviceDisconnected.load());
    QStringList duringBox;
    bool watching = true;
    bool flag = true;
    f.answers.onBox = [&](QMessageBox&) {
        duringBox = f.everything();
        watching = watchOf(f.dialog).isActive();
        flag = g_deviceDisconnected.load();
    };
    f.invoke("timerHit");

    QCOMPARE(f.lines(), eventLines(eEventCode_DisConnect) << checkLine << trueLine);
    QCOMPARE(f.boxes(), QStringList(lostBox));
    QCOMPARE(f.calls(), QStringList());
    QVERIFY(!watching);
    QVERIFY(!flag);
    QVERIFY(!watchOf(f.dialog).isActive());
    QVERIFY(!g_deviceDisconnected.load());

    // Everything is reset before the box comes up; afterwards nothing is done any more.
    QCOMPARE(f.everything(), duringBox);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QCOMPARE(f.checked(), QStringList());
    QCOMPARE(f.identity().join(QString()), QString());
    QCOMPARE(f.networkTexts().join(QString()), QStringLiteral("............"));
    QCOMPARE(f.calibrationTexts().join(QString()), QString());
    QVERIFY(f.controller->m_connected);
    QVERIFY(f.dialog.isVisible());
    QVERIFY(!f.dialog.isFinished);
}

void TestWatch::goesOnLooking() {
    SettingsFixture f;
    f.keepsWatching = true;
    QVERIFY(f.connectFirst());
    // What the event dispatcher runs, not only what the timer was told.
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&watchOf(f.dialog));
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers[0].interval, 1000);
    QCOMPARE(timers[0].timerType, Qt::PreciseTimer);
    QTRY_VERIFY_WITH_TIMEOUT(f.lines().count(checkLine) >= 2, 20000);
    QVERIFY(watchOf(f.dialog).isActive());
    QCOMPARE(f.boxes(), QStringList());
}

void TestWatch::reportsOnceByItself() {
    SettingsFixture f;
    f.keepsWatching = true;
    QVERIFY(f.connectFirst());
    QVERIFY(KvaSim_Unplug(SettingsFixture::serialNumber));
    QTRY_COMPARE_WITH_TIMEOUT(f.boxes(), QStringList(lostBox), 20000);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QVERIFY(!watchOf(f.dialog).isActive());

    // A tick that was under way, or a watch started again, finds nothing left to report.
    watchOf(f.dialog).start();
    QTRY_VERIFY_WITH_TIMEOUT(f.lines().count(checkLine) >= 2, 20000);
    QCOMPARE(f.lines().count(trueLine), 1);
    QCOMPARE(f.boxes(), QStringList(lostBox));
}

void TestWatch::otherEvents_data() {
    QTest::addColumn<QVector<quint32>>("codes");
    QTest::addColumn<bool>("lost");
    QTest::newRow("standby") << QVector<quint32>{0} << false;
    QTest::newRow("disconnect, then standby") << QVector<quint32>{6, 0} << false;
    QTest::newRow("standby, then disconnect") << QVector<quint32>{0, 6} << true;
    QTest::newRow("disconnect twice") << QVector<quint32>{6, 6} << true;
    QTest::newRow("disconnect, then another") << QVector<quint32>{6, 7} << true;
    QTest::newRow("other codes") << QVector<quint32>{1, 5, 7, 9} << false;
    QTest::newRow("unknown code") << QVector<quint32>{12} << false;
    QTest::newRow("disconnect, then unknown code") << QVector<quint32>{6, 12} << true;
}

void TestWatch::otherEvents() {
    QFETCH(QVector<quint32>, codes);
    QFETCH(bool, lost);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    QStringList lines;
    for (const quint32 code : codes) {
        SettingsFixture::emitEvent(code);
        lines += eventLines(code);
    }
    f.invoke("timerHit");

    lines.append(checkLine);
    if (lost)
        lines.append(trueLine);
    QCOMPARE(f.lines(), lines);
    QCOMPARE(f.boxes(), lost ? QStringList(lostBox) : QStringList());
    QCOMPARE(f.everything() == before, !lost);
    QCOMPARE(watchOf(f.dialog).isActive(), !lost);
}

void TestWatch::connectsAgainAfterALoss() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList connected = f.everything();
    QVERIFY(KvaSim_Unplug(SettingsFixture::serialNumber));
    KvaSim_WaitForEvents();
    f.invoke("timerHit");
    f.clearRecords();
    f.click(QStringLiteral("ConnectPushBtn"));
    QCOMPARE(f.boxes(), QStringList(QStringLiteral(
                            "information: The measuring instruments is not connected.")));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());

    QVERIFY(KvaSim_Plug(SettingsFixture::serialNumber));
    f.clearRecords();
    f.click(QStringLiteral("ConnectPushBtn"));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.everything(), connected);
    QVERIFY(watchOf(f.dialog).isActive());
    QCOMPARE(f.lines(), SettingsFixture::connectLines());

    f.clearRecords();
    f.invoke("timerHit");
    QCOMPARE(f.lines(), QStringList(checkLine));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.everything(), connected);
}

void TestWatch::eventOfTheNewConnectionIsReported() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    SettingsFixture::emitEvent(eEventCode_DisConnect);
    f.invoke("timerHit");
    QVERIFY(f.controller->Disconnect());
    f.click(QStringLiteral("ConnectPushBtn"));
    f.clearRecords();
    SettingsFixture::emitEvent(eEventCode_DisConnect);
    f.invoke("timerHit");

    QCOMPARE(f.boxes(), QStringList(lostBox));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
}

// Connecting does not clear the flag: only the watch and a standby event do.
void TestWatch::eventBeforeTheConnectionIsReported() {
    SettingsFixture f;
    SettingsFixture::emitEvent(eEventCode_DisConnect);
    QVERIFY(f.connectFirst());
    QVERIFY(g_deviceDisconnected.load());
    f.invoke("timerHit");

    QCOMPARE(f.lines(), (QStringList{checkLine, trueLine}));
    QCOMPARE(f.boxes(), QStringList(lostBox));
}

void TestWatch::stopsWithTheConnection_data() {
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("Disconnect") << QByteArray("on_disConnectPushBtn_clicked");
    QTest::newRow("Close") << QByteArray("on_ClosePushBtn_clicked");
}

// Nothing is reported to somebody who has left.
void TestWatch::stopsWithTheConnection() {
    QFETCH(QByteArray, slot);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    watchOf(f.dialog).setInterval(1);
    QTRY_VERIFY(f.lines().contains(checkLine));
    f.invoke(slot.constData());
    QVERIFY(!watchOf(f.dialog).isActive());
    f.clearRecords();
    SettingsFixture::emitEvent(eEventCode_DisConnect);
    QCoreApplication::processEvents();

    QCOMPARE(f.lines(), eventLines(eEventCode_DisConnect));
    QCOMPARE(f.boxes(), QStringList());
}

QTEST_MAIN(TestWatch)
#include "tst_watch.moc"
