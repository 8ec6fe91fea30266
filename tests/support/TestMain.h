#ifndef TESTS_SUPPORT_TESTMAIN_H
#define TESTS_SUPPORT_TESTMAIN_H

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <any>
#include <functional>
#include <memory>

/**
 * Several test classes in one program. The program's first argument names the class to run, by its
 * source: `unit_files tst_split_string`. What follows is QtTest's. Without a name all are run.
 */
namespace TestMain {

using Make = std::function<std::unique_ptr<QObject>()>;

/** Enters a class into the program's list. @param source  its file: the name of the class there */
int enter(const char* source, Make make);

} // namespace TestMain

/** In place of QTEST_MAIN, in front of the line that includes the source's `.moc`. */
#define TEST_CLASS(Class)                                                                          \
    static const int enteredTest =                                                                 \
        TestMain::enter(__FILE__, [] { return std::make_unique<Class>(); });

Q_DECLARE_METATYPE(std::any)

/** Fills the table of a test from rows of one structure: a column "row", a row for each, named by
    its first member, `name`. The test takes its row with `rowOf<Row>()`, or, where the structure is
    declared with Q_DECLARE_METATYPE, with `QFETCH(const Row, row)`. */
template <typename Rows>
void addRows(const Rows& rows) {
    using Row = std::decay_t<decltype(*std::begin(rows))>;
    using Stored = std::conditional_t<QMetaTypeId2<Row>::Defined, Row, std::any>;
    QTest::addColumn<Stored>("row");
    for (const Row& row : rows)
        QTest::addRow("%s", QByteArray(row.name).constData()) << Stored(row);
}

/** A row of a table: what a test gives in, and what has to come out. */
template <typename Given, typename Expected>
struct Case {
    QByteArray name;
    Given given;
    Expected expected = {};
};

using TextCase = Case<QByteArray, QByteArray>;

/** A row with one value: what a test gives in or, where that is its name, what has to come out. */
template <typename Value>
struct NamedValue {
    QByteArray name;
    Value value;
};

using NamedText = NamedValue<QByteArray>;

/** Adds rows that are nothing but a name: the test asks `QTest::currentDataTag`. */
inline void addNames(std::initializer_list<const char*> names) {
    QTest::addColumn<int>("row");
    for (const char* name : names)
        QTest::newRow(name) << 0;
}

/** The row that is tested. */
template <typename Row>
Row rowOf() {
    QFETCH(const std::any, row);
    return std::any_cast<Row>(row);
}

/** The row of `initTestCase_data` that is tested. */
template <typename Row>
Row globalRowOf() {
    QFETCH_GLOBAL(const std::any, row);
    return std::any_cast<Row>(row);
}

/** The number in an environment variable; @p otherwise where there is none. */
inline int numberFrom(const char* variable, int otherwise) {
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? number : otherwise;
}

#endif
