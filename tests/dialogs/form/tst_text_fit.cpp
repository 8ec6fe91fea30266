#include "tests/dialogs/form/Measure.h"

#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/InitSettingDialog.h"
#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/ModalAnswerer.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyleOptionFrame>
#include <QTabBar>
#include <QTabWidget>
#include <QtTest>

namespace {

/** The settings dialog as its owner shows it, without an instrument. */
std::unique_ptr<InitSettingDialog> shownSettings() {
    auto dialog = std::make_unique<InitSettingDialog>();
    dialog->connectDevice(-1, true);
    dialog->show();
    return dialog;
}

QTabWidget& tabsOf(const InitSettingDialog& dialog) {
    return *dialog.findChild<QTabWidget*>(QStringLiteral("setBasetabWidget"));
}

void addLanguages() {
    QTest::addColumn<QString>("language");
    QTest::newRow("untranslated") << QString();
    for (const char* language : languages)
        QTest::newRow(language) << QString::fromLatin1(language);
}

/** The texts of the buttons at the edge of one of Qt's own windows, in the order of their making.
 */
QStringList buttonTexts(const QDialog& window) {
    QStringList texts;
    const auto boxes = window.findChildren<QDialogButtonBox*>();
    for (const QDialogButtonBox* box : boxes) {
        for (const QAbstractButton* button : box->buttons())
            texts.append(button->text());
    }
    texts.sort();
    return texts;
}

/** A language's translation; of the empty one: none. */
std::unique_ptr<InstalledTranslation> install(const QString& language) {
    return language.isEmpty() ? nullptr : std::make_unique<InstalledTranslation>(language);
}

} // namespace

/** Every text of every window is in its language and shown whole, in both languages. */
class TestTextFit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void glyphs_data() { addLanguages(); }
    void glyphs();
    void settings_data() { addLanguages(); }
    void settings();
    void languageSelection_data() { addLanguages(); }
    void languageSelection();
    void instrumentSelection_data() { addLanguages(); }
    void instrumentSelection();
    void values_data();
    void values();
    void octets_data();
    void octets();
    void instruments_data();
    void instruments();
    void qtFileDialog_data();
    void qtFileDialog();
    void qtMessageBox_data();
    void qtMessageBox();
    void misfitIsSeen_data();
    void misfitIsSeen();
};

void TestTextFit::initTestCase() {
    QVERIFY(Measure::usesProgramFont());
}

void TestTextFit::glyphs() {
    QFETCH(QString, language);
    const auto entries = readTranslationSource(
        translationSourcePath(language.isEmpty() ? QStringLiteral("en") : language));
    QVERIFY(!entries.isEmpty());
    for (const TranslationEntry& entry : entries)
        QCOMPARE(Measure::missingGlyphs(entry.translation), QString());
    // U+FDD0 is no character; no font has it.
    QCOMPARE(Measure::missingGlyphs(QString(QChar(0xFDD0))), QString(QChar(0xFDD0)));
}

void TestTextFit::settings() {
    QFETCH(QString, language);
    const auto translation = install(language);
    const auto dialog = shownSettings();
    QStringList misfits;
    QSet<QString> measured;
    for (int tab = 0; tab < tabsOf(*dialog).count(); ++tab) {
        tabsOf(*dialog).setCurrentIndex(tab);
        misfits.append(Measure::misfits(*dialog));
        for (const QString& text : Measure::measuredTexts(*dialog))
            measured.insert(text);
    }
    misfits.removeDuplicates();
    QCOMPARE(misfits.join(QLatin1Char('\n')), QString());
    for (const WidgetRow& row : settingFormRows())
        QVERIFY2(measured.contains(shownText(*dialog, row)) || shownText(*dialog, row).isEmpty(),
                 row.name);
}

void TestTextFit::languageSelection() {
    QFETCH(QString, language);
    const auto translation = install(language);
    LangSelectDialog dialog;
    dialog.setLanguage(Language::english);
    dialog.show();
    QCOMPARE(Measure::misfits(dialog).join(QLatin1Char('\n')), QString());
    QCOMPARE(Measure::measuredTexts(dialog).size(), 4);
}

