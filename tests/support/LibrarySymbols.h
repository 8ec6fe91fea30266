#ifndef TESTS_SUPPORT_LIBRARYSYMBOLS_H
#define TESTS_SUPPORT_LIBRARYSYMBOLS_H

#include <QStringList>

/** The thirteen functions of the library as the compiler names them, each behind @p prefix; sorted.
 */
inline QStringList librarySymbols(const char* prefix = "") {
    QStringList symbols;
    for (const char* name :
         {"KVA_Connect", "KVA_Disconnect", "KVA_GetDeviceInfo", "KVA_GetDevicePortList",
          "KVA_GetNetworkInfo", "KVA_GetShutdownTime", "KVA_RegisterDeviceEventHandler",
          "KVA_SetNetworkInfo", "KVA_SetShutdownTime",
          "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA",
          "_Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA",
          "_Z35KVA_JIG_SetFactoryCalib_WriteSectorv",
          "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA"})
        symbols.append(QString(prefix) + name);
    symbols.sort();
    return symbols;
}

#endif
