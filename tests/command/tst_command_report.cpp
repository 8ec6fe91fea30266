// The report of vq-tl4ctl: that the page is one that every browser takes, shows what was done and
// nothing else, and draws the values as they are.
#include "CommandRun.h"
#include "PageReader.h"
#include "tests/support/TestMain.h"

#include <QDir>
#include <QFileInfo>

#include <cmath>

namespace {

const QString ssid = "<script>alert('1')</script>";
const QString plateFile = "a&\"<b>'.csv";

QVector<double> valuesOf(const QJsonObject& instrument, const char* accessory) {
    QVector<double> values;
    const QJsonObject record =
        instrument["calibration"].toObject()["committed"].toObject()[accessory].toObject();
    for (const QJsonValue value : record["values"].toArray())
        values.append(value.toDouble());
    return values;
}

/** The greatest distance between two rows; infinite where they have another number of values. */
double distance(const QVector<double>& left, const QVector<double>& right) {
    double most = left.size() == right.size() ? 0 : INFINITY;
    for (int i = 0; i < qMin(left.size(), right.size()); ++i)
        most = qMax(most, std::fabs(left[i] - right[i]));
    return most;
}

QVector<double> lessOf(const QVector<double>& left, const QVector<double>& right) {
    QVector<double> result;
    for (int i = 0; i < left.size(); ++i)
        result.append(left[i] - right[i]);
    return result;
}

constexpr int wrongIndex = 40;

} // namespace

class TestCommandReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void isAPageForItself_data() { addPages(); }
    void isAPageForItself();
    void canBeFollowedByAScreenReader_data() { addPages(); }
    void canBeFollowedByAScreenReader();
    void escapesEveryText_data() { addPages(); }
    void escapesEveryText();
    void tellsWhatWasDone_data();
    void tellsWhatWasDone();
    void drawsTheValues_data();
    void drawsTheValues();
    void saysWhatWasRead();
    void saysWantedWhereNothingIsVerified();
    void drawsNothingThatDidNotChange();
    void tellsOfARunThatDidNotEnd();
    void refuses_data();
    void refuses();
    void writesAllOrNothing();

private:
    static void addPages();
    QByteArray pageOf(const CommandRun& run, const QString& number, const QString& language);
    CommandRun m_done; ///< after an `apply` of all four things, and a `verify`
    QMap<QString, QByteArray> m_pages;
    QJsonObject m_held;
};

QByteArray TestCommandReport::pageOf(const CommandRun& run, const QString& number,
                                     const QString& language) {
    const QString file = run.path(number + language + ".html");
    const CommandResult got = run.run({"report", number, "--to", file, "--lang", language});
    return got.exitStatus == 0 && got.standardOutput.isEmpty() && got.standardError.isEmpty()
               ? run.read(QFileInfo(file).fileName())
               : QByteArray();
}

void TestCommandReport::initTestCase() {
    QByteArray settings = m_done.read("wanted.ini").replace("second-room", ssid.toUtf8());
    m_done.write("wanted.ini", settings);
    m_done.write(plateFile, m_done.read("plate.csv"));
    m_done.write("adapter.csv", withValue(m_done.read("adapter.csv"), wrongIndex, "1.3"));
    QStringList arguments = m_done.applyAll();
    arguments.replaceInStrings("plate.csv", plateFile);
    const CommandResult got = m_done.run(arguments << "--accept-implausible");
    QVERIFY2(got.outcome() == "verified", got.text());
    QCOMPARE(m_done.run({"verify"}).exitStatus, 0);
    m_held = m_done.instrument();
    for (const char* language : {"en", "ja"}) {
        m_pages[language] = pageOf(m_done, "1", language);
        QVERIFY2(!m_pages[language].isEmpty(), language);
    }
}

void TestCommandReport::addPages() {
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << "en";
    QTest::newRow("Japanese") << "ja";
}

