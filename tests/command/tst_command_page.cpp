// The report's page of runs that no program made: any texts, any numbers, damaged snapshots.
#include "CommandRun.h"
#include "PageReader.h"
#include "command/CalibrationPlot.h"
#include "command/HtmlReport.h"
#include "command/JournalReader.h"
#include "command/Snapshot.h"
#include "instrument/CalibrationAccessory.h"
#include "tests/support/TestMain.h"

#include <QDir>
#include <QFileInfo>

#include <cfloat>
#include <cmath>

class TestCommandPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_done.run(m_done.applyAll()).exitStatus == 0); }
    void namesTheFilesOfEachInstrument();
    void takesAnyText();
    void refusesADamagedSnapshot();
    void tellsOfValuesThatAreNoNumbers();
    void tellsOfARunWithoutInstruments();
    void drawsAnyNumbers_data();
    void drawsAnyNumbers();

private:
    /** All of the first run, from its journal. */
    JournalRun readRun() const;

    const CommandRun m_done; ///< after an `apply` of all four things
};

JournalRun TestCommandPage::readRun() const {
    Text problem;
    const auto reader = JournalReader::open(m_done.journal(), problem);
    std::optional<JournalRun> run;
    if (reader)
        problem = reader->run(1, run);
    return run.value_or(JournalRun());
}

void TestCommandPage::namesTheFilesOfEachInstrument() {
    JournalRun run = readRun();
    QCOMPARE(run.instruments.size(), std::size_t(1));
    // A second one, which got nothing of the plate.
    run.instruments.push_back(run.instruments[0]);
    JournalInstrument& second = run.instruments[1];
    Faults faults;
    auto wanted = Snapshot::check({"", second.wanted}, faults);
    const auto before = Snapshot::check({"", second.before}, faults);
    QVERIFY(wanted && before);
    CalibrationAccessory::whitePlate.merge(
        before->state.calibration.whiteSerialNo,
        CalibrationAccessory::whitePlate.values(before->state.calibration),
        wanted->state.calibration);
    second.wanted = wanted->toJson();
    // A third one, to which nothing was written.
    run.instruments.push_back(run.instruments[0]);
    run.instruments[2].before.clear();
    run.instruments[2].wanted.clear();
    // A file that a plan names for the second one.
    run.instruments[1].serialNumber = 1000002;
    const QByteArray ofPlan(64, 'f');
    run.inputs.push_back({"ambient-adapter 01000002", "plate.csv", ofPlan, {}});
    const auto page = HtmlReport::make(run, "journal", faults);
    QVERIFY(page);
    const Elements elements = elementsOf(*page);
    QCOMPARE(texts(named(elements, "th")).count("Ambient light adapter 01000002"), 1);
    QMap<QString, QStringList> cells; // by section
    for (const Element& cell : named(elements, "td")) {
        if (isWithin(elements, cell, "section"))
            cells[elements[cell.within[3]]["id"]].append(cell.text);
    }
    QCOMPARE(cells["instrument-1"].count(ofPlan), 0);
    QCOMPARE(cells["instrument-2"].count(ofPlan), 1);
    run.inputs.pop_back();
    for (const JournalInput& input : run.inputs) {
        const QString hash = QString::fromLatin1(input.sha256);
        QCOMPARE(cells["instrument-1"].count(hash), 1);
        QCOMPARE(cells["instrument-2"].count(hash), input.role == "white-plate" ? 0 : 1);
        QCOMPARE(cells["instrument-3"].count(hash), input.role == "network" ? 1 : 0);
    }
}

void TestCommandPage::takesAnyText() {
    JournalRun run = readRun();
    const QString hostile = QString::fromUtf8("a\x1b[31m\n\r\t</td><b>\"'&amp;]]>") +
                            QChar(0x202E) + QChar(0xD800) + QChar(0xFFFE) + QChar(0);
    run.user = run.host = run.libraryPath = run.toolVersion = hostile;
    run.librarySha256 = hostile.toUtf8();
    run.arguments = QStringList{hostile};
    run.inputs[0].path = run.inputs[0].role = hostile;
    JournalInstrument& part = run.instruments[0];
    part.snapshotPath = hostile;
    part.changes.push_back({hostile, hostile, hostile});
    part.outcome = JournalOutcome{hostile, {hostile}, -1, {}};
    part.verifications = {{{}, hostile}};
    Faults faults;
    const auto page = HtmlReport::make(run, hostile, faults);
    QVERIFY(page);
    const Elements elements = elementsOf(*page);
    QVERIFY(!elements.isEmpty());
    QVERIFY(named(elements, "b").isEmpty());
    const QString shown = QString::fromUtf8("a\\u{1b}[31m\\u{a}\\u{d}\\u{9}</td><b>\"'&amp;"
                                            "]]>\\u{202e}\uFFFD\\u{fffe}\\u{0}");
    QCOMPARE(texts(elements).count(shown), 16);
}

void TestCommandPage::refusesADamagedSnapshot() {
    const JournalRun whole = readRun();
    for (QByteArray JournalInstrument::*snapshot :
         {&JournalInstrument::before, &JournalInstrument::wanted}) {
        JournalRun run = whole;
        (run.instruments[0].*snapshot).replace("-room", "-hall");
        Faults faults;
        QVERIFY(!HtmlReport::make(run, "journal", faults));
        QCOMPARE(faults.size(), std::size_t(1));
    }
    const CommandRun run;
    QVERIFY(QDir().mkpath(run.dataFolder()));
    QVERIFY(QFile::copy(m_done.journal(), run.journal()));
    editSnapshots(run.journal());
    const CommandResult got = run.run({"report", "1", "--to", run.path("new.html")});
    QVERIFY2(got.exitStatus == 3, got.text());
    QVERIFY2(got.standardError.contains("The snapshot is damaged or was edited"), got.text());
    QVERIFY(!QFileInfo::exists(run.path("new.html")));
}

