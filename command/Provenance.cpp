#include "command/Provenance.h"

#include "instrument/KvaSdk.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

QString Provenance::user() {
    const struct passwd* entry = ::getpwuid(::geteuid());
    if (entry == nullptr)
        return QString::number(::geteuid());
    return QString::fromLocal8Bit(entry->pw_name);
}

QString Provenance::host() {
    return QSysInfo::machineHostName();
}

QString Provenance::toolVersion() {
    return QStringLiteral(VQTL4_VERSION);
}

QString Provenance::libraryPath() {
    Dl_info info = {};
    if (::dladdr(reinterpret_cast<const void*>(&KVA_Connect), &info) == 0)
        return {};
    return QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath();
}

QByteArray Provenance::librarySha256() {
    QFile file(libraryPath());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return hash.result().toHex();
}
