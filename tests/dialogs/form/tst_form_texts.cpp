#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"

#include <QLabel>
#include <QTabWidget>
#include <QtTest>

/** The texts of the forms, untranslated and translated. */
class TestFormTexts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void source_data() { addWidgetRows(); }
    void source();
    void lookedUpInOwnContext_data() { addWidgetRows(); }
    void lookedUpInOwnContext();
    void translated_data();
    void translated();
    void title_data();
    void title();
    void tabTexts();
    void valueLabelsAreEmpty();
};

void TestFormTexts::source() {
    QFETCH(int, form);
    QFETCH(int, row);
    const FormTable table = allForms()[form];
    const auto dialog = table.create();
    QVERIFY(findWidget(*dialog, table.rows[row].name));
    QCOMPARE(shownText(*dialog, table.rows[row]), QString::fromLatin1(table.rows[row].text));
}

void TestFormTexts::lookedUpInOwnContext() {
    QFETCH(int, form);
    QFETCH(int, row);
    const FormTable table = allForms()[form];
    const WidgetRow& expected = table.rows[row];
    const MarkingTranslator translator;
    const auto dialog = table.create();
    QVERIFY(findWidget(*dialog, expected.name));
    const bool hasText = expected.text && *expected.text;
    QCOMPARE(shownText(*dialog, expected),
             hasText ? MarkingTranslator::marked(table.name, expected.text) : QString());
}

void TestFormTexts::translated_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("row");
    const QVector<FormTable> forms = allForms();
    for (const char* language : languages) {
        for (int form = 0; form < forms.size(); ++form) {
            for (int row = 0; row < forms[form].rows.size(); ++row) {
                const char* text = forms[form].rows[row].text;
                if (text && *text)
                    QTest::addRow("%s %s.%s", language, forms[form].name,
                                  forms[form].rows[row].name)
                        << QString::fromLatin1(language) << form << row;
            }
        }
    }
}

void TestFormTexts::translated() {
    QFETCH(QString, language);
    QFETCH(int, form);
    QFETCH(int, row);
    const FormTable table = allForms()[form];
    const WidgetRow& expected = table.rows[row];
    const QString text = translationOf(language, QString::fromLatin1(table.name),
                                       QString::fromLatin1(expected.text));
    QVERIFY(!text.isEmpty());
    const InstalledTranslation translation(language);
    QVERIFY(translation.isLoaded());
    QCOMPARE(shownText(*table.create(), expected), text);
}

void TestFormTexts::title_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("form");
    QTest::addColumn<QString>("title");
    const char* const japanese[] = {"分光測色計設定ツール VQ-TL4", "言語の選択", "測定器の選択"};
    for (int i = 0; i < allForms().size(); ++i) {
        const FormTable form = allForms()[i];
        QTest::addRow("en %s", form.name)
            << QStringLiteral("en") << i << QString::fromLatin1(form.title);
        QTest::addRow("jp %s", form.name)
            << QStringLiteral("jp") << i << QString::fromUtf8(japanese[i]);
    }
}

void TestFormTexts::title() {
    QFETCH(QString, language);
    QFETCH(int, form);
    QFETCH(QString, title);
    const FormTable table = allForms()[form];
    {
        const InstalledTranslation translation(language);
        QVERIFY(translation.isLoaded());
        QCOMPARE(table.create()->windowTitle(), title);
    }
    const MarkingTranslator translator;
    QCOMPARE(table.create()->windowTitle(), MarkingTranslator::marked(table.name, table.title));
}

void TestFormTexts::tabTexts() {
    const auto dialog = settingForm().create();
    const auto* tabs = dialog->findChild<QTabWidget*>(QStringLiteral("setBasetabWidget"));
    QVERIFY(tabs);
    QStringList texts;
    for (int i = 0; i < tabs->count(); ++i)
        texts.append(tabs->tabText(i));
    QCOMPARE(texts, QStringList({QStringLiteral("Network"), QStringLiteral("Auto Power Off"),
                                 QStringLiteral("White calibration plate"),
                                 QStringLiteral("Ambient light adapter")}));
}

void TestFormTexts::valueLabelsAreEmpty() {
    const auto dialog = settingForm().create();
    for (const char* name :
         {"serialNolabel", "firmVersionlabel", "MACAddresslabel", "curWCalibPlateSerialNolabel",
          "selWCPFileNamelabel", "selFileSerialNolabel", "curAmbAdpSerialNolabel",
          "selAmbAdpFnamelabel", "selAmbAdpFSerialNolabel"}) {
        const auto* label = qobject_cast<QLabel*>(findWidget(*dialog, name));
        QVERIFY2(label, name);
        QVERIFY2(label->text().isEmpty(), name);
    }
}

QTEST_MAIN(TestFormTexts)

#include "tst_form_texts.moc"
