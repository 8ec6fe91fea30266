#include "tests/unit/files/kva_sdk_in_c.h"

#include "instrument/KvaSdk.h"

size_t sizeInC(enum RecordInC record) {
    switch (record) {
    case RecordInC_PortInfo:
        return sizeof(KVA_PORTINFO);
    case RecordInC_DeviceInfo:
        return sizeof(KVA_DEVICEINFO);
    case RecordInC_NetworkInfo:
        return sizeof(KVA_NETWORKINFO);
    case RecordInC_CalRefData:
        return sizeof(KVA_JIG_CALREFDATA);
    case RecordInC_ActionOption:
        return sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA);
    }
    return 0;
}
