// The check of snapshots: what it accepts is, written again, the same in every field; what it
// refuses, it says why. Each input is tried as it is, and with a hash that fits, since almost every
// change is refused for its hash alone.
#include "command/Snapshot.h"
#include "tests/fuzz/FuzzFile.h"

#include <QCryptographicHash>
#include <QJsonDocument>

namespace {

void check(const QByteArray& content) {
    Faults faults;
    const InputFile file = {"snapshot.json", content};
    const std::optional<Snapshot> snapshot = Snapshot::check(file, faults);
    require(snapshot.has_value() == faults.empty());
    if (snapshot)
        require(QJsonDocument::fromJson(snapshot->toJson()) == QJsonDocument::fromJson(content));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    check(content);
    QJsonObject object = QJsonDocument::fromJson(content).object();
    object.remove("sha256");
    const QByteArray canonical = QJsonDocument(object).toJson(QJsonDocument::Compact);
    object["sha256"] = QString::fromLatin1(
        QCryptographicHash::hash(canonical, QCryptographicHash::Sha256).toHex());
    check(QJsonDocument(object).toJson());
    return 0;
}
