#include "tests/dialogs/settings/ConnectedFixture.h"

#include <QAbstractEventDispatcher>

namespace {

const QString checkLine = "eEventCode_DisConnect check \n";
const QString trueLine = "eEventCode_DisConnect true \n";
const QString lostBox = SettingsFixture::lostBox;

QStringList eventLines(quint32 code) {
    QStringList lines(QString("outEventCode[%1],outRAWDataCount[0],outError[0] \n").arg(code));
    if (code == eEventCode_Standby)
        lines.append("eEventCode_Standby \n");
    else if (code == eEventCode_DisConnect)
        lines.append("eEventCode_DisConnect \n");
    else if (code > eEventCode_Last)
        lines.append(QString("eEventCode Unknown[%1] \n").arg(code));
    return lines;
}

/** Codes of events, and whether the connection is lost. */
using Events = Case<QVector<quint32>, bool>;

} // namespace

/** The disconnect watch. */
class TestWatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tickAfterALoss() {
        ConnectedFixture f;
        TestBench::unplug();
        QVERIFY(g_deviceDisconnected.load());
        bool flag = true;
        f.answers.onBox = [&, record = f.answers.onBox](QMessageBox& box) {
            record(box);
            flag = g_deviceDisconnected.load();
        };
        f.invoke("timerHit");

        QCOMPARE(f.records(), QStringList(lostBox) + eventLines(eEventCode_DisConnect)
                                  << checkLine << trueLine);
        QVERIFY(!flag);
        QVERIFY(!g_deviceDisconnected.load());

