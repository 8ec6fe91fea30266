#ifndef TESTS_UNIT_FILES_CALREFFIXTURE_H
#define TESTS_UNIT_FILES_CALREFFIXTURE_H

#include "files/CFileIO.h"
#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/unit/files/FileFixture.h"

#include <QTest>

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
inline void addReaderRows() {
    QTest::addColumn<bool>("adapter");
    QTest::newRow("white plate") << false;
    QTest::newRow("adapter") << true;
}

/** One read of a file into a patterned record, and everything that it did. */
struct CalRefRead {
    CalRefRead(const CalRefReader& reader, const char* path) {
        auto record = patternedRecord<KVA_JIG_CALREFDATA>();
        const DebugLog debugLog;
        {
            StandardOutput output;
            result = (CFileIO().*reader.read)(path, &record);
            printed = output.take();
        }
        logged = debugLog.lines() + debugLog.others();
        bytes = bytesOf(record);
    }

    bool result;
    QByteArray printed; ///< on the standard output
    QStringList logged; ///< to Qt's log
    QByteArray bytes;   ///< the record afterwards
};

inline QByteArray bytesOfFloats(const QVector<float>& values) {
    return {reinterpret_cast<const char*>(values.constData()),
            values.size() * static_cast<int>(sizeof(float))};
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

/** The record of `CalRefRead` with these fields changed; an empty one stays as it was. */
inline QByteArray expectedRecord(const CalRefReader& reader, const QByteArray& serialNo,
                                 const QByteArray& values) {
    const QByteArray before = bytesOf(patternedRecord<KVA_JIG_CALREFDATA>());
    return overlaid(overlaid(before, reader.serialNoOffset, serialNo), reader.valuesOffset, values);
}

#endif
