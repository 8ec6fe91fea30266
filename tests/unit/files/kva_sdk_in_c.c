#include "instrument/KvaSdk.h"

#include <stddef.h>

extern const size_t sizesInC[5];
const size_t sizesInC[5] = {sizeof(KVA_PORTINFO), sizeof(KVA_DEVICEINFO), sizeof(KVA_NETWORKINFO),
                            sizeof(KVA_JIG_CALREFDATA), sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA)};
