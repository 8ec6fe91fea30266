#include "dialogs/LangSelectDialog.h"

#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/DebugLog.h"

#include <QGroupBox>
#include <QIcon>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <limits>

namespace {

constexpr int englishCode = 1;
constexpr int japaneseCode = 2;

template <typename Widget>
Widget* child(const LangSelectDialog& dialog, const char* name) {
    return dialog.findChild<Widget*>(QString::fromLatin1(name));
}

void click(const LangSelectDialog& dialog, const char* name) {
    auto* button = child<QAbstractButton>(dialog, name);
    // Near the left edge: a radio button is not clicked beside its text.
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(10, button->height() / 2));
}

} // namespace

/** The language selection dialog. */
class TestLangSelectDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void afterConstruction();
    void preselection_data();
    void preselection();
    void preparedWindow_data() { preselection_data(); }
    void preparedWindow();
    void textsAreTranslatedWhenPrepared();
    void lastClickWins_data();
    void lastClickWins();
    void checkingInCodeIsNoChoice();
    void okIsNoCancel();
    void returnPressesOk();
    void closedIsCancelled();
    void escapeIsNoCancel();
    void closedAfterOk();
    void hiddenIsNoCancel();
    void languageAfterCancel();
    void preparedTwice();
    void nothingIsLogged();
};

void TestLangSelectDialog::afterConstruction() {
    const LangSelectDialog dialog;
    QVERIFY(!dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
    QCOMPARE(dialog.languageCode, japaneseCode);
    QVERIFY(child<QRadioButton>(dialog, "jpnRadioBtn")->isChecked());
    QVERIFY(!child<QRadioButton>(dialog, "engRadioBtn")->isChecked());
    // What setLanguage applies is not there before.
    QVERIFY(child<QPushButton>(dialog, "pushButton")->styleSheet().isEmpty());
    QVERIFY(dialog.windowIcon().isNull());
    QCOMPARE(dialog.minimumSize(), QSize(0, 0));
}

void TestLangSelectDialog::preselection_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("language");
    QTest::newRow("English") << 1 << englishCode;
    QTest::newRow("Japanese") << 2 << japaneseCode;
    QTest::newRow("0") << 0 << japaneseCode;
    QTest::newRow("3") << 3 << japaneseCode;
    QTest::newRow("-1") << -1 << japaneseCode;
    QTest::newRow("highest") << std::numeric_limits<int>::max() << japaneseCode;
    QTest::newRow("lowest") << std::numeric_limits<int>::min() << japaneseCode;
}

void TestLangSelectDialog::preselection() {
    QFETCH(int, code);
    QFETCH(int, language);
    LangSelectDialog dialog;
    dialog.setLanguage(code);
    QCOMPARE(dialog.languageCode, language);
    QCOMPARE(child<QRadioButton>(dialog, "engRadioBtn")->isChecked(), language == englishCode);
    QCOMPARE(child<QRadioButton>(dialog, "jpnRadioBtn")->isChecked(), language == japaneseCode);
    QVERIFY(!dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
    dialog.show();
    click(dialog, "pushButton");
    QCOMPARE(dialog.languageCode, language);
    QVERIFY(dialog.isFinished);
}

void TestLangSelectDialog::preparedWindow() {
    QFETCH(int, code);
    LangSelectDialog dialog;
    dialog.setLanguage(code);
    const QString iconPath = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                             QStringLiteral("/../Resources/VQ_TL4.ico"));
    QVERIFY(QFile::exists(iconPath));
    QVERIFY(!dialog.windowIcon().isNull());
    const QImage image = QIcon(iconPath).pixmap(32).toImage();
    QVERIFY(!image.isNull());
    QCOMPARE(dialog.windowIcon().pixmap(32).toImage(), image);
    QCOMPARE(dialog.windowFlags(),
             onceSet(Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                     Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint));
    QCOMPARE(child<QPushButton>(dialog, "pushButton")->styleSheet(),
             QStringLiteral("QPushButton:default{background-color:gainsboro;}"));
    QCOMPARE(dialog.minimumSize(), QSize(351, 170));
    QCOMPARE(dialog.maximumSize(), QSize(351, 170));
    QCOMPARE(dialog.size(), QSize(351, 170));
    QVERIFY(!dialog.isVisible());
}

