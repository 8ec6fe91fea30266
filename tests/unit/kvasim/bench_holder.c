/* A program in C that uses a bench: prints the number of its instruments, or what the library
   answers instead, and goes on until its standard input ends. */
#include "instrument/KvaSdk.h"

#include <stdio.h>

int main(void) {
    int32_t count = -1;
    const KVA_RESULT result = KVA_GetDevicePortList(NULL, &count, 0);
    printf("%d\n", result < 0 ? result : count);
    fflush(stdout);
    while (getchar() != EOF) {
    }
    return 0;
}
