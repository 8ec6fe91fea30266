#include "files/CFileIO.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "instrument/CalibrationAccessory.h"

#include <QLatin1Char>
#include <QtDebug>

#include <cstddef>
#include <cstring>

namespace {

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

/** Stages the record in the instrument and commits it. */
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
    m_curWCPSerialNo = serialNoText(CalibrationAccessory::whitePlate.serialNoIn(record));
    m_curAmbAdpSerialNo = serialNoText(CalibrationAccessory::ambientAdapter.serialNoIn(record));
    return true;
}

bool CKvaSdk_Ctrl::ReadWCPFile(const char* path) {
    return checkValueFile(CalibrationAccessory::whitePlate, path, m_fileWCPSerialNo);
}

bool CKvaSdk_Ctrl::ReadAmbAdpFile(const char* path) {
    return checkValueFile(CalibrationAccessory::ambientAdapter, path, m_fileAmbAdpSerialNo);
}

bool CKvaSdk_Ctrl::WriteWCPData(const char* path) {
    return registerValueFile(CalibrationAccessory::whitePlate, path);
}

bool CKvaSdk_Ctrl::WriteAmbAdpData(const char* path) {
    return registerValueFile(CalibrationAccessory::ambientAdapter, path);
}

bool CKvaSdk_Ctrl::checkValueFile(const CalibrationAccessory& accessory, const char* path,
                                  QString& fileSerialNo) {
    KVA_JIG_CALREFDATA record = {};
    CFileIO file;
    if (!(file.*accessory.readFile)(path, &record))
        return false;

    const unsigned int serialNo = accessory.serialNoIn(record);
    const bool valid = accessory.isValid(serialNo);
    fileSerialNo = valid ? serialNoText(serialNo) : QString();

    qDebug("SerialNo: %d \n", static_cast<int>(serialNo));
    // The adapter's values are logged under the same name: the text is frozen.
    for (std::size_t k = 0; k < accessory.valueCount; ++k) {
        qDebug("rfWhite.spcData[%d]: %f \n", static_cast<int>(k),
               static_cast<double>(accessory.values(record)[k]));
    }
    return valid;
}

bool CKvaSdk_Ctrl::registerValueFile(const CalibrationAccessory& accessory, const char* path) {
    // The whole record first, so that registering one accessory leaves the other as it is.
    KVA_JIG_CALREFDATA record = {};
    if (!fetchRecord(record, m_lastResult))
        return false;

    switch (accessory.mergeFile(path, record)) {
    case CalibrationAccessory::FileMerge::Unreadable:
        qDebug("file.GetCalRefDataFromFile() failed.");
        return false;
    case CalibrationAccessory::FileMerge::WrongSerialNo:
        return false;
    case CalibrationAccessory::FileMerge::Merged:
        break;
    }
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
