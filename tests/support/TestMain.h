#ifndef TESTS_SUPPORT_TESTMAIN_H
#define TESTS_SUPPORT_TESTMAIN_H

#include <QtTest>

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

/** Fills the table of a test from rows of one structure: a column "row", a row for each, named by
    its first member, `name`. The test takes its row with `QFETCH(const Row, row)`. The structure is
    declared with Q_DECLARE_METATYPE. */
template <typename Rows>
void addRows(const Rows& rows) {
    using Row = std::decay_t<decltype(*std::begin(rows))>;
    QTest::addColumn<Row>("row");
    for (const Row& row : rows)
        QTest::addRow("%s", QByteArray(row.name).constData()) << row;
}

#endif
