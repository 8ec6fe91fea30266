#include "tests/startup/ProgramTree.h"

#include <QFileInfo>
#include <QTranslator>

namespace {

void copy(const QString& source, const QString& path) {
    QFile::remove(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !QFile::copy(source, path))
        giveUp(source + " cannot be copied to " + path);
}

QString builtResource(const QString& name) {
    return QString(VQTL4_RESOURCES "/") + name;
}

} // namespace

ProgramTree::ProgramTree() {
    copy(VQTL4_PROGRAM, program());
    replaceLibrary(VQTL4_LIBRARY);
    for (const QString& name : {english, japanese, QString("VQ_TL4.ico")})
        copy(builtResource(name), resource(name));
}

QString ProgramTree::program() const {
    return m_folder.path("bin/" + QFileInfo(VQTL4_PROGRAM).fileName());
}

void ProgramTree::removeResource(const QString& name) const {
    if (!QFile::remove(resource(name)))
        giveUp(resource(name) + " cannot be removed");
}

void ProgramTree::writeResource(const QString& name, const QByteArray& content) const {
    m_folder.write("Resources/" + name, content);
}

void ProgramTree::replaceLibrary(const QString& source) const {
    copy(source, m_folder.path("lib/" + QFileInfo(VQTL4_LIBRARY).fileName()));
}

QString translated(const QString& fileName, const char* context, const char* text) {
    QTranslator translator;
    if (!translator.load(builtResource(fileName)))
        giveUp(fileName + " cannot be read");
    const QString found = translator.translate(context, text);
    return found.isNull() ? text : found;
}
