/* A program in C that uses a bench: connects to its first instrument, and prints the number of
   instruments, or what the library answers instead. For each line of its standard input it prints
   what a call for that instrument answers; it ends with its input. */
#include "instrument/KvaSdk.h"

#include <stdio.h>

int main(void) {
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
