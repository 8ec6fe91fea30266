#include "instrument/CKvaSdk_Ctrl.h"
#include "tests/support/DebugLog.h"

#include <QtTest>

#include <climits>

class TestResultNames : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void namesCode_data();
    void namesCode();
    void namesNothingElse();
};

void TestResultNames::namesCode_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("name");
    const auto row = [](int code, const char* name) {
        QTest::addRow("%d", code) << code << QString::fromLatin1(name);
    };
    row(0, "KVA_SUCCESS");
    row(-9999, "KVA_ERROR");
    row(-9998, "KVA_ERROR_CONNECT");
    row(-9997, "KVA_ERROR_DISCONNECT");
    row(-9996, "KVA_ERROR_CONNECT_TIMEOUT");
    row(-9995, "KVA_ERROR_CONNECT_ALREADY");
    row(-9994, "KVA_ERROR_INSTRUMENT_UNAVAILABLE");
    row(-9993, "KVA_ERROR_INSTRUMENT_INFORMATION");
    row(-9992, "KVA_ERROR_ARGUMENT");
    row(-9991, "KVA_ERROR_COMMUNICATION_SEND");
    row(-9990, "KVA_ERROR_COMMUNICATION_RECEIVE");
    row(-9989, "KVA_ERROR_COMMUNICATION_CHECKSUM");
    row(-9988, "KVA_ERROR_COMMUNICATION_PARAM");
    row(-9987, "KVA_ERROR_COMMUNICATION_TIMEOUT");
    row(-9986, "KVA_ERROR_CANT_USED");
    row(-9985, "KVA_ERROR_NO_DATA");
    row(-9799, "KVA_ERROR_NAK");
    row(-9798, "KVA_ERROR_NAV");
    row(-9797, "KVA_ERROR_NSP");
    row(-9796, "KVA_ERROR_CNF");
    row(-9795, "KVA_ERROR_NDT");
    row(-9794, "KVA_ERROR_NEQ");

    const char* const warnings[] = {
        "KVA_WARNING_WCALIB_TEMP",
        "KVA_WARNING_BATTERY_EMPTY",
        "KVA_WARNING_WCALIB_TEMP/KVA_WARNING_BATTERY_EMPTY",
        "KVA_WARNING_INITIALDATE_SETTING",
        "KVA_WARNING_WCALIB_TEMP/KVA_WARNING_INITIALDATE_SETTING",
        "KVA_WARNING_BATTERY_EMPTY/KVA_WARNING_INITIALDATE_SETTING",
        "KVA_WARNING_WCALIB_TEMP/KVA_WARNING_BATTERY_EMPTY/KVA_WARNING_INITIALDATE_SETTING",
    };
    int bits = 0;
    for (const char* const names : warnings) {
        row(++bits, names);
        row(bits + 8, names);
    }
    row(INT_MAX, warnings[6]);
    row(8, "");
    row(16, "");
    row(1 << 30, "");
    row(INT_MAX - 7, "");
}

void TestResultNames::namesCode() {
    QFETCH(int, code);
    const DebugLog log;
    QTEST(ResultCodeToString(code), "name");
    QCOMPARE(log.lines(), QStringList());
}

void TestResultNames::namesNothingElse() {
    // Of all other values around the two runs, every one.
    for (int code = -10100; code < 0; ++code) {
        const bool isNamed = (code >= -9999 && code <= -9985) || (code >= -9799 && code <= -9794);
        if (ResultCodeToString(code).isEmpty() == isNamed)
            QFAIL(qPrintable(
                QStringLiteral("%1: %2").arg(QString::number(code), ResultCodeToString(code))));
    }
    QCOMPARE(ResultCodeToString(-9900), QString());
    QCOMPARE(ResultCodeToString(-9800), QString());
    QCOMPARE(ResultCodeToString(INT_MIN), QString());
}

QTEST_GUILESS_MAIN(TestResultNames)
#include "tst_result_names.moc"
