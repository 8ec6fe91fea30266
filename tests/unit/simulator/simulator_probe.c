/* A program in C that links the simulated library, for what can be seen from outside a process.
   The first argument names what it does; results go to standard output. */
#include "instrument/KvaSdk.h"
#include "simulator/KvaSim.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void ignoreEvent(uint32_t code, uint32_t rawDataCount, int32_t error) {
    (void)code;
    (void)rawDataCount;
    (void)error;
}

static void exitInEvent(uint32_t code, uint32_t rawDataCount, int32_t error) {
    (void)code;
    (void)rawDataCount;
    (void)error;
    exit(7);
}

static void removeHandler(void) {
    printf("%d\n", KVA_RegisterDeviceEventHandler(NULL));
}

/** Calls the nine functions with C linkage over the first port and prints their results. */
static int callAll(void) {
    KVA_PORTINFO port;
    int32_t count = 0;
    KVA_DEVICEINFO device;
    KVA_NETWORKINFO network;
    uint8_t mode = 0;
    printf("%d", KVA_RegisterDeviceEventHandler(ignoreEvent));
    printf(" %d", KVA_GetDevicePortList(&port, &count, 1));
    printf(" %d", KVA_Connect(&port, 10));
    printf(" %d", KVA_GetDeviceInfo(&device));
    printf(" %d", KVA_GetNetworkInfo(&network));
    printf(" %d", KVA_SetNetworkInfo(&network));
    printf(" %d", KVA_GetShutdownTime(&mode));
    printf(" %d", KVA_SetShutdownTime(&mode));
    printf(" %d", KVA_Disconnect());
    printf(" %d\n", KVA_RegisterDeviceEventHandler(NULL));
    return 0;
}

/** Connects to the first instrument, and prints the number of instruments or what the library
    answers instead. For each character of its input it prints what a call for that instrument
    answers. */
static int hold(void) {
    KVA_PORTINFO list[10];
    int32_t count = -1;
    uint8_t mode = 0;
    KVA_RESULT result = KVA_GetDevicePortList(list, &count, 10);
    if (result >= 0)
        result = KVA_Connect(list, 10);
    printf("%d\n", result < 0 ? result : count);
    fflush(stdout);
    while (getchar() != EOF) {
        printf("%d\n", KVA_GetShutdownTime(&mode));
        fflush(stdout);
    }
    return 0;
}

int main(int argumentCount, char** arguments) {
    const char* action = argumentCount > 1 ? arguments[1] : "";
    if (strcmp(action, "call-all") == 0)
        return callAll();
    if (strcmp(action, "hold") == 0)
        return hold();
    if (strcmp(action, "count-twice") == 0) {
        int32_t count = -1;
        printf("%d", KVA_GetDevicePortList(NULL, &count, 0));
        printf(" %d", KVA_GetDevicePortList(NULL, &count, 0));
        printf(" %d\n", count);
        return 0;
    }
    if (strcmp(action, "exit-with-handler") == 0) {
        KVA_RegisterDeviceEventHandler(ignoreEvent);
        for (uint32_t code = 0; code < 1000; ++code)
            KvaSim_EmitEvent(code, 0, 0);
        return 5;
    }
    if (strcmp(action, "exit-in-handler") == 0) {
        KVA_RegisterDeviceEventHandler(exitInEvent);
        KvaSim_EmitEvent(1, 0, 0);
        for (;;)
            KvaSim_WaitForEvents();
    }
    if (strcmp(action, "remove-at-exit") == 0) {
        /* Registered before the library is first used, so it runs after everything of it that the
           library registers itself. */
        atexit(removeHandler);
        KVA_RegisterDeviceEventHandler(ignoreEvent);
        return 0;
    }
    return 64;
}
