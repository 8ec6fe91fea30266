#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/settings/SettingsFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QCoreApplication>
#include <QFileDialog>
#include <QGroupBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTranslator>
#include <QtTest>

#include <cstdio>

/** Walks the accessibility tree of each window, in both languages, and prints it. */
class TestAccessibleNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void languageDialog_data() { languages(); }
    void languageDialog();
    void instrumentDialog_data() { languages(); }
    void instrumentDialog();
    void settingsDialog_data() { languages(); }
    void settingsDialog();
    void messageBox_data() { languages(); }
    void messageBox();
    void fileDialog_data() { languages(); }
    void fileDialog();
    void fields_data();
    void fields();
    void boxesHaveTheirOwnNames();
    void radioButtonsSayWhatTheySwitch();
    void valuesSayWhatTheyAre();

private:
    static void languages();

    QTranslator m_translator;
};

namespace {

/** One widget of the tree that takes the keyboard focus. */
struct Stop {
    QString object;
    QString name;
    QString description;
    QAccessible::Role role;
};

void walk(QAccessibleInterface* node, int depth, QVector<Stop>& stops) {
    if (!node || !node->isValid())
        return;
    const QAccessible::State state = node->state();
    const QString name = node->text(QAccessible::Name);
    const QString description = node->text(QAccessible::Description);
    if (!state.invisible || depth > 0) {
        std::printf("%*s%s \"%s\" (%s)%s\n", 2 * depth, "",
                    QMetaEnum::fromType<QAccessible::Role>().valueToKey(node->role()),
                    qUtf8Printable(name), qUtf8Printable(description),
                    state.focusable ? " focusable" : "");
    }
    const QObject* object = node->object();
    const auto* widget = qobject_cast<const QWidget*>(object);
    const bool isTabScroller = object && qobject_cast<const QTabBar*>(object->parent());
    if (widget && !isTabScroller && (state.focusable || (widget->focusPolicy() & Qt::TabFocus)))
        stops.append({object->objectName(), name, description, node->role()});
    for (int i = 0; i < node->childCount(); ++i)
        walk(node->child(i), depth + 1, stops);
}

QVector<Stop> stopsOf(QWidget& window) {
    QVector<Stop> stops;
    std::printf("\n");
    walk(QAccessible::queryAccessibleInterface(&window), 0, stops);
    std::fflush(stdout);
    return stops;
}

/** The widgets that take the focus and have no name. */
QStringList nameless(const QVector<Stop>& stops) {
    QStringList found;
    for (const Stop& stop : stops) {
        if (stop.name.trimmed().isEmpty())
            found.append(stop.object);
    }
    return found;
}

/** Those that do not say what they are for. Tabs have no description in Qt. */
QStringList undescribed(const QVector<Stop>& stops) {
    QStringList found;
    for (const Stop& stop : stops) {
        if (stop.role != QAccessible::PageTabList && stop.description.trimmed().isEmpty())
            found.append(stop.object);
    }
    return found;
}

} // namespace

void TestAccessibleNames::languages() {
    QTest::addColumn<QString>("file");
    QTest::newRow("English") << QStringLiteral("en.qm");
    QTest::newRow("Japanese") << QStringLiteral("jp.qm");
}

void TestAccessibleNames::init() {
    if (!QTest::currentDataTag())
        return;
    QFETCH(QString, file);
    QVERIFY(m_translator.load(QCoreApplication::applicationDirPath() +
                              QStringLiteral("/../Resources/") + file));
    QVERIFY(QCoreApplication::installTranslator(&m_translator));
}

void TestAccessibleNames::cleanup() {
    QCoreApplication::removeTranslator(&m_translator);
}

void TestAccessibleNames::languageDialog() {
    LangSelectDialog dialog;
    dialog.setLanguage(Language::english);
    dialog.show();
    const QVector<Stop> stops = stopsOf(dialog);
    QCOMPARE(stops.size(), 3);
    QCOMPARE(nameless(stops), QStringList());
    QCOMPARE(undescribed(stops), QStringList());
}

void TestAccessibleNames::instrumentDialog() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList({QStringLiteral("VARNE-1(USB,Serial#01000001)")});
    dialog.show();
    const QVector<Stop> stops = stopsOf(dialog);
    QCOMPARE(stops.size(), 2);
    QCOMPARE(nameless(stops), QStringList());
    QCOMPARE(undescribed(stops), QStringList());
}

void TestAccessibleNames::settingsDialog() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QSet<QString> seen;
    for (int page = 0; page < 4; ++page) {
        f.openPage(SettingsFixture::Page(page));
        const QVector<Stop> stops = stopsOf(f.dialog);
        QCOMPARE(nameless(stops), QStringList());
        QCOMPARE(undescribed(stops), QStringList());
        for (const Stop& stop : stops)
            seen.insert(stop.object);
    }
    // All inputs of the form were met: 18 edits, 8 radio buttons, 13 push buttons.
    int inputs = 0;
    const auto widgets = f.dialog.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (!qobject_cast<const QLineEdit*>(widget) &&
            !qobject_cast<const QAbstractButton*>(widget))
            continue;
        if (qobject_cast<const QTabBar*>(widget->parentWidget()))
            continue; // the buttons that scroll tabs, which are not needed here
        QVERIFY2(seen.contains(widget->objectName()), qUtf8Printable(widget->objectName()));
        ++inputs;
    }
    QCOMPARE(inputs, 18 + 8 + 13);
}

