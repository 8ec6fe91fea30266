#ifndef COMMAND_PROVENANCE_H
#define COMMAND_PROVENANCE_H

#include <QByteArray>
#include <QString>

/** User, host, version and library of this process. */
namespace Provenance {

/** The name of the process's user; the number if it has no name. */
QString user();
QString host();
QString toolVersion();
/** The absolute path of the loaded libKVASDK; empty if the system does not know it. */
QString libraryPath();
/** The hash of that file, as 64 hexadecimal digits; empty if it cannot be read. */
QByteArray librarySha256();

} // namespace Provenance

#endif