void TestTextFit::instrumentSelection() {
    QFETCH(QString, language);
    const auto translation = install(language);
    ConnectSelectDialog dialog;
    dialog.setDeviceList({QStringLiteral("VARNE-1(USB,Serial#1000001)")});
    dialog.show();
    QCOMPARE(Measure::misfits(dialog).join(QLatin1Char('\n')), QString());
    QCOMPARE(Measure::measuredTexts(dialog).size(), 1);
}

void TestTextFit::values_data() {
    QTest::addColumn<int>("tab");
    QTest::addColumn<QByteArray>("label");
    QTest::addColumn<QString>("value");
    const QString eightDigits = QStringLiteral("88888888");
    QTest::newRow("serial number")
        << 0 << QByteArray("serialNolabel") << QStringLiteral("4294967295");
    QTest::newRow("firmware version") << 0 << QByteArray("firmVersionlabel")
                                      << QStringLiteral("4294967295.-2147483648.-2147483648");
    QTest::newRow("MAC address") << 0 << QByteArray("MACAddresslabel")
                                 << QStringLiteral("DD:DD:DD:DD:DD:DD");
    QTest::newRow("plate") << 2 << QByteArray("curWCalibPlateSerialNolabel") << eightDigits;
    QTest::newRow("plate of file") << 2 << QByteArray("selFileSerialNolabel") << eightDigits;
    QTest::newRow("adapter") << 3 << QByteArray("curAmbAdpSerialNolabel") << eightDigits;
    QTest::newRow("adapter of file") << 3 << QByteArray("selAmbAdpFSerialNolabel") << eightDigits;
}

void TestTextFit::values() {
    QFETCH(int, tab);
    QFETCH(QByteArray, label);
    QFETCH(QString, value);
    const auto dialog = shownSettings();
    tabsOf(*dialog).setCurrentIndex(tab);
    auto* widget = qobject_cast<QLabel*>(findWidget(*dialog, label.constData()));
    QVERIFY(widget && widget->isVisible());
    widget->setText(value);
    QVERIFY(Measure::measuredTexts(*dialog).contains(value));
    QCOMPARE(Measure::misfits(*dialog).join(QLatin1Char('\n')), QString());
}

void TestTextFit::octets_data() {
    QTest::addColumn<QByteArray>("name");
    for (const WidgetRow& row : settingFormRows()) {
        if (qstrcmp(row.className, "QLineEdit") == 0 && qstrcmp(row.parent, "tcpIPGroupBox") == 0)
            QTest::newRow(row.name) << QByteArray(row.name);
    }
}

void TestTextFit::octets() {
    QFETCH(QByteArray, name);
    constexpr int marginBesideText = 2; // QLineEdit's own, on either side
    const auto dialog = shownSettings();
    const auto* edit = qobject_cast<QLineEdit*>(findWidget(*dialog, name.constData()));
    QVERIFY(edit);
    QStyleOptionFrame option;
    option.initFrom(edit);
    option.lineWidth = edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, edit);
    const QRect space = edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit);
    QVERIFY(edit->fontMetrics().horizontalAdvance(QStringLiteral("255")) + 2 * marginBesideText <=
            space.width());
    QVERIFY(edit->fontMetrics().height() <= space.height());
}

void TestTextFit::instruments_data() {
    QTest::addColumn<QString>("device");
    QTest::newRow("USB") << QStringLiteral("VARNE-1(USB,Serial#2147483647)");
    QTest::newRow("network") << QStringLiteral("VARNE-1(255.255.255.255,Serial#2147483647)");
}

void TestTextFit::instruments() {
    QFETCH(QString, device);
    ConnectSelectDialog dialog;
    dialog.setDeviceList({device});
    dialog.show();
    const auto* list = dialog.findChild<QListWidget*>(QStringLiteral("connectlistWidget"));
    QVERIFY(list->sizeHintForColumn(0) <= list->viewport()->width());
    QVERIFY(!list->horizontalScrollBar()->isVisible());
    QCOMPARE(list->textElideMode(), Qt::ElideRight);
}