void TestCommandReport::isAPageForItself() {
    QFETCH(QString, language);
    const QByteArray page = m_pages[language];
    QVERIFY(page.startsWith("<!DOCTYPE html>"));
    // What browsers do not take in the short form.
    QVERIFY(!QRegularExpression("<(?!meta|path|polyline)\\w+[^>]*/>")
                 .match(QString::fromUtf8(page))
                 .hasMatch());
    const Elements elements = elementsOf(page);
    QVERIFY(!elements.isEmpty());
    const QStringList known = {"html", "head", "meta",  "title",   "style", "body",
                               "main", "h1",   "h2",    "h3",      "p",     "ul",
                               "li",   "a",    "table", "caption", "thead", "tbody",
                               "tr",   "th",   "td",    "section", "div",   "figure",
                               "svg",  "desc", "g",     "path",    "text",  "polyline"};
    const QStringList attributes = {
        "lang",    "charset",         "http-equiv", "content", "name", "class",
        "id",      "aria-labelledby", "scope",      "href",    "role", "aria-describedby",
        "viewBox", "points",          "d",          "x",       "y"};
    QStringList ids;
    for (const Element& element : elements) {
        QVERIFY2(known.contains(element.name), qPrintable(element.name));
        for (const QString& attribute : element.attributes.keys())
            QVERIFY2(attributes.contains(attribute), qPrintable(attribute));
        if (element.attributes.contains("id"))
            ids.append(element["id"]);
    }
    QCOMPARE(QSet<QString>(ids.begin(), ids.end()).size(), ids.size());
    for (const Element& link : named(elements, "a"))
        QVERIFY2(ids.contains(link["href"].mid(1)), qPrintable(link["href"]));
    for (const char* fetched : {"://", "url(", "@import", "javascript:"})
        QVERIFY2(!page.contains(fetched), fetched);
    QCOMPARE(elements[3]["content"], QString("default-src 'none'; style-src 'unsafe-inline'"));
    QCOMPARE(elements[3]["http-equiv"], QString("Content-Security-Policy"));
    // A browser takes the style as it is, without reading escapes.
    QVERIFY(page.contains(named(elements, "style").value(0).text.toUtf8()));
    QVERIFY(page.contains("@page { size: A4;"));
    QVERIFY(page.contains("@media screen and (prefers-color-scheme: dark)"));
}

void TestCommandReport::canBeFollowedByAScreenReader() {
    QFETCH(QString, language);
    const Elements elements = elementsOf(m_pages[language]);
    QCOMPARE(elements.value(0)["lang"], language);
    QCOMPARE(named(elements, "h1").size(), 1);
    int level = 0;
    for (const Element& element : elements) {
        if (element.name.size() != 2 || element.name[0] != 'h')
            continue;
        const int next = element.name.mid(1).toInt();
        QVERIFY2(next <= level + 1, qPrintable(element.text));
        QVERIFY(!element.text.isEmpty());
        level = next;
    }
    QCOMPARE(named(elements, "caption").size(), named(elements, "table").size());
    for (const Element& heading : named(elements, "th"))
        QCOMPARE(heading["scope"], QString(isWithin(elements, heading, "thead") ? "col" : "row"));
    QStringList ids;
    for (const char* name : {"title", "desc"}) {
        for (const Element& element : named(elements, name)) {
            QVERIFY(!element.text.isEmpty());
            ids.append(element["id"]);
        }
    }
    const Elements plots = named(elements, "svg");
    QCOMPARE(plots.size(), 2);
    for (const Element& plot : plots) {
        QCOMPARE(plot["role"], QString("img"));
        QVERIFY(ids.contains(plot["aria-labelledby"]));
        QVERIFY(ids.contains(plot["aria-describedby"]));
    }
    // The journal's sentences are English.
    QCOMPARE(named(elements, "ul").value(0)["lang"], QString("en"));
}

void TestCommandReport::escapesEveryText() {
    QFETCH(QString, language);
    const QStringList cells = texts(named(elementsOf(m_pages[language]), "td"));
    QVERIFY(cells.contains(ssid));
    QVERIFY(cells.contains(m_done.path(plateFile)));
    QVERIFY(!m_pages[language].contains("<script"));
    for (const char* key : CommandRun::keys)
        QVERIFY(!m_pages[language].contains(key));
}

void TestCommandReport::tellsWhatWasDone_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("wanted");
    QTest::newRow("English") << "en"
                             << QStringList{"VQ-TL4: report of run 1",
                                            "Instrument 01000001: verified",
                                            "equal in every byte.",
                                            "Before and after",
                                            "Serial number of the white calibration plate",
                                            "Ambient light adapter, instrument 01000001"};
    QTest::newRow("Japanese") << "ja"
                              << QStringList{"VQ-TL4 報告書(実行 1)", "測定器 01000001: verified",
                                             "変更前と変更後", "白色校正板のシリアル番号",
                                             "環境光アダプター(測定器 01000001)"};
}

