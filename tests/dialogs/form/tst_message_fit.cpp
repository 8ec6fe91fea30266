#include "tests/dialogs/form/Measure.h"

#include "dialogs/InitSettingDialog.h"
#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/ModalAnswerer.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QTextDocument>
#include <QtTest>

namespace {

const char* const networkWritten =
    "Write successful. To reflect, after [Disconnect], turn the power "
    "supply of the measuring instrument OFF -> ON.";

/** What the program says in message boxes, in the settings dialog and, last, at its start. */
const char* const messages[] = {
    "Failed to connect device.",
    "Failed to read device data.",
    "Wireless LAN is invalid.",
    "Failed to device WhiteCalibPlateSerialNo.",
    "Failed to device AmbientLightAdapterSerialNo.",
    "Failed to read automatic shutdown time.",
    "The measuring instruments is not connected.",
    "Failed to device disconnect.",
    "Failed to disconnect device.",
    "The connection with the measuring instrument was disconnected.",
    "The input value is invalid.",
    "Failed to read Network Infomation data.",
    "Successful read body data.",
    "Failed to read Network Infomation file data.",
    "Successful read file data.",
    "Successful file writing.",
    "Failed to write Network Infomation file data.",
    networkWritten,
    "Failed to write Network Infomation data.",
    "Failed to read file data.",
    "Failed to write WhiteCalibPlate file.",
    "Failed to write WhiteCalibPlate data.",
    "Failed to write AmbientLightAdapter file.",
    "Failed to write AmbientLightAdapter data.",
    "Successful device writing.",
    "Failed to write automatic shutdown time.",
    "Failed to set default language.",
    "Failed to set select(japanese) language.",
    "Failed to set select(English) language.",
};

} // namespace

/** Every message is shown whole, as plain text, in both languages. */
class TestMessageFit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void allMessagesAreListed();
    void message_data();
    void message();
};

void TestMessageFit::initTestCase() {
    QVERIFY(Measure::usesProgramFont());
}

/** All sentences of the translation are messages, and the other way round. */
void TestMessageFit::allMessagesAreListed() {
    QStringList sentences;
    for (const TranslationEntry& entry :
         readTranslationSource(translationSourcePath(QStringLiteral("jp")))) {
        if (entry.translation.endsWith(QStringLiteral("。")))
            sentences.append(entry.source);
    }
    QStringList listed;
    for (const char* text : messages)
        listed.append(QString::fromLatin1(text));
    sentences.removeDuplicates();
    sentences.sort();
    listed.sort();
    QCOMPARE(sentences, listed);
}

void TestMessageFit::message_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("text");
    for (const char* language : languages) {
        const QString name = QString::fromLatin1(language);
        for (const TranslationEntry& entry : readTranslationSource(translationSourcePath(name))) {
            for (const char* text : messages) {
                if (entry.source == QLatin1String(text))
                    QTest::addRow("%s %s: %s", language, qUtf8Printable(entry.context), text)
                        << name << entry.translation;
            }
        }
    }
}

void TestMessageFit::message() {
    QFETCH(QString, language);
    QFETCH(QString, text);
    const InstalledTranslation translation(language);
    QVERIFY(translation.isLoaded());
    QVERIFY(!Qt::mightBeRichText(text));
    QCOMPARE(Measure::missingGlyphs(text), QString());
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    QStringList misfits;
    QStringList measured;
    bool isOnScreen = false;
    bool fitsTitle = false;
    answerer.onBox = [&](QMessageBox& box) {
        misfits = Measure::misfits(box);
        measured = Measure::measuredTexts(box);
        isOnScreen = box.screen()->availableGeometry().contains(box.geometry());
        fitsTitle = box.fontMetrics().horizontalAdvance(box.windowTitle()) < box.width();
    };
    dialog.showErrorMessage(text);
    QCOMPARE(answerer.boxes.size(), 1);
    QCOMPARE(misfits.join(QLatin1Char('\n')), QString());
    QVERIFY(measured.contains(text));
    QVERIFY(isOnScreen);
    QVERIFY(fitsTitle);
}

// Not QTEST_MAIN: it fixes the resolution at 96 dots per inch.
int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    TestMessageFit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_message_fit.moc"
