#ifndef TESTS_UNIT_FILES_KVA_SDK_IN_C_H
#define TESTS_UNIT_FILES_KVA_SDK_IN_C_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

enum RecordInC {
    RecordInC_PortInfo,
    RecordInC_DeviceInfo,
    RecordInC_NetworkInfo,
    RecordInC_CalRefData,
    RecordInC_ActionOption
};

/** The size in bytes of the record as a C compiler lays it out. */
size_t sizeInC(enum RecordInC record);

#ifdef __cplusplus
}
#endif

#endif
