// The program against the maker's library: what it asks of it by name, and where it finds it.

#include "tests/support/LibrarySymbols.h"
#include "tests/support/TestMain.h"

#include <QProcess>
#include <QRegularExpression>

namespace {

/** The standard output of a program that ends well; empty otherwise. */
QString outputOf(const char* program, const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C");
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return {};
    return process.readAllStandardOutput();
}

/** What stands in brackets in the lines of the dynamic section with this tag. */
QStringList dynamicEntries(const QString& tag) {
    const QString section = outputOf(VQTL4_READELF, {"-dW", VQTL4_PROGRAM});
    const QRegularExpression entry(QString("\\(%1\\).*\\[(.*)\\]").arg(tag));
    QStringList values;
    auto matches = entry.globalMatch(section);
    while (matches.hasNext())
        values.append(matches.next().captured(1));
    return values;
}

} // namespace

class TestSymbols : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void importsTheThirteenFunctions() {
        const QString table = outputOf(VQTL4_NM, {"-D", VQTL4_PROGRAM});
        QVERIFY(!table.isEmpty());
        QStringList symbols;
        const QStringList lines = table.split('\n', Qt::SkipEmptyParts);
        for (const QString& line : lines) {
            if (line.contains("KVA", Qt::CaseInsensitive))
                symbols.append(line.simplified());
        }
        symbols.sort();
        QCOMPARE(symbols, librarySymbols("U "));
    }

    /** By the simulated library, whose list for the linker there is kept by hand. */
    void exportsThemOnMacOs() {
        QFile file(VQTL4_MACOS_EXPORTS);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QRegularExpression noComment("^[^#]");
        QStringList names =
            QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts).filter(noComment);
        names.sort();
        // The linker's names have an underscore before the compiler's.
        QStringList expected = librarySymbols("_") << "_KvaSim_*";
        expected.sort();
        QCOMPARE(names, expected);
    }

    void needsTheLibraryByName() {
        const QStringList libraries = dynamicEntries("NEEDED");
        QCOMPARE(libraries.filter("KVA", Qt::CaseInsensitive), QStringList("libKVASDK.so"));
    }

    void looksBesideItsFolder() {
        // RUNPATH, not RPATH: LD_LIBRARY_PATH comes before it.
        QCOMPARE(dynamicEntries("RUNPATH"), QStringList("$ORIGIN/../lib"));
        QCOMPARE(dynamicEntries("RPATH"), QStringList());
    }
};

TEST_CLASS(TestSymbols)
#include "tst_symbols.moc"