void TestAccessibleNames::messageBox() {
    SettingsFixture f;
    QVector<Stop> stops;
    QString text;
    f.answers.onBox = [&](QMessageBox& box) {
        stops = stopsOf(box);
        text = QAccessible::queryAccessibleInterface(&box)->text(QAccessible::Name);
    };
    f.dialog.showErrorMessage(QStringLiteral("Failed to connect device."));
    QCOMPARE(stops.size(), 2); // text and Ok
    QCOMPARE(nameless(stops), QStringList());
    QVERIFY(!text.isEmpty());
}

/** Qt's own, or the system's; what is to be filled in must have a name here too. */
void TestAccessibleNames::fileDialog() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVector<Stop> stops;
    f.answers.willCancel();
    f.answers.onFileDialog = [&](QFileDialog& dialog) { stops = stopsOf(dialog); };
    f.click(QStringLiteral("readToFilePushBtn"));
    QStringList objects;
    for (const Stop& stop : stops) {
        if (!stop.name.isEmpty())
            objects.append(stop.object);
    }
    QVERIFY(objects.contains(QStringLiteral("fileNameEdit")));
    QVERIFY(objects.contains(QStringLiteral("fileTypeCombo")));
}

void TestAccessibleNames::fields_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* file, const QString& object, const QString& name) {
        QTest::addRow("%s %s", file, qUtf8Printable(object))
            << QString::fromLatin1(file) << object << name;
    };
    const struct {
        const char* object;
        const char* english;
        const char* japanese;
    } addresses[] = {
        {"ipaddr%1lineEdit", "IP Address, octet %1", "IPアドレス、第%1オクテット"},
        {"subnetMask%1lineEdit", "Subnet Mask, octet %1", "サブネットマスク、第%1オクテット"},
        {"defGWaddr%1lineEdit", "Default Gateway, octet %1",
         "デフォルトゲートウェイ、第%1オクテット"},
        {"dnsaddr%1lineEdit", "DNS Server, octet %1", "DNSサーバー、第%1オクテット"},
    };
    for (const auto& address : addresses) {
        for (int octet = 1; octet <= 4; ++octet) {
            const QString object = QString::fromLatin1(address.object).arg(octet);
            row("en.qm", object, QString::fromUtf8(address.english).arg(octet));
            row("jp.qm", object, QString::fromUtf8(address.japanese).arg(octet));
        }
    }
    row("en.qm", QStringLiteral("SSIDlineEdit"), QStringLiteral("SSID"));
    row("en.qm", QStringLiteral("passwdlineEdit"), QStringLiteral("Security Key"));
    row("jp.qm", QStringLiteral("passwdlineEdit"), QStringLiteral("セキュリティキー"));
}

void TestAccessibleNames::fields() {
    QFETCH(QString, object);
    QFETCH(QString, name);
    SettingsFixture f;
    QCOMPARE(f.child<QLineEdit>(object).accessibleName(), name);
}

/** "Enable" alone, or "ON", says nothing to someone who does not see the box around it. */
/** Each box by its own title, also one inside another. */
void TestAccessibleNames::boxesHaveTheirOwnNames() {
    SettingsFixture f;
    const auto boxes = f.dialog.findChildren<QGroupBox*>();
    QCOMPARE(boxes.size(), 13);
    for (QGroupBox* box : boxes)
        QCOMPARE(QAccessible::queryAccessibleInterface(box)->text(QAccessible::Name), box->title());
}

void TestAccessibleNames::radioButtonsSayWhatTheySwitch() {
    SettingsFixture f;
    QCOMPARE(f.child(QStringLiteral("enableRadioBtn")).accessibleName(),
             QStringLiteral("Wireless LAN: enable"));
    QCOMPARE(f.child(QStringLiteral("disableRadioBtn")).accessibleName(),
             QStringLiteral("Wireless LAN: disable"));
    QCOMPARE(f.child(QStringLiteral("dhcpOnRadioBtn")).accessibleName(),
             QStringLiteral("DHCP: on"));
    QCOMPARE(f.child(QStringLiteral("dhcpOffRadioBtn")).accessibleName(),
             QStringLiteral("DHCP: off"));
}

void TestAccessibleNames::valuesSayWhatTheyAre() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    for (const char* name :
         {"serialNolabel", "firmVersionlabel", "MACAddresslabel", "curWCalibPlateSerialNolabel",
          "selWCPFileNamelabel", "selFileSerialNolabel", "curAmbAdpSerialNolabel",
          "selAmbAdpFnamelabel", "selAmbAdpFSerialNolabel"}) {
        QWidget& label = f.child(QString::fromLatin1(name));
        QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&label);
        QVERIFY2(!node->text(QAccessible::Description).isEmpty(), name);
    }
    QAccessibleInterface* serial =
        QAccessible::queryAccessibleInterface(&f.child(QStringLiteral("serialNolabel")));
    QCOMPARE(serial->text(QAccessible::Name), QStringLiteral("01234567"));
}

QTEST_MAIN(TestAccessibleNames)
#include "tst_accessible_names.moc"