/** The plot has nothing of them, the table has their bits. */
void TestCommandPage::tellsOfValuesThatAreNoNumbers() {
    JournalRun run = readRun();
    JournalInstrument& part = run.instruments[0];
    Faults faults;
    auto before = Snapshot::check({"", part.before}, faults);
    QVERIFY(before);
    for (float& value : before->state.calibration.rfWhite.spcData)
        value = std::nanf("");
    part.before = before->toJson();
    // Nothing but values was changed, and the library warned.
    const auto isNoValue = [](const FieldChange& change) { return !change.field.contains('['); };
    part.changes.erase(std::remove_if(part.changes.begin(), part.changes.end(), isNoValue),
                       part.changes.end());
    part.outcome->warnings = KVA_WARNING_BATTERY_EMPTY;
    const auto page = HtmlReport::make(run, "journal", faults);
    QVERIFY(page);
    const Elements elements = elementsOf(*page);
    QVERIFY(named(elements, "desc").value(0).text.startsWith("Before: no numbers. After: from "));
    const QStringList said = texts(named(elements, "p"));
    QVERIFY(!said.filter("Values that are no numbers are in the table").isEmpty());
    QVERIFY(said.contains("Calibration values alone, below."));
    const QStringList cells = texts(named(elements, "td"));
    QCOMPARE(cells.count("0x7fc00000"), 38);
    QCOMPARE(cells.count("-"), 38);
    QVERIFY(cells.contains("KVA_WARNING_BATTERY_EMPTY"));
}

void TestCommandPage::tellsOfARunWithoutInstruments() {
    JournalRun run = readRun();
    run.instruments.clear();
    Faults faults;
    const auto page = HtmlReport::make(run, "journal", faults);
    QVERIFY(page);
    const QStringList captions = texts(named(elementsOf(*page), "caption"));
    QCOMPARE(captions, (QStringList{"Run", "Input files of the run"}));
}

void TestCommandPage::drawsAnyNumbers_data() {
    QTest::addColumn<QVector<float>>("before");
    QTest::addColumn<QVector<float>>("after");
    QTest::addColumn<int>("lines"); ///< pieces of both curves, beside the legend's two
    QTest::addColumn<QVector<int>>("marked");
    const auto add = [](const char* name, const QVector<float>& before, const QVector<float>& after,
                        int lines, const QVector<int>& marked = {}) {
        QTest::newRow(name) << before << after << lines << marked;
    };
    const float nan = std::nanf("");
    add("all zero", {0, 0, 0}, {0, 0, 0}, 2);
    add("all equal", {7, 7, 7}, {7, 7, 7}, 2);
    add("negative", {-5, -3, -4}, {-5, -5, -5}, 2);
    add("the largest", {FLT_MAX, -FLT_MAX, 0}, {-FLT_MAX, FLT_MAX, 1}, 2);
    add("the smallest", {FLT_TRUE_MIN, 0, 0}, {0, FLT_TRUE_MIN, 0}, 2);
    add("close together", {1, 1, 1}, {1, std::nextafter(1.0F, 2.0F), 1}, 2);
    add("a gap", {1, 2, nan, 3, 4}, {1, 2, 3, INFINITY, 5}, 3);
    add("no numbers", {nan, nan}, {nan, -INFINITY}, 0);
    add("up to a million", {0, 250000}, {1000000, 500000}, 2);
    add("in hundred-thousandths", {0, 2e-5F}, {1e-5F, 4e-5F}, 2);
    QVector<float> old;
    QVector<float> now;
    for (int i = 0; i <= 50; ++i) {
        old.append(float(0.5 + 0.4 * std::sin(i / 8.0)));
        now.append(old.back() + (i == 20 ? 0.75F : i == 40 ? -0.2F : 0.01F));
    }
    add("marked", old, now, 2, {20, 40});
    add("50 values", old.mid(1), now.mid(1), 2);
}

void TestCommandPage::drawsAnyNumbers() {
    QFETCH(QVector<float>, before);
    QFETCH(QVector<float>, after);
    QFETCH(int, lines);
    QFETCH(QVector<int>, marked);
    const std::vector<float> old(before.begin(), before.end());
    const std::vector<float> now(after.begin(), after.end());
    QByteArray page;
    HtmlWriter html(&page);
    CalibrationPlot{"plot",  "title", "description", "before",
                    "after", old,     now,           {marked.begin(), marked.end()}}
        .write(html);
    const Elements elements = elementsOf(page);
    QVERIFY(!elements.isEmpty());
    const QRectF picture(0, 0, 720, 386);
    for (const Element& element : elements) {
        const QString places = element["points"] + element["d"];
        QVERIFY2(!places.contains("nan") && !places.contains("inf"), qPrintable(places));
        for (const QPointF& point : pointsOf(element["points"]))
            QVERIFY2(picture.contains(point), qPrintable(places));
        if (element["class"] == "tick")
            QVERIFY2(std::isfinite(element.text.toDouble()), qPrintable(element.text));
    }
    QCOMPARE(named(elements, "polyline").size(), lines + 2);

    // Each was looked at in a browser.
    QFile seen(
        QString(COMMAND_DATA "/plots/%1.svg").arg(QTest::currentDataTag()).replace(' ', '-'));
    QVERIFY2(seen.open(QIODevice::ReadOnly), qPrintable(seen.fileName()));
    QCOMPARE(page.trimmed(), seen.readAll().trimmed());
}

TEST_CLASS(TestCommandPage)
#include "tst_command_page.moc"
