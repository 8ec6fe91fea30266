#ifndef TESTS_UNIT_INSTRUMENT_ACCESSORY_H
#define TESTS_UNIT_INSTRUMENT_ACCESSORY_H

#include "tests/unit/instrument/InstrumentBench.h"

#include <QTest>

#include <cstring>

/** What a registration of a calibration accessory needs and where it lands in the record. */
struct Accessory {
    const char* name;
    bool (CKvaSdk_Ctrl::*write)(const char* path);
    int serialNoOffset;
    int valuesOffset;
    int valueCount;
    const char* serialNo; ///< valid in a file

    QByteArray file() const { return InstrumentBench::valueFile(serialNo, valueCount); }

    /** The record as it is after the file's values have taken their place. */
    QByteArray registeredIn(QByteArray record) const {
        record.replace(serialNoOffset, 4, QByteArray::fromHex(serialNo));
        for (int i = 0; i < valueCount; ++i) {
            const float value = InstrumentBench::fileValue(i);
            std::memcpy(record.data() + valuesOffset + 4 * i, &value, sizeof value);
        }
        return record;
    }
};

constexpr Accessory accessories[] = {
    {"white plate", &CKvaSdk_Ctrl::WriteWCPData, 0, 4, 38, "23456789"},
    {"adapter", &CKvaSdk_Ctrl::WriteAmbAdpData, 156, 160, 75, "00054321"},
};

/** Adds the column "index" and a row for each accessory. */
inline void accessoryRows() {
    QTest::addColumn<int>("index");
    for (int i = 0; i < 2; ++i)
        QTest::newRow(accessories[i].name) << i;
}

#endif
