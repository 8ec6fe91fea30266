// The program against the maker's library: what it asks of it by name, and where it finds it.

#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace {

/** The standard output of a program that ends well; empty otherwise. */
QString outputOf(const char* program, const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process.setProcessEnvironment(environment);
    process.start(QString::fromUtf8(program), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

/** What stands in brackets in the lines of the dynamic section with this tag. */
QStringList dynamicEntries(const QString& tag) {
    const QString section =
        outputOf(VQTL4_READELF, {QStringLiteral("-dW"), QStringLiteral(VQTL4_PROGRAM)});
    const QRegularExpression entry(QStringLiteral("\\(%1\\).*\\[(.*)\\]").arg(tag));
    QStringList values;
    auto matches = entry.globalMatch(section);
    while (matches.hasNext())
        values.append(matches.next().captured(1));
    return values;
}

/** The thirteen functions of the library as the compiler names them, each behind @p prefix; sorted.
 */
QStringList functionSymbols(const char* prefix) {
    QStringList symbols;
    for (const char* name :
         {"KVA_Connect", "KVA_Disconnect", "KVA_GetDeviceInfo", "KVA_GetDevicePortList",
          "KVA_GetNetworkInfo", "KVA_GetShutdownTime", "KVA_RegisterDeviceEventHandler",
          "KVA_SetNetworkInfo", "KVA_SetShutdownTime",
          "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA",
          "_Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA",
          "_Z35KVA_JIG_SetFactoryCalib_WriteSectorv",
          "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA"})
        symbols.append(QString::fromLatin1(prefix) + QString::fromLatin1(name));
    symbols.sort();
    return symbols;
}

} // namespace

class TestSymbols : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void importsTheThirteenFunctions();
    void exportsThemOnMacOs();
    void needsTheLibraryByName();
    void looksBesideItsFolder();
};

void TestSymbols::importsTheThirteenFunctions() {
    const QString table = outputOf(VQTL4_NM, {QStringLiteral("-D"), QStringLiteral(VQTL4_PROGRAM)});
    QVERIFY(!table.isEmpty());
    QStringList symbols;
    const QStringList lines = table.split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (line.contains(QStringLiteral("KVA"), Qt::CaseInsensitive))
            symbols.append(line.simplified());
    }
    symbols.sort();
    QCOMPARE(symbols, functionSymbols("U "));
}

/** By the simulated library, whose list for the linker there is kept by hand. */
void TestSymbols::exportsThemOnMacOs() {
    QFile file(QStringLiteral(VQTL4_MACOS_EXPORTS));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QRegularExpression noComment(QStringLiteral("^[^#]"));
    QStringList names =
        QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts).filter(noComment);
    names.sort();
    // The linker's names have an underscore before the compiler's.
    QStringList expected = functionSymbols("_") << QStringLiteral("_KvaSim_*");
    expected.sort();
    QCOMPARE(names, expected);
}

void TestSymbols::needsTheLibraryByName() {
    const QStringList libraries = dynamicEntries(QStringLiteral("NEEDED"));
    QCOMPARE(libraries.filter(QStringLiteral("KVA"), Qt::CaseInsensitive),
             QStringList(QStringLiteral("libKVASDK.so")));
}

void TestSymbols::looksBesideItsFolder() {
    // RUNPATH, not RPATH: LD_LIBRARY_PATH comes before it.
    QCOMPARE(dynamicEntries(QStringLiteral("RUNPATH")),
             QStringList(QStringLiteral("$ORIGIN/../lib")));
    QCOMPARE(dynamicEntries(QStringLiteral("RPATH")), QStringList());
}

QTEST_GUILESS_MAIN(TestSymbols)
#include "tst_symbols.moc"
