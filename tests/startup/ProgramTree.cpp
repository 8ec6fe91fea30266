#include "tests/startup/ProgramTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTranslator>

namespace {

const QString programFile = QStringLiteral(VQTL4_PROGRAM);
const QString libraryFile = QStringLiteral(VQTL4_LIBRARY);

QString builtResource(const QString& name) {
    return QStringLiteral(VQTL4_RESOURCES) + QLatin1Char('/') + name;
}

bool replace(const QString& path, const QString& source) {
    return (!QFile::exists(path) || QFile::remove(path)) && QFile::copy(source, path);
}

} // namespace

ProgramTree::ProgramTree() {
    const QDir folder(m_folder.path());
    m_isComplete = folder.mkdir(QStringLiteral("bin")) && folder.mkdir(QStringLiteral("lib")) &&
                   folder.mkdir(QStringLiteral("Resources")) &&
                   QFile::copy(programFile, program()) && QFile::copy(libraryFile, library());
    for (const QString& name :
         {QStringLiteral("en.qm"), QStringLiteral("jp.qm"), QStringLiteral("VQ_TL4.ico")})
        m_isComplete = m_isComplete && QFile::copy(builtResource(name), resource(name));
}

QString ProgramTree::program() const {
    return m_folder.filePath(QStringLiteral("bin/") + QFileInfo(programFile).fileName());
}

QString ProgramTree::library() const {
    return m_folder.filePath(QStringLiteral("lib/") + QFileInfo(libraryFile).fileName());
}

QString ProgramTree::resource(const QString& name) const {
    return m_folder.filePath(QStringLiteral("Resources/") + name);
}

bool ProgramTree::isComplete() const {
    return m_isComplete;
}

bool ProgramTree::replaceResource(const QString& name, const QString& source) const {
    return replace(resource(name), source);
}

bool ProgramTree::replaceLibrary(const QString& source) const {
    return replace(library(), source);
}

bool ProgramTree::removeResource(const QString& name) const {
    return QFile::remove(resource(name));
}

bool ProgramTree::damageResource(const QString& name, const QByteArray& content) const {
    QFile file(resource(name));
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(content) == content.size();
}

QString translated(const QString& fileName, const char* context, const char* text) {
    QTranslator translator;
    if (!translator.load(builtResource(fileName)))
        return QStringLiteral("%1 cannot be read").arg(fileName);
    const QString found = translator.translate(context, text);
    return found.isNull() ? QString::fromUtf8(text) : found;
}
