/**
 * The contract with libKVASDK, the instrument maker's closed library: result codes, event codes,
 * the records exchanged with it, and its thirteen functions.
 *
 * Source of every value and offset below: the library's published interface. The records are
 * little-endian and are exchanged by pointer, so their layout is fixed; the assertions at the end
 * of this file check it.
 *
 * Threads: the functions are called from one thread only, one at a time, and block until the
 * instrument has answered. The event handler is called on a thread of the library's own.
 *
 * The header is valid C as well, for the nine functions with C linkage.
 */
#ifndef INSTRUMENT_KVASDK_H
#define INSTRUMENT_KVASDK_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/** Result of an SDK call: negative is a failure, 0 is success, positive values are warning bits of
    a call that succeeded. */
typedef int32_t KVA_RESULT;

enum {
    KVA_SUCCESS = 0,

    KVA_ERROR = -9999,
    KVA_ERROR_CONNECT = -9998,
    KVA_ERROR_DISCONNECT = -9997,
    KVA_ERROR_CONNECT_TIMEOUT = -9996,
    KVA_ERROR_CONNECT_ALREADY = -9995,
    KVA_ERROR_INSTRUMENT_UNAVAILABLE = -9994,
    KVA_ERROR_INSTRUMENT_INFORMATION = -9993,
    KVA_ERROR_ARGUMENT = -9992,
    KVA_ERROR_COMMUNICATION_SEND = -9991,
    KVA_ERROR_COMMUNICATION_RECEIVE = -9990,
    KVA_ERROR_COMMUNICATION_CHECKSUM = -9989,
    KVA_ERROR_COMMUNICATION_PARAM = -9988,
    KVA_ERROR_COMMUNICATION_TIMEOUT = -9987,
    KVA_ERROR_CANT_USED = -9986,
    KVA_ERROR_NO_DATA = -9985,

    KVA_ERROR_NAK = -9799,
    KVA_ERROR_NAV = -9798,
    KVA_ERROR_NSP = -9797,
    KVA_ERROR_CNF = -9796,
    KVA_ERROR_NDT = -9795,
    KVA_ERROR_NEQ = -9794,

    /* Warning bits; several may be set at once. */
    KVA_WARNING_WCALIB_TEMP = 1,
    KVA_WARNING_BATTERY_EMPTY = 2,
    KVA_WARNING_INITIALDATE_SETTING = 4
};

/** Device events, as delivered to the handler. Codes 1 to 5 and 7 to 9 are other events of the
    library; codes above 9 are unknown. */
enum {
    eEventCode_Standby = 0,
    eEventCode_DisConnect = 6,
    eEventCode_Last = 9 /**< the highest code that the library defines */
};

/** `KVA_NETWORKINFO::APConnectUse`. */
enum { eAPConnect_OFF = 0, eAPConnect_ON = 1 };

/** `KVA_NETWORKINFO::DHCPUse`. */
enum { eDHCP_OFF = 0, eDHCP_ON = 1 };

/** `KVA_PORTINFO::portType`: 1 is USB, every other value a network port. */
enum { ePortType_USB = 1 };

/** `KVA_GetShutdownTime`, `KVA_SetShutdownTime`: the automatic power-off mode. */
enum {
    eShutdownTime_Disabled = 0,
    eShutdownTime_15Minutes = 1,
    eShutdownTime_30Minutes = 2,
    eShutdownTime_60Minutes = 3
};

/** Number of reference values of a white calibration plate and of an ambient light adapter. */
enum { KVA_WHITE_PLATE_VALUES = 38, KVA_AMBIENT_ADAPTER_VALUES = 75 };

/** One attached instrument. Also an opaque handle: `KVA_Connect` takes an entry byte for byte as
    `KVA_GetDevicePortList` wrote it. */
typedef struct KVA_PORTINFO {
    uint32_t portType;    /**< `ePortType_USB`, or any other value for a network port */
    char portName[36];    /**< ASCII, NUL-terminated; may fill its field without a NUL */
    int32_t serialNumber; /**< the instrument's serial number */
} KVA_PORTINFO;

/** Identity of the connected instrument. */
typedef struct KVA_DEVICEINFO {
    uint32_t serialNumber;
    uint32_t firmVersionMajor;
    int32_t firmVersionMinor;
    int32_t firmVersionBuild;
    uint8_t reserved1[8];
    uint8_t macAddress[6]; /**< first byte first */
    uint8_t reserved2[10];
} KVA_DEVICEINFO;

/** Wireless LAN and TCP/IP settings. Addresses are IPv4, first octet first. */
typedef struct KVA_NETWORKINFO {
    uint32_t APConnectUse; /**< wireless LAN: `eAPConnect_OFF` or `eAPConnect_ON` */
    uint32_t DHCPUse;      /**< `eDHCP_OFF` or `eDHCP_ON` */
    uint8_t IPAddress[4];
    uint8_t SubnetMask[4];
    uint8_t DefaultGateway[4];
    uint8_t DNS[4];
    char SSID[33];       /**< access point name: up to 32 bytes, NUL-terminated */
    char EncryptKey[65]; /**< access point security key: up to 64 bytes, NUL-terminated */
    uint8_t padding[2];  /**< zero */
} KVA_NETWORKINFO;

/** Reference values of the white calibration plate. */
typedef struct KVA_JIG_WHITEDATA {
    float spcData[KVA_WHITE_PLATE_VALUES];
} KVA_JIG_WHITEDATA;

/** Reference values of the ambient light adapter. */
typedef struct KVA_JIG_AMBIENTADAPTERDATA {
    float spcData[KVA_AMBIENT_ADAPTER_VALUES];
} KVA_JIG_AMBIENTADAPTERDATA;

