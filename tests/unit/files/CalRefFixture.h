#ifndef TESTS_UNIT_FILES_CALREFFIXTURE_H
#define TESTS_UNIT_FILES_CALREFFIXTURE_H

#include "files/CFileIO.h"
#include "tests/unit/files/FileFixture.h"

#include <QVector>

/** One of the two readers of calibration files, and where in the record its fields are. */
struct CalRefReader {
    bool (CFileIO::*read)(const char* path, KVA_JIG_CALREFDATA* record);
    int serialNoOffset;
    int valuesOffset;
    int valueCount;
};

inline CalRefReader calRefReader(bool adapter) {
    if (adapter)
        return {&CFileIO::GetAmbAdpCalRefDataFromFile, 156, 160, 75};
    return {&CFileIO::GetCalRefDataFromFile, 0, 4, 38};
}

/** Adds the column "adapter" and a row for each reader. */
inline void addReaders() {
    QTest::addColumn<bool>("adapter");
    QTest::newRow("white plate") << false;
    QTest::newRow("adapter") << true;
}

/** The `outcome` of a read into a patterned record. */
inline QByteArray readCalRef(bool adapter, const char* path) {
    auto record = patternedRecord<KVA_JIG_CALREFDATA>();
    bool accepted = false;
    const QByteArray said =
        saidDuring([&] { accepted = (CFileIO().*calRefReader(adapter).read)(path, &record); });
    return outcome(accepted, bytesOf(record), said);
}

/** A record with these fields changed; an empty one stays as it was. */
inline QByteArray
calRefRecord(bool adapter, const QByteArray& serialNo, const QVector<float>& values,
             const QByteArray& before = bytesOf(patternedRecord<KVA_JIG_CALREFDATA>())) {
    const QByteArray floats(reinterpret_cast<const char*>(values.constData()),
                            values.size() * static_cast<int>(sizeof(float)));
    const CalRefReader reader = calRefReader(adapter);
    return overlaid(overlaid(before, reader.serialNoOffset, serialNo), reader.valuesOffset, floats);
}

/** What a read that takes nothing comes to. */
inline QByteArray refusedCalRef(bool adapter) {
    return outcome(false, calRefRecord(adapter, {}, {}));
}

/** The values 0.25, 1.25, 2.25 and so on, which are exact in binary. */
inline QVector<float> sampleValues(int count) {
    QVector<float> values;
    for (int i = 0; i < count; ++i)
        values.append(static_cast<float>(i) + 0.25F);
    return values;
}

/** The same values as a line of a file, without its end. */
inline QByteArray sampleLine(int count) {
    QByteArrayList cells;
    for (int i = 0; i < count; ++i)
        cells.append(QByteArray::number(i) + ".25");
    return cells.join(',');
}

/** A right file, but for what is given. */
inline QByteArray calRefFile(bool adapter, const QByteArray& serialLine = "12345678") {
    return "heading\nheading\n" + serialLine + '\n' + sampleLine(calRefReader(adapter).valueCount) +
           '\n';
}

/** What its read comes to. */
inline QByteArray completeCalRef(bool adapter) {
    return outcome(true, calRefRecord(adapter, "\x12\x34\x56\x78",
                                      sampleValues(calRefReader(adapter).valueCount)));
}

#endif
