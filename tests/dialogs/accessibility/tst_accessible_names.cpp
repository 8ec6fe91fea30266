#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/dialogs/settings/ConnectedFixture.h"

#include <QAccessible>

#include <cstdio>

namespace {

/** One widget of the tree that takes the keyboard focus. */
struct Stop {
    QString object;
    QString name;
    QString description;
    QAccessible::Role role;
};
using Stops = QVector<Stop>;

void walk(QAccessibleInterface* node, int depth, Stops& stops) {
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

/** Prints the tree of a window. */
Stops stopsOf(QWidget& window) {
    Stops stops;
    std::printf("\n");
    walk(QAccessible::queryAccessibleInterface(&window), 0, stops);
    std::fflush(stdout);
    return stops;
}

/** The widgets that take the focus and have no name. */
QStringList nameless(const Stops& stops) {
    QStringList found;
    for (const Stop& stop : stops) {
        if (stop.name.trimmed().isEmpty())
            found.append(stop.object);
    }
    return found;
}

/** Those that do not say what they are for, or have no name. Tabs have no description in Qt. */
QStringList unexplained(const Stops& stops) {
    QStringList found = nameless(stops);
    for (const Stop& stop : stops) {
        if (stop.role != QAccessible::PageTabList && stop.description.trimmed().isEmpty())
            found.append(stop.object);
    }
    return found;
}

} // namespace

/** Walks the accessibility tree of each window, in both languages, and prints it. */
class TestAccessibleNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choiceDialogs_data() { addRows(languages); }
    void choiceDialogs() {
        const auto row = rowOf<LanguageRow>();
        const InstalledTranslation translation(row.name);
        LangSelectDialog language;
        language.setLanguage(Language::english);
        language.show();
        QCOMPARE(stopsOf(language).size(), 3);
        QCOMPARE(unexplained(stopsOf(language)), QStringList());

        ConnectSelectDialog selection;
        selection.setDeviceList({"VARNE-1(USB,Serial#01000001)"});
        selection.show();
        QCOMPARE(stopsOf(selection).size(), 2);
        QCOMPARE(unexplained(stopsOf(selection)), QStringList());
    }

    void settingsDialog_data() { addRows(languages); }
    void settingsDialog() {
        const auto row = rowOf<LanguageRow>();
        const InstalledTranslation translation(row.name);
        ConnectedFixture f;
        QSet<QString> seen;
        for (int page = 0; page < 4; ++page) {
            f.openPage(SettingsFixture::Page(page));
            const Stops stops = stopsOf(f.dialog);
            QCOMPARE(unexplained(stops), QStringList());
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

    /** The file dialog is Qt's own, or the system's. What is to be filled in must have a name there
        too. */
    void openedBySettings_data() { addRows(languages); }
    void openedBySettings() {
        const auto row = rowOf<LanguageRow>();
        const InstalledTranslation translation(row.name);
        ConnectedFixture f;
        f.answers.onBox = [](QMessageBox& box) {
            const Stops stops = stopsOf(box);
            QCOMPARE(stops.size(), 2); // text and Ok
            QCOMPARE(nameless(stops), QStringList());
            QVERIFY(
                !QAccessible::queryAccessibleInterface(&box)->text(QAccessible::Name).isEmpty());
        };
        f.dialog.showErrorMessage("Failed to connect device.");
        QCOMPARE(f.answers.boxes.size(), 1);

        QStringList objects;
        f.answers.onFileDialog = [&](QFileDialog& dialog) {
            for (const Stop& stop : stopsOf(dialog)) {
                if (!stop.name.isEmpty())
                    objects.append(stop.object);
            }
            f.log.clear(); // Qt warns of the cells of a list that is still being read
        };
        f.click("readToFilePushBtn");
        QVERIFY(objects.contains("fileNameEdit"));
        QVERIFY(objects.contains("fileTypeCombo"));
    }

    /** "Enable" alone, or "ON", says nothing to someone who does not see the box around it. */
    void fields_data() { addRows(languages); }
    void fields() {
        const struct {
            const char* object;
            const char* english;
            const char* japanese;
        } fields[] = {
            {"ipaddr%1lineEdit", "IP Address, octet %1", "IPアドレス、第%1オクテット"},
            {"subnetMask%1lineEdit", "Subnet Mask, octet %1", "サブネットマスク、第%1オクテット"},
            {"defGWaddr%1lineEdit", "Default Gateway, octet %1",
             "デフォルトゲートウェイ、第%1オクテット"},
            {"dnsaddr%1lineEdit", "DNS Server, octet %1", "DNSサーバー、第%1オクテット"},
            {"SSIDlineEdit", "SSID", "SSID"},
            {"passwdlineEdit", "Security Key", "セキュリティキー"},
            {"enableRadioBtn", "Wireless LAN: enable", "無線LAN: 有効"},
            {"disableRadioBtn", "Wireless LAN: disable", "無線LAN: 無効"},
            {"dhcpOnRadioBtn", "DHCP: on", "DHCP: オン"},
            {"dhcpOffRadioBtn", "DHCP: off", "DHCP: オフ"},
        };
        const auto row = rowOf<LanguageRow>();
        const InstalledTranslation translation(row.name);
        SettingsFixture f;
        for (const auto& field : fields) {
            const QString name = qstrcmp(row.name, "en") == 0 ? field.english : field.japanese;
            const bool hasOctets = name.contains("%1");
            for (int octet = 1; octet <= (hasOctets ? 4 : 1); ++octet) {
                const auto numbered = [&](QString text) {
                    return text.replace("%1", QString::number(octet));
                };
                QCOMPARE(f.child(numbered(field.object)).accessibleName(), numbered(name));
            }
        }
    }

    /** Each box by its own title, also one inside another. */
    void boxesHaveTheirOwnNames() {
        SettingsFixture f;
        const auto boxes = f.dialog.findChildren<QGroupBox*>();
        QCOMPARE(boxes.size(), 13);
        for (QGroupBox* box : boxes)
            QCOMPARE(QAccessible::queryAccessibleInterface(box)->text(QAccessible::Name),
                     box->title());
    }

    void valuesSayWhatTheyAre() {
        ConnectedFixture f;
        for (const char* name :
             {"serialNolabel", "firmVersionlabel", "MACAddresslabel", "curWCalibPlateSerialNolabel",
              "selWCPFileNamelabel", "selFileSerialNolabel", "curAmbAdpSerialNolabel",
              "selAmbAdpFnamelabel", "selAmbAdpFSerialNolabel"}) {
            QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&f.child(name));
            QVERIFY2(!node->text(QAccessible::Description).isEmpty(), name);
        }
        QAccessibleInterface* serial =
            QAccessible::queryAccessibleInterface(&f.child("serialNolabel"));
        QCOMPARE(serial->text(QAccessible::Name), QString("01234567"));
    }
};

TEST_CLASS(TestAccessibleNames)
#include "tests/support/Widgets.h"
#include "tst_accessible_names.moc"

#include <QAccessibleWidget>
