#include "command/UnfinishedMark.h"

#include "command/DataFolder.h"
#include "command/DurableFile.h"
#include "command/FieldTexts.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <unistd.h>

namespace {

QString quotedForShell(const QString& path) {
    static const QRegularExpression special(QStringLiteral("[^A-Za-z0-9_./:@%+=,-]"));
    if (!path.contains(special))
        return path;
    QString quoted = path;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

} // namespace

UnfinishedMark::UnfinishedMark(std::int32_t serialNumber)
    : m_serialNumber(serialNumber), m_path(DataFolder::unfinishedMark(serialNumber)) {}

bool UnfinishedMark::exists() const {
    return QFileInfo(m_path).isSymLink() || QFileInfo::exists(m_path);
}

QString UnfinishedMark::snapshot() const {
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object()[QStringLiteral("snapshot")].toString();
}

Text UnfinishedMark::set(const QString& snapshot, const InstrumentState& wanted) const {
    const QByteArray record(reinterpret_cast<const char*>(&wanted.calibration),
                            sizeof wanted.calibration);
    const QByteArray hash = QCryptographicHash::hash(record, QCryptographicHash::Sha256);
    const QJsonObject content = {
        {QStringLiteral("serialNumber"), serialText(m_serialNumber)},
        {QStringLiteral("snapshot"), snapshot},
        {QStringLiteral("wantedCalibrationSha256"), QString::fromLatin1(hash.toHex())},
        {QStringLiteral("created"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
        {QStringLiteral("process"), static_cast<qint64>(::getpid())}};
    bool isTaken = false;
    const Text problem = DurableFile::create(m_path, QJsonDocument(content).toJson(), isTaken);
    // The lock is held: nobody else can have marked it since it was looked for.
    return isTaken ? DurableFile::writeFailure(m_path, EEXIST) : problem;
}

Text UnfinishedMark::remove() const {
    return DurableFile::remove(m_path);
}

QString UnfinishedMark::restoreCommand() const {
    const QString path = snapshot();
    return QStringLiteral("vq-tl4ctl restore %1 ").arg(serialText(m_serialNumber)) +
           (path.isEmpty() ? QStringLiteral("SNAPSHOT") : quotedForShell(path));
}
