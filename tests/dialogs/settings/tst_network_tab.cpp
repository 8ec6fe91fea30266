#include "tests/dialogs/settings/ConnectedFixture.h"

namespace {

const QStringList sixteenOctets = words("10 1 2 3 4 5 6 7 8 9 11 12 13 14 15 16");

/** Keeps the reasons for which a widget gets the focus. */
class FocusReasons : public QObject {
public:
    explicit FocusReasons(QWidget& widget) { widget.installEventFilter(this); }

    QVector<Qt::FocusReason> reasons;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn)
            reasons.append(static_cast<QFocusEvent*>(event)->reason());
        return QObject::eventFilter(watched, event);
    }
};

struct Digits {
    const char* name;
    QString text;
    bool areDigits;
    int lookedAt; ///< so many characters
};

struct TabChange {
    const char* name;
    int from; ///< negative: not connected, so that the tabs are disabled
    int to;
    QString focused;
    QVector<Qt::FocusReason> reasons;
};

struct Read {
    const char* name;
    QString file; ///< empty: from the body
    double wireless;
    double dhcp;
};

} // namespace

/** The network tab: its checks and switches, the change of tabs, and what its buttons "Read From
   Body" and "Read From File..." do. */
class TestNetworkTab : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void digitsOnly_data() {
        addRows(QVector<Digits>{
            {"empty", "", false, 0},
            {"one digit", "0", true, 1},
            {"all digits", "0123456789", true, 10},
            {"leading zeros", "007", true, 3},
            {"too great for an octet", "256", true, 3},
            {"letter behind", "1a", false, 2},
            {"letter in front", "a12", false, 1},
            {"below 0", "1/2", false, 2},
            {"above 9", "1:2", false, 2},
            {"plus", "+12", false, 1},
            {"minus", "-12", false, 1},
            {"blank in front", " 12", false, 1},
            {"blank behind", "12 ", false, 3},
            {"blank", " ", false, 1},
            {"full-width", "１２３", false, 1},
            {"Arabic-Indic", "1٢3", false, 2},
            {"superscript", "2²", false, 2},
        });
    }

    void digitsOnly() {
        const auto row = rowOf<Digits>();
        SettingsFixture f;
        QCOMPARE(f.dialog.IsDigitsOnly(row.text), row.areDigits);

        QStringList lines(QString("length:%1\n").arg(row.text.length()));
        for (const QChar character : row.text.left(row.lookedAt))
            lines.append(character);
        QCOMPARE(f.lines(), lines);
    }

    void switchesTheEdits() {
        ConnectedFixture f;
        const QStringList checked = f.checked();
        f.dialog.SetTcpIpEditsEnabled(false);
        QCOMPARE(f.enabledAddressEdits(), 0);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
        for (const char* name :
             {"dhcpOnRadioBtn", "dhcpOffRadioBtn", "tcpIPGroupBox", "WLanGroupBox",
              "AccessPointgroupBox", "SSIDlineEdit", "passwdlineEdit"})
            QVERIFY2(f.child(name).isEnabled(), name);
        f.dialog.SetTcpIpEditsEnabled(true);
        QCOMPARE(f.enabledAddressEdits(), 16);
        QCOMPARE(f.checked(), checked);
        QCOMPARE(f.lines(), QStringList());
    }

    void dhcpOnKeepsTheTexts() {
        ConnectedFixture f;
        const QStringList texts = f.networkTexts();
        f.click("dhcpOnRadioBtn");

        QCOMPARE(f.checked().mid(0, 2), switchButtons(1, 1));
        QCOMPARE(f.enabledAddressEdits(), 0);
        QCOMPARE(f.networkTexts(), texts);
        QCOMPARE(f.records(), QStringList());
    }

    void dhcpOffEmptiesTheTexts() {
        ConnectedFixture f(SettingsFixture::Network, networkPatch({{"DHCPUse", 1}}));
        QCOMPARE(f.enabledAddressEdits(), 0);
        f.click("dhcpOffRadioBtn");
        const QStringList emptied = words("press-hall spectral-key ... ... ... ...");
        QCOMPARE(f.enabledAddressEdits(), 16);
        QCOMPARE(f.networkTexts(), emptied);

        // The button that is checked already as well.
        f.setOctets(sixteenOctets);
        f.click("dhcpOffRadioBtn");
        QCOMPARE(f.networkTexts(), emptied);
        QCOMPARE(f.calls(), QStringList());
    }

    void choosingTabs_data() {
        const QVector<Qt::FocusReason> other = {Qt::OtherFocusReason};
        addRows(QVector<TabChange>{
            {"network", 3, 0, "ConnectPushBtn", {}},
            {"power-off", 0, 1, "autoPowerOfftab", other},
            {"white plate", 0, 2, "curWCalibPlateSerialNolabel", other},
            {"adapter", 0, 3, "curAmbAdpSerialNolabel", other},
            {"power-off, from the adapter", 3, 1, "autoPowerOfftab", other},
            {"power-off, disabled", -1, 1, "ConnectPushBtn", {}},
            {"white plate, disabled", -1, 2, "ConnectPushBtn", {}},
            {"adapter, disabled", -1, 3, "ConnectPushBtn", {}},
        });
    }

    void choosingTabs() {
        const auto row = rowOf<TabChange>();
        SettingsFixture f;
        if (row.from < 0) {
            f.dialog.connectDevice(-1, true);
            f.dialog.show();
        } else {
            QVERIFY(f.connectFirst(SettingsFixture::Page(row.from)));
        }
        QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
        auto& start = f.child("ConnectPushBtn"); // outside of the pages
        if (row.from < 0)
            QCOMPARE(f.dialog.focusWidget(), &start);
        start.setEnabled(true);
        start.setFocus();
        f.clearRecords();
        FocusReasons focus(f.child(row.focused));
        f.openPage(SettingsFixture::Page(row.to));

        QCOMPARE(f.records(), QStringList(QString("select tab:%1").arg(row.to)));
        QVERIFY(f.dialog.focusWidget());
        QCOMPARE(f.dialog.focusWidget()->objectName(), row.focused);
        QCOMPARE(focus.reasons, row.reasons);
    }

    void unknownTabs() {
        ConnectedFixture f;
        const QWidget* focused = f.dialog.focusWidget();
        for (const int index : {-1, 4, 1000})
            QVERIFY(QMetaObject::invokeMethod(&f.dialog, "on_setBasetabWidget_currentChanged",
                                              Qt::DirectConnection, Q_ARG(int, index)));
        QCOMPARE(f.lines(), (QStringList{"select tab:-1", "select tab:4", "select tab:1000"}));
        QCOMPARE(f.dialog.focusWidget(), focused);
    }

    void reads_data() {
        addRows(QVector<Read>{
            {"body, both off", "", 0, 0},
            {"body, wireless on", "", 1, 0},
            {"body, DHCP on", "", 0, 1},
            {"body, both on", "", 1, 1},
            {"body, beyond on", "", 2, 9},
            {"file, both off", "settings.ini", 0, 0},
            {"file, wireless on", "settings.ini", 1, 0},
            {"file, DHCP on", "settings.ini", 0, 1},
            {"file, both on", "settings.ini", 1, 1},
            {"file, name without a dot", "settings", 1, 0},
            {"file, Japanese name", "設定 1.ini", 1, 0},
        });
    }

    void reads() {
        const auto row = rowOf<Read>();
        const QJsonObject values = networkValues(row.wireless, row.dhcp);
        ConnectedFixture f;
        f.setOctets({"x"});
        if (row.file.isEmpty())
            TestBench::set(networkPatch(values));
        const QJsonObject state = TestBench::state();
        if (row.file.isEmpty())
            f.click("readBodyPushBtn");
        else
            f.choose("readToFilePushBtn", f.folder.write(row.file, settingsFile(values)));

        const QStringList fromBody = {"information: Successful read body data.",
                                      "KVA_GetNetworkInfo"};
        const QStringList fromFile("information: Successful read file data.");
        QCOMPARE(f.records(), row.file.isEmpty() ? fromBody : fromFile);
        QCOMPARE(f.networkTexts(), networkTexts(values));
        QCOMPARE(f.checked().mid(0, 2), switchButtons(row.wireless, row.dhcp));
        QCOMPARE(f.enabledAddressEdits(), row.dhcp != 0 ? 0 : 16);
        // The page is filled before the box comes up, and no button is disabled meanwhile.
        QCOMPARE(f.atBox.everything, f.everything());
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
        QCOMPARE(TestBench::state(), state);
    }

    void readsAnEmptyKeyFromTheBody() {
        ConnectedFixture f;
        QJsonObject values = networkValues();
        values["IPAddress"] = "0.1.10.255";
        values["DefaultGateway"] = "0.0.0.0";
        values["EncryptKey"] = "";
        TestBench::set(networkPatch(values));
        f.click("readBodyPushBtn");
        QCOMPARE(f.networkTexts(), networkTexts(values));
    }
};

TEST_CLASS(TestNetworkTab)
#include "tst_network_tab.moc"
