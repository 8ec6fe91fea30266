#include "files/CFileIO.h"
#include "instrument/CKvaSdk_Ctrl.h"

#include <QLatin1Char>
#include <QtDebug>

#include <cstring>
#include <limits>

/** What differs between the white calibration plate and the ambient light adapter. */
struct CalibrationAccessory {
    using SerialNo = uint8_t[4];

    bool (CFileIO::*readFile)(const char* path, KVA_JIG_CALREFDATA* record);
    SerialNo KVA_JIG_CALREFDATA::*serialNo;
    unsigned int lowestSerialNo;  ///< the lowest that a file may carry
    unsigned int highestSerialNo; ///< the highest that a file may carry
    const float* (*values)(const KVA_JIG_CALREFDATA& record);
    int valueCount;
    QString CKvaSdk_Ctrl::*fileSerialNo;

    bool isValid(unsigned int serial) const {
        return serial >= lowestSerialNo && serial <= highestSerialNo;
    }
};

namespace {

const CalibrationAccessory whitePlate = {
    &CFileIO::GetCalRefDataFromFile,
    &KVA_JIG_CALREFDATA::whiteSerialNo,
    10000001,
    std::numeric_limits<unsigned int>::max(),
    [](const KVA_JIG_CALREFDATA& record) { return record.rfWhite.spcData; },
    KVA_WHITE_PLATE_VALUES,
    &CKvaSdk_Ctrl::m_fileWCPSerialNo,
};

const CalibrationAccessory ambientAdapter = {
    &CFileIO::GetAmbAdpCalRefDataFromFile,
    &KVA_JIG_CALREFDATA::ambAdpSerialNo,
    10001,
    99999,
    [](const KVA_JIG_CALREFDATA& record) { return record.ambAdp.spcData; },
    KVA_AMBIENT_ADAPTER_VALUES,
    &CKvaSdk_Ctrl::m_fileAmbAdpSerialNo,
};

unsigned int serialNoValue(const uint8_t (&serialNo)[4]) {
    unsigned int value = 0;
    for (const uint8_t byte : serialNo)
        value = value * 100 + CFileIO::BcdToDec(byte);
    return value;
}

QString serialNoText(unsigned int value) {
    return QStringLiteral("%1").arg(value, 8, 10, QLatin1Char('0'));
}

/** Fetches the instrument's whole record, for a registration. */
bool fetchRecord(KVA_JIG_CALREFDATA& record, KVA_RESULT& result) {
    result = KVA_JIG_GetFactoryCalib_CALREFDATA(&record);
    if (result < 0) {
        qDebug("KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n");
        return false;
    }
    return true;
}

/** Hands the record to the instrument and commits it. */
bool storeRecord(const KVA_JIG_CALREFDATA& record, KVA_RESULT& result) {
    result = KVA_JIG_SetFactoryCalib_CALREFDATA(&record);
    if (result < 0) {
        qDebug("file.KVA_JIG_SetFactoryCalib_CALREFDATA() failed.\n");
        return false;
    }
    result = KVA_JIG_SetFactoryCalib_WriteSector();
    if (result < 0) {
        qDebug("KVA_JIG_SetFactoryCalib_WriteSector() failed.\n");
        return false;
    }
    return true;
}

} // namespace

bool CKvaSdk_Ctrl::GetCalRefSerialNo() {
    m_curWCPSerialNo.clear();
    m_curAmbAdpSerialNo.clear();
    KVA_JIG_CALREFDATA record = {};
    m_lastResult = KVA_JIG_GetFactoryCalib_CALREFDATA(&record);
    if (m_lastResult < 0)
        return false;
    m_curWCPSerialNo = serialNoText(serialNoValue(record.whiteSerialNo));
    m_curAmbAdpSerialNo = serialNoText(serialNoValue(record.ambAdpSerialNo));
    return true;
}

bool CKvaSdk_Ctrl::ReadWCPFile(const char* path) {
    return checkValueFile(whitePlate, path);
}

bool CKvaSdk_Ctrl::ReadAmbAdpFile(const char* path) {
    return checkValueFile(ambientAdapter, path);
}

bool CKvaSdk_Ctrl::WriteWCPData(const char* path) {
    return registerValueFile(whitePlate, path);
}

bool CKvaSdk_Ctrl::WriteAmbAdpData(const char* path) {
    return registerValueFile(ambientAdapter, path);
}

bool CKvaSdk_Ctrl::checkValueFile(const CalibrationAccessory& accessory, const char* path) {
    KVA_JIG_CALREFDATA record = {};
    CFileIO file;
    if (!(file.*accessory.readFile)(path, &record))
        return false;

    const unsigned int serialNo = serialNoValue(record.*accessory.serialNo);
    const bool valid = accessory.isValid(serialNo);
    this->*accessory.fileSerialNo = valid ? serialNoText(serialNo) : QString();

    qDebug("SerialNo: %d \n", static_cast<int>(serialNo));
    // The adapter's values carry the same name: the text is fixed.
    for (int k = 0; k < accessory.valueCount; ++k) {
        qDebug("rfWhite.spcData[%d]: %f \n", k, static_cast<double>(accessory.values(record)[k]));
    }
    return valid;
}

bool CKvaSdk_Ctrl::registerValueFile(const CalibrationAccessory& accessory, const char* path) {
    // The whole record first, so that registering one accessory leaves the other as it is.
    KVA_JIG_CALREFDATA record = {};
    if (!fetchRecord(record, m_lastResult))
        return false;

    CFileIO file;
    if (!(file.*accessory.readFile)(path, &record)) {
        qDebug("file.GetCalRefDataFromFile() failed.");
        return false;
    }
    if (!accessory.isValid(serialNoValue(record.*accessory.serialNo)))
        return false;
    if (!storeRecord(record, m_lastResult))
        return false;

    KVA_JIG_CALREFDATA readBack = {};
    if (!fetchRecord(readBack, m_lastResult))
        return false;
    // Byte by byte on purpose: -0.0 is not 0.0 here, and a NaN equals itself.
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c)
    if (std::memcmp(&readBack, &record, sizeof record) != 0) {
        qDebug("CALREFDATA is incorrect.\n");
        return false;
    }
    return true;
}