/** Factory calibration reference data. Serial numbers are binary-coded decimal, eight digits, the
    most significant byte first. */
typedef struct KVA_JIG_CALREFDATA {
    uint8_t whiteSerialNo[4];
    KVA_JIG_WHITEDATA rfWhite;
    uint8_t ambAdpSerialNo[4];
    KVA_JIG_AMBIENTADAPTERDATA ambAdp;
    uint8_t reserved[2048]; /**< other factory data: written back exactly as read */
} KVA_JIG_CALREFDATA;

/** Factory option data. */
typedef struct KVA_JIG_ACTIONOPTIONFACTORYDATA {
    uint8_t wifiModuleEnable; /**< not zero when a wireless module is fitted and enabled */
    uint8_t reserved[15];
} KVA_JIG_ACTIONOPTIONFACTORYDATA;

#ifdef __cplusplus
extern "C" {
#endif

/** Receives device events on a thread of the library's own.
    @param code          `eEventCode_…`
    @param rawDataCount  the count of raw data that came with the event
    @param error         the event's error value */
typedef void (*KVA_DeviceEventHandler)(uint32_t code, uint32_t rawDataCount, int32_t error);

/** Installs the handler for all later device events; null removes it. */
KVA_RESULT KVA_RegisterDeviceEventHandler(KVA_DeviceEventHandler handler);

/** With @p list null and @p maxEntries 0: stores in @p count the number of attached instruments.
    With a list of @p maxEntries entries: fills up to that many and stores how many it filled. */
KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries);

/** Opens the connection to the instrument that @p port names; returns when it is open or has
    failed. @param wait passed as 10 by every caller; its meaning is the library's own. */
KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait);

/** Closes the open connection. */
KVA_RESULT KVA_Disconnect(void);

/** Fills the record from the connected instrument. */
KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info);

/** Reads the wireless LAN and TCP/IP settings of the connected instrument. */
KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info);

/** Writes those settings. The instrument takes them into use after its next power cycle. */
KVA_RESULT KVA_SetNetworkInfo(const KVA_NETWORKINFO* info);

/** Reads the automatic power-off mode (`eShutdownTime_…`). */
KVA_RESULT KVA_GetShutdownTime(uint8_t* mode);

/** Writes the automatic power-off mode. */
KVA_RESULT KVA_SetShutdownTime(const uint8_t* mode);

#ifdef __cplusplus
} // extern "C"

/* The factory functions have C++ linkage: their symbols carry the record type. */

/** Reads the factory calibration reference data. */
KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data);

/** Stages new calibration reference data in the instrument. */
KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA* data);

/** Commits the staged data to the instrument's non-volatile memory. */
KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector();

/** Reads the factory option data. */
KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data);
#endif

static_assert(sizeof(KVA_PORTINFO) == 44, "KVA_PORTINFO");
static_assert(offsetof(KVA_PORTINFO, portType) == 0, "portType");
static_assert(offsetof(KVA_PORTINFO, portName) == 4, "portName");
static_assert(offsetof(KVA_PORTINFO, serialNumber) == 40, "serialNumber");

static_assert(sizeof(KVA_DEVICEINFO) == 40, "KVA_DEVICEINFO");
static_assert(offsetof(KVA_DEVICEINFO, serialNumber) == 0, "serialNumber");
static_assert(offsetof(KVA_DEVICEINFO, firmVersionMajor) == 4, "firmVersionMajor");
static_assert(offsetof(KVA_DEVICEINFO, firmVersionMinor) == 8, "firmVersionMinor");
static_assert(offsetof(KVA_DEVICEINFO, firmVersionBuild) == 12, "firmVersionBuild");
static_assert(offsetof(KVA_DEVICEINFO, macAddress) == 24, "macAddress");

static_assert(sizeof(KVA_NETWORKINFO) == 124, "KVA_NETWORKINFO");
static_assert(offsetof(KVA_NETWORKINFO, APConnectUse) == 0, "APConnectUse");
static_assert(offsetof(KVA_NETWORKINFO, DHCPUse) == 4, "DHCPUse");
static_assert(offsetof(KVA_NETWORKINFO, IPAddress) == 8, "IPAddress");
static_assert(offsetof(KVA_NETWORKINFO, SubnetMask) == 12, "SubnetMask");
static_assert(offsetof(KVA_NETWORKINFO, DefaultGateway) == 16, "DefaultGateway");
static_assert(offsetof(KVA_NETWORKINFO, DNS) == 20, "DNS");
static_assert(offsetof(KVA_NETWORKINFO, SSID) == 24, "SSID");
static_assert(offsetof(KVA_NETWORKINFO, EncryptKey) == 57, "EncryptKey");
static_assert(offsetof(KVA_NETWORKINFO, padding) == 122, "padding");

static_assert(sizeof(float) == 4, "single precision");
static_assert(sizeof(KVA_JIG_CALREFDATA) == 2508, "KVA_JIG_CALREFDATA");
static_assert(offsetof(KVA_JIG_CALREFDATA, whiteSerialNo) == 0, "whiteSerialNo");
static_assert(offsetof(KVA_JIG_CALREFDATA, rfWhite) == 4, "rfWhite");
static_assert(offsetof(KVA_JIG_CALREFDATA, ambAdpSerialNo) == 156, "ambAdpSerialNo");
static_assert(offsetof(KVA_JIG_CALREFDATA, ambAdp) == 160, "ambAdp");
static_assert(offsetof(KVA_JIG_CALREFDATA, reserved) == 460, "reserved");

static_assert(sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA) == 16, "KVA_JIG_ACTIONOPTIONFACTORYDATA");
static_assert(offsetof(KVA_JIG_ACTIONOPTIONFACTORYDATA, wifiModuleEnable) == 0, "wifiModuleEnable");

#endif