/** The window's title and its button keep the language that they were made in. */
void TestLangSelectDialog::textsAreTranslatedWhenPrepared() {
    LangSelectDialog dialog;
    const InstalledTranslation japanese(QStringLiteral("jp"));
    QVERIFY(japanese.isLoaded());
    QCOMPARE(child<QGroupBox>(dialog, "langselgrpBox")->title(), QStringLiteral("LanguageType"));
    dialog.setLanguage(englishCode);
    QCOMPARE(child<QGroupBox>(dialog, "langselgrpBox")->title(), QStringLiteral("言語"));
    QCOMPARE(child<QRadioButton>(dialog, "jpnRadioBtn")->text(), QStringLiteral("日本語"));
    QCOMPARE(child<QRadioButton>(dialog, "engRadioBtn")->text(), QStringLiteral("English"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Select Language"));

    const MarkingTranslator marking;
    dialog.setLanguage(englishCode);
    QCOMPARE(child<QGroupBox>(dialog, "langselgrpBox")->title(),
             MarkingTranslator::marked("LangSelectDialog", "LanguageType"));
    QCOMPARE(child<QRadioButton>(dialog, "jpnRadioBtn")->text(),
             MarkingTranslator::marked("LangSelectDialog", "Japanese"));
    QCOMPARE(child<QRadioButton>(dialog, "engRadioBtn")->text(),
             MarkingTranslator::marked("LangSelectDialog", "English"));
}

void TestLangSelectDialog::lastClickWins_data() {
    QTest::addColumn<int>("preselected");
    QTest::addColumn<QByteArray>("clicks"); // e: English, j: Japanese
    QTest::addColumn<int>("language");
    QTest::newRow("English, Japanese") << 1 << QByteArray("ej") << japaneseCode;
    QTest::newRow("Japanese, English") << 1 << QByteArray("je") << englishCode;
    QTest::newRow("English over Japanese") << 2 << QByteArray("e") << englishCode;
    QTest::newRow("Japanese over English") << 1 << QByteArray("j") << japaneseCode;
    QTest::newRow("checked English again") << 1 << QByteArray("e") << englishCode;
    QTest::newRow("checked Japanese again") << 2 << QByteArray("jj") << japaneseCode;
    QTest::newRow("to and fro") << 2 << QByteArray("ejeje") << englishCode;
}

void TestLangSelectDialog::lastClickWins() {
    QFETCH(int, preselected);
    QFETCH(QByteArray, clicks);
    QFETCH(int, language);
    LangSelectDialog dialog;
    dialog.setLanguage(preselected);
    dialog.show();
    for (const char button : clicks) {
        click(dialog, button == 'e' ? "engRadioBtn" : "jpnRadioBtn");
        QCOMPARE(dialog.languageCode, button == 'e' ? englishCode : japaneseCode);
        QVERIFY(!dialog.isFinished);
    }
    QCOMPARE(child<QRadioButton>(dialog, "engRadioBtn")->isChecked(), language == englishCode);
    QCOMPARE(child<QRadioButton>(dialog, "jpnRadioBtn")->isChecked(), language == japaneseCode);
    click(dialog, "pushButton");
    QCOMPARE(dialog.languageCode, language);
}

void TestLangSelectDialog::checkingInCodeIsNoChoice() {
    LangSelectDialog dialog;
    dialog.setLanguage(japaneseCode);
    child<QRadioButton>(dialog, "engRadioBtn")->setChecked(true);
    QCOMPARE(dialog.languageCode, japaneseCode);
}

void TestLangSelectDialog::okIsNoCancel() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    click(dialog, "pushButton");
    QVERIFY(dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
    QVERIFY(!dialog.isVisible());
}

void TestLangSelectDialog::returnPressesOk() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(&dialog, Qt::Key_Return);
    QVERIFY(dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
    QVERIFY(!dialog.isVisible());
}

void TestLangSelectDialog::closedIsCancelled() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    const QSignalSpy finished(&dialog, &QDialog::finished);
    QVERIFY(dialog.close());
    QVERIFY(dialog.isFinished);
    QVERIFY(dialog.isCancelled);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(finished.count(), 1); // closed as any dialog is
}

void TestLangSelectDialog::escapeIsNoCancel() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(dialog.isVisible());
    QVERIFY(!dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
    QVERIFY(dialog.close());
    QVERIFY(dialog.isCancelled);
}

void TestLangSelectDialog::closedAfterOk() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    click(dialog, "pushButton");
    dialog.show();
    QVERIFY(dialog.close());
    QVERIFY(!dialog.isVisible());
    QVERIFY(dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
}

void TestLangSelectDialog::hiddenIsNoCancel() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    dialog.hide();
    QVERIFY(!dialog.isFinished);
    QVERIFY(!dialog.isCancelled);
}

void TestLangSelectDialog::languageAfterCancel() {
    LangSelectDialog dialog;
    dialog.setLanguage(japaneseCode);
    dialog.show();
    click(dialog, "engRadioBtn");
    QVERIFY(dialog.close());
    QVERIFY(dialog.isCancelled);
    QCOMPARE(dialog.languageCode, englishCode);
}

void TestLangSelectDialog::preparedTwice() {
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.setLanguage(japaneseCode);
    QCOMPARE(dialog.languageCode, japaneseCode);
    QVERIFY(child<QRadioButton>(dialog, "jpnRadioBtn")->isChecked());
    QCOMPARE(dialog.size(), QSize(351, 170));
}

void TestLangSelectDialog::nothingIsLogged() {
    const DebugLog log;
    LangSelectDialog dialog;
    dialog.setLanguage(englishCode);
    dialog.show();
    click(dialog, "jpnRadioBtn");
    click(dialog, "pushButton");
    QCOMPARE(log.lines(), QStringList());
}

QTEST_MAIN(TestLangSelectDialog)

#include "tst_lang_select_dialog.moc"