void TestTextFit::qtFileDialog_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<QString>("fileName");
    const auto row = [](const char* name, const char* language, const char* slot,
                        const QStringList& buttons, const char* fileName) {
        QTest::newRow(name) << QString::fromLatin1(language) << QByteArray(slot) << buttons
                            << QString::fromUtf8(fileName);
    };
    const char* open = "on_readToFilePushBtn_clicked";
    const char* save = "on_writeFilePushBtn_clicked";
    const QString cancel = QStringLiteral("キャンセル");
    row("open, English", "en", open, {QStringLiteral("&Open"), QStringLiteral("Cancel")},
        "File &name:");
    row("save, English", "en", save, {QStringLiteral("&Save"), QStringLiteral("Cancel")},
        "File &name:");
    row("open, Japanese", "jp", open, {cancel, QStringLiteral("開く(&O)")}, "ファイル名(&N):");
    row("save, Japanese", "jp", save, {cancel, QStringLiteral("保存(&S)")}, "ファイル名(&N):");
}

/** Qt's own windows speak the language of the tool. */
void TestTextFit::qtFileDialog() {
    QFETCH(QString, language);
    QFETCH(QByteArray, slot);
    QFETCH(QStringList, buttons);
    QFETCH(QString, fileName);
    const InstalledTranslation translation(language);
    InitSettingDialog window;
    ModalAnswerer answerer;
    answerer.willCancel();
    QStringList shown;
    QString label;
    answerer.onFileDialog = [&](QFileDialog& dialog) {
        shown = buttonTexts(dialog);
        label = dialog.labelText(QFileDialog::FileName);
    };
    QVERIFY(QMetaObject::invokeMethod(&window, slot.constData()));
    QCOMPARE(shown, buttons);
    QCOMPARE(label, fileName);
}

void TestTextFit::qtMessageBox_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("English") << QStringLiteral("en")
                             << QStringList({QStringLiteral("&No"), QStringLiteral("&Yes"),
                                             QStringLiteral("OK")});
    QTest::newRow("Japanese") << QStringLiteral("jp")
                              << QStringList({QStringLiteral("OK"), QStringLiteral("いいえ(&N)"),
                                              QStringLiteral("はい(&Y)")});
}

/** Such as the file dialog's question whether to replace a file. */
void TestTextFit::qtMessageBox() {
    QFETCH(QString, language);
    QFETCH(QStringList, buttons);
    const InstalledTranslation translation(language);
    const QMessageBox box(QMessageBox::Question, QString(), QString(),
                          QMessageBox::Ok | QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(buttonTexts(box), buttons);
}

void TestTextFit::misfitIsSeen_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("label") << QByteArray("serialNoTLabel");
    QTest::newRow("right-aligned label") << QByteArray("curWCalibPlateSerialNoTlabel");
    QTest::newRow("label out of its box") << QByteArray("selWCPFileTlabel");
    QTest::newRow("button") << QByteArray("ConnectPushBtn");
    QTest::newRow("radio button") << QByteArray("enableRadioBtn");
    QTest::newRow("group") << QByteArray("wLanFileCtrlGroupBox");
    QTest::newRow("tab") << QByteArray("setBasetabWidget");
}

/** The measure itself: a text that is made longer, sign by sign, is found in the end, and not
    before it is as wide as its widget may show. */
void TestTextFit::misfitIsSeen() {
    QFETCH(QByteArray, name);
    const auto dialog = shownSettings();
    QWidget* widget = findWidget(*dialog, name.constData());
    QVERIFY(widget);
    for (int tab = 0; tab < tabsOf(*dialog).count() && !widget->isVisible(); ++tab)
        tabsOf(*dialog).setCurrentIndex(tab);
    QVERIFY(widget->isVisible());
    QCOMPARE(Measure::misfits(*dialog).join(QLatin1Char('\n')), QString());
    QString text;
    while (Measure::misfits(*dialog).isEmpty() && text.size() < 400) {
        text.append(QLatin1Char('n'));
        if (name == "setBasetabWidget")
            tabsOf(*dialog).setTabText(3, text);
        else
            widget->setProperty(widget->inherits("QGroupBox") ? "title" : "text", text);
        tabsOf(*dialog).repaint();
    }
    const int width = widget->fontMetrics().horizontalAdvance(text);
    QVERIFY(width > widget->width() / 4);
    QVERIFY(width <= widget->width() + widget->fontMetrics().horizontalAdvance(QLatin1Char('n')));
}

// Not QTEST_MAIN: it fixes the resolution at 96 dots per inch.
int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    TestTextFit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_text_fit.moc"
