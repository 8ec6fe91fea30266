// The program against the maker's library: what it asks of it by name, and where it finds it.

#include "tests/support/LibrarySymbols.h"
#include "tests/support/TestMain.h"

namespace {

/** What stands in brackets in the lines of the dynamic section with this tag. */
QStringList dynamicEntries(const QString& tag) {
    QProcess readelf;
    readelf.start("env", {"LC_ALL=C", VQTL4_READELF, "-dW", VQTL4_PROGRAM});
    readelf.waitForFinished();
    const QString section = readelf.readAllStandardOutput();
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
