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

} // namespace

class TestSymbols : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void importsTheThirteenFunctions();
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
    QStringList expected{
        QStringLiteral("U KVA_Connect"),
        QStringLiteral("U KVA_Disconnect"),
        QStringLiteral("U KVA_GetDeviceInfo"),
        QStringLiteral("U KVA_GetDevicePortList"),
        QStringLiteral("U KVA_GetNetworkInfo"),
        QStringLiteral("U KVA_GetShutdownTime"),
        QStringLiteral("U KVA_RegisterDeviceEventHandler"),
        QStringLiteral("U KVA_SetNetworkInfo"),
        QStringLiteral("U KVA_SetShutdownTime"),
        QStringLiteral("U _Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA"),
        QStringLiteral("U _Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA"),
        QStringLiteral("U _Z35KVA_JIG_SetFactoryCalib_WriteSectorv"),
        QStringLiteral("U _Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA"
                       "P31KVA_JIG_ACTIONOPTIONFACTORYDATA"),
    };
    expected.sort();
    QCOMPARE(symbols, expected);
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
