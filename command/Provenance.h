#ifndef COMMAND_PROVENANCE_H
#define COMMAND_PROVENANCE_H

#include <QByteArray>
#include <QString>

/** Who runs this program, where, and what it consists of. */
namespace Provenance {

/** The name of the process's user; the number where it has none. */
QString user();
QString host();
QString toolVersion();
/** The file that libKVASDK was loaded from, absolute; empty where the system does not tell. */
QString libraryPath();
/** Of that file, as 64 hexadecimal digits; empty where it cannot be read. */
QByteArray librarySha256();

} // namespace Provenance

#endif