        // Everything is reset before the box comes up; afterwards nothing is done any more.
        QCOMPARE(f.atBox.everything, SettingsFixture::nothing());
        QCOMPARE(f.everything(), SettingsFixture::nothing());
        QVERIFY(f.controller->m_connected);
        QVERIFY(f.dialog.isVisible());
        QVERIFY(!f.dialog.isFinished);
    }

    void reportsOnceByItself() {
        SettingsFixture f;
        f.keepsWatching = true;
        QVERIFY(f.connectFirst());
        // What the event dispatcher runs, not only what the timer was told.
        const auto timers =
            QAbstractEventDispatcher::instance()->registeredTimers(&watchOf(f.dialog));
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers[0].interval, 1000);
        QCOMPARE(timers[0].timerType, Qt::PreciseTimer);
        QTRY_VERIFY_WITH_TIMEOUT(f.lines().count(checkLine) >= 2, 20000);
        QVERIFY(watchOf(f.dialog).isActive());
        QCOMPARE(f.boxes(), QStringList());
        TestBench::unplug();
        QTRY_COMPARE_WITH_TIMEOUT(f.boxes(), QStringList(lostBox), 20000);
        QCOMPARE(f.everything(), SettingsFixture::nothing());
        QCOMPARE(f.lines().count(trueLine), 1);

        // A tick that was under way, or a watch started again, finds nothing left to report.
        f.log.clear();
        watchOf(f.dialog).start();
        QTRY_VERIFY_WITH_TIMEOUT(f.lines().count(checkLine) >= 2, 20000);
        QCOMPARE(f.lines().count(trueLine), 0);
        QCOMPARE(f.boxes(), QStringList(lostBox));
    }

    void events_data() {
        addRows(QVector<Events>{
            {"none", {}, false},
            {"standby", {0}, false},
            {"disconnect, then standby", {6, 0}, false},
            {"standby, then disconnect", {0, 6}, true},
            {"disconnect twice", {6, 6}, true},
            {"disconnect, then another", {6, 7}, true},
            {"other codes", {1, 5, 7, 9}, false},
            {"unknown code", {12}, false},
            {"disconnect, then unknown code", {6, 12}, true},
        });
    }

    void events() {
        const auto row = rowOf<Events>();
        ConnectedFixture f;
        const QStringList before = f.everything();
        QStringList lines;
        for (const quint32 code : row.given) {
            TestBench::emitEvent(code);
            lines += eventLines(code);
        }
        f.invoke("timerHit");

        lines.append(checkLine);
        if (row.expected)
            lines.append(trueLine);
        QCOMPARE(f.records(), (row.expected ? QStringList(lostBox) : QStringList()) + lines);
        QCOMPARE(f.everything(), row.expected ? SettingsFixture::nothing() : before);
    }

    void connectsAgainAfterALoss() {
        ConnectedFixture f;
        const QStringList connected = f.everything();
        TestBench::unplug();
        f.invoke("timerHit");
        f.clearRecords();
        f.click("ConnectPushBtn");
        QCOMPARE(f.boxes(),
                 QStringList("information: The measuring instruments is not connected."));
        QCOMPARE(f.everything(), SettingsFixture::nothing());

        TestBench::plug();
        f.clearRecords();
        f.click("ConnectPushBtn");
        QCOMPARE(f.boxes(), QStringList());
        QCOMPARE(f.everything(), connected);
        QCOMPARE(f.lines(), SettingsFixture::connectLines());

        f.clearRecords();
        f.invoke("timerHit");
        QCOMPARE(f.records(), QStringList(checkLine));
        QCOMPARE(f.everything(), connected);
    }

    void eventOfTheNewConnectionIsReported() {
        ConnectedFixture f;
        TestBench::emitEvent(eEventCode_DisConnect);
        f.invoke("timerHit");
        QVERIFY(f.controller->Disconnect());
        f.click("ConnectPushBtn");
        f.clearRecords();
        TestBench::emitEvent(eEventCode_DisConnect);
        f.invoke("timerHit");

        QCOMPARE(f.boxes(), QStringList(lostBox));
        QCOMPARE(f.everything(), SettingsFixture::nothing());
    }

    // Connecting does not clear the flag: only the watch and a standby event do.
    void eventBeforeTheConnectionIsReported() {
        SettingsFixture f;
        TestBench::emitEvent(eEventCode_DisConnect);
        QVERIFY(f.connectFirst());
        QVERIFY(g_deviceDisconnected.load());
        f.invoke("timerHit");
        QCOMPARE(f.records(), (QStringList{lostBox, checkLine, trueLine}));
    }

    void stopsWithTheConnection_data() {
        addRows(QVector<NamedText>{{"Disconnect", "on_disConnectPushBtn_clicked"},
                                   {"Close", "on_ClosePushBtn_clicked"}});
    }

    // Nothing is reported to somebody who has left.
    void stopsWithTheConnection() {
        const auto row = rowOf<NamedText>();
        ConnectedFixture f;
        watchOf(f.dialog).setInterval(1);
        QTRY_VERIFY(f.lines().contains(checkLine));
        f.invoke(row.value);
        QVERIFY(!watchOf(f.dialog).isActive());
        f.clearRecords();
        TestBench::emitEvent(eEventCode_DisConnect);
        QCoreApplication::processEvents();
        QCOMPARE(f.records(), eventLines(eEventCode_DisConnect));
    }

    // The serial number is read once more after the box: now from an instrument that is gone.
    void lossDuringTheBoxOfARegistration() {
        const CalibrationTab& tab = calibrationTab(false);
        ConnectedFixture f(tab.page);
        f.choose(tab.chooseButton, f.folder.write("white.csv", tab.file()));
        f.clearRecords();
        QString report;
        f.answers.onBox = [&](QMessageBox& box) { report = f.loseBehind(box); };
        f.click(tab.writeButton);

        QCOMPARE(report, lostBox);
        QCOMPARE(f.boxes(), QStringList("information: Successful device writing."));
        QCOMPARE(f.texts(), SettingsFixture::noTexts);
        QStringList disabled = SettingsFixture::disabledWhenNotConnected;
        disabled.removeOne(tab.writeButton); // a registration ends with it enabled
        QCOMPARE(f.disabled(), disabled);
    }

    // The watch does not run yet while the dialog is being filled: its first tick finds the loss.
    void lossDuringTheBoxesOfAConnection() {
        SettingsFixture f;
        TestBench::set(R"({"wirelessModule": false})");
        f.controller->GetDevicePortList();
        f.answers.onBox = [&](QMessageBox&) {
            f.answers.onBox = nullptr;
            TestBench::unplug();
        };
        f.dialog.connectDevice(0, true);
        f.dialog.show();
        QCOMPARE(f.boxes(), (QStringList{"information: Wireless LAN is invalid.",
                                         "error: Failed to device WhiteCalibPlateSerialNo.",
                                         "error: Failed to device AmbientLightAdapterSerialNo.",
                                         "error: Failed to read automatic shutdown time."}));
        QVERIFY(watchOf(f.dialog).isActive());
        f.clearRecords();
        QTRY_COMPARE_WITH_TIMEOUT(f.boxes(), QStringList(lostBox), 20000);
        QCOMPARE(f.everything(), SettingsFixture::nothing());
    }

    // The watch runs until the box of the failed disconnect is gone.
    void lossDuringTheBoxOfAFailedClose() {
        ConnectedFixture f;
        TestBench::answer("KVA_Disconnect");
        QString report;
        f.answers.onBox = [&](QMessageBox& box) { report = f.loseBehind(box); };
        QVERIFY(f.dialog.close());

        QCOMPARE(report, lostBox);
        QCOMPARE(f.boxes(), QStringList("error: Failed to disconnect device."));
        QVERIFY(f.dialog.isFinished);
        QVERIFY(!f.dialog.isVisible());
        QVERIFY(!watchOf(f.dialog).isActive());
    }
};

TEST_CLASS(TestWatch)
#include "tst_watch.moc"