void TestCommandReport::tellsWhatWasDone() {
    QFETCH(QString, language);
    QFETCH(QStringList, wanted);
    const Elements elements = elementsOf(m_pages[language]);
    const QStringList all = texts(elements);
    wanted += {"192.168.7.10", "192.168.7.20", "first-room", "15",       "60",       "12345678",
               "12345679",     "00012345",     "00012346",   "********", "verified", "held"};
    for (const QString& text : wanted)
        QVERIFY2(!all.filter(text).isEmpty(), qPrintable(text));
    for (const QVariantList& input : m_done.ask("SELECT sha256 FROM input_file"))
        QCOMPARE(all.count(input[0].toString()), 2); // in the recap, and with the instrument
    QVERIFY(all.contains(m_done.ask("SELECT library_sha256 FROM run")[0][0].toString()));
    QVERIFY(all.contains(m_done.snapshots().value(0)));
    // One row for each value.
    int rows = 0;
    for (const Element& row : named(elements, "tr"))
        rows += isWithin(elements, row, "table", "values") && isWithin(elements, row, "tbody");
    QCOMPARE(rows, 38 + 75);
    QVERIFY(!all.join(' ').contains("%1"));
}

void TestCommandReport::drawsTheValues_data() {
    QTest::addColumn<int>("plot");
    QTest::addColumn<QString>("accessory");
    QTest::addColumn<QStringList>("marked");
    QTest::newRow("white plate") << 0 << "white" << QStringList();
    QTest::newRow("ambient adapter")
        << 1 << "ambientAdapter" << QStringList{QString::number(wrongIndex)};
}

void TestCommandReport::drawsTheValues() {
    QFETCH(int, plot);
    QFETCH(QString, accessory);
    QFETCH(QStringList, marked);
    const PlotReader drawn(elementsOf(m_pages["en"]), plot);
    const auto before = valuesOf(CommandRun::initialInstrument(), qPrintable(accessory));
    const auto after = valuesOf(m_held, qPrintable(accessory));
    QVERIFY(after.size() > 30 && drawn.resolution > 0 && drawn.differenceResolution > 0);
    QVERIFY(distance(drawn.before, before) < drawn.resolution);
    QVERIFY(distance(drawn.after, after) < drawn.resolution);
    QVERIFY(distance(drawn.differences, lessOf(after, before)) < drawn.differenceResolution);
    QCOMPARE(drawn.marked, marked);
    // Fine enough to see what was changed.
    QVERIFY(drawn.resolution < distance(before, after));
}

/** All texts but those of plots and of their tables, as somebody has read them; what differs from
   run to run is replaced by a word in capitals. */
void TestCommandReport::saysWhatWasRead() {
    const Elements elements = elementsOf(m_pages["en"]);
    const QVariantList run =
        m_done.ask("SELECT user, host, tool_version, library_path FROM run").at(0);
    QStringList said;
    for (const Element& element : elements) {
        QString text = element.text.simplified();
        if (text.isEmpty() || element.name == "style" || isWithin(elements, element, "svg") ||
            isWithin(elements, element, "table", "values"))
            continue;
        text.replace(m_done.path(""), "FOLDER");
        text.replace(QRegularExpression("[0-9a-f]{64}"), "HASH");
        text.replace(QRegularExpression("[0-9]{4}-?[0-9]{2}-?[0-9]{2}[ T][0-9:]+Z"), "TIME");
        const char* const replaced[] = {"USER", "HOST", "VERSION", "LIBRARY"};
        for (int i = 0; i < run.size(); ++i) {
            if (text == run[i].toString())
                text = replaced[i];
        }
        said.append(element.name + ": " + text);
    }
    QFile read(COMMAND_DATA "/report.txt");
    QVERIFY(read.open(QIODevice::ReadOnly));
    QCOMPARE(said, QString::fromUtf8(read.readAll().trimmed()).split('\n'));
}

void TestCommandReport::saysWantedWhereNothingIsVerified() {
    CommandRun run;
    run.setFaults({rule("KVA_JIG_SetFactoryCalib_WriteSector", "1", {{"result", "KVA_ERROR"}})});
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("rolled-back"));
    const QByteArray page = pageOf(run, "1", "en");
    const QStringList all = texts(elementsOf(page));
    QVERIFY2(all.contains("01000001: rolled-back. The old state is back, and verified."), page);
    QVERIFY(all.contains("KVA_JIG_SetFactoryCalib_WriteSector answered KVA_ERROR."));
    QVERIFY(all.contains("Wanted"));
    QVERIFY(!all.contains("After"));
    QVERIFY(!all.contains("Before and after"));
}

