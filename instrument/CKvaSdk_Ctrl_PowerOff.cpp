#include "instrument/CKvaSdk_Ctrl.h"

#include <QtDebug>

bool CKvaSdk_Ctrl::GetShutdownTime(uint8_t& mode) {
    m_lastResult = KVA_GetShutdownTime(&mode);
    if (m_lastResult < 0) {
        qDebug("KVA_GetShutdownTime() failed[mode:%d].\n", mode);
        return false;
    }
    qDebug("KVA_GetShutdownTime() success[mode:%d].\n", mode);
    return true;
}

bool CKvaSdk_Ctrl::SetShutdownTime(uint8_t mode) {
    const uint8_t newMode = mode;
    m_lastResult = KVA_SetShutdownTime(&newMode);
    if (m_lastResult < 0) {
        qDebug("KVA_SetShutdownTime() failed[mode:%d].\n", newMode);
        return false;
    }
    qDebug("KVA_SetShutdownTime() success[mode:%d].\n", newMode);
    return true;
}