void TestCommandReport::drawsNothingThatDidNotChange() {
    CommandRun run;
    QCOMPARE(run.run({"apply", "1000001", "--power-off", "off", "--yes"}).exitStatus, 0);
    QCOMPARE(run.run({"apply", "1000001", "--power-off", "off", "--yes"}).exitStatus, 0);
    const QByteArray changed = pageOf(run, "1", "en");
    QVERIFY(changed.contains("Automatic power-off, minutes"));
    QVERIFY(!changed.contains("<svg"));
    const QByteArray unchanged = pageOf(run, "2", "en");
    QVERIFY(unchanged.contains("The journal has no snapshot of this instrument"));
    QVERIFY(!unchanged.contains("<svg"));
}

void TestCommandReport::tellsOfARunThatDidNotEnd() {
    CommandRun run;
    const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);
    run.run(run.applyAll(), {preload, "SHIM_KILL=before:20"});
    QVERIFY(run.isMarked());
    QByteArray page = pageOf(run, "1", "en");
    QVERIFY2(page.contains("01000001: unfinished"), page);
    QVERIFY(page.contains("run vq-tl4ctl recover"));
    QVERIFY(!page.contains("verified"));
    QCOMPARE(run.run({"recover", "--yes", "--json"}).exitStatus, 4);
    QVERIFY(QFile::remove(run.path("1en.html")));
    page = pageOf(run, "1", "en");
    QVERIFY2(page.contains("A later run settled"), page);
    QVERIFY(pageOf(run, "2", "en").contains("This run ended an earlier one's unfinished write."));
}

void TestCommandReport::refuses_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QString>("reason");
    const auto add = [&](const char* name, const QStringList& arguments, int exitStatus,
                         const char* reason) {
        QTest::newRow(name) << arguments << exitStatus << reason;
    };
    add("an unknown run", {"2", "--to", "new.html"}, 3, "The journal has no run 2.");
    add("no number", {"x", "--to", "new.html"}, 3, "The journal has no run x.");
    add("no file", {"1"}, 2, "--to");
    add("no run", {"--to", "new.html"}, 2, "RUN");
    add("a file that is there", {"1", "--to", "adapter.csv"}, 3, "is there already");
    add("no folder", {"1", "--to", "none/new.html"}, 3, "cannot be written: No such file");
    add("a folder that is a file", {"1", "--to", "adapter.csv/new.html"}, 3, "cannot be written");
    add("another journal", {"1", "--to", "new.html", "--journal", "none.sqlite"}, 3,
        "There is no journal yet");
}

void TestCommandReport::refuses() {
    QFETCH(QStringList, arguments);
    QFETCH(int, exitStatus);
    QFETCH(QString, reason);
    arguments.replaceInStrings(QRegularExpression("^(.*\\.(html|csv|sqlite).*)$"),
                               m_done.path("\\1"));
    const QByteArray there = m_done.read("adapter.csv");
    const QStringList files = QDir(m_done.path(".")).entryList();
    const CommandResult got = m_done.run(QStringList{"report"} + arguments);
    QVERIFY2(got.exitStatus == exitStatus, got.text());
    QVERIFY2(got.standardError.contains(reason.toUtf8()), got.text());
    QCOMPARE(got.standardOutput, QByteArray());
    QCOMPARE(m_done.read("adapter.csv"), there);
    QCOMPARE(QDir(m_done.path(".")).entryList(), files);
}

/** A disk that fills up at each write in turn. */
void TestCommandReport::writesAllOrNothing() {
    const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);
    const QString folder = m_done.path("data/reports");
    QVERIFY(QDir().mkpath(folder));
    const QStringList arguments = {"report", "1", "--to", folder + "/one.html"};
    int refused = 0;
    CommandResult got;
    for (int writes = 1; writes < 100; ++writes) {
        got = m_done.run(arguments, {preload, "SHIM_FULL=" + QString::number(writes)});
        if (got.exitStatus == 0)
            break;
        ++refused;
        QVERIFY2(got.exitStatus == 3 && !got.standardError.isEmpty(), got.text());
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());
    }
    QVERIFY2(got.exitStatus == 0 && refused > 0, got.text());
    QVERIFY(!elementsOf(m_done.read("data/reports/one.html")).isEmpty());
}

TEST_CLASS(TestCommandReport)
#include "tst_command_report.moc"
