#ifndef TESTS_STARTUP_PROGRAMTREE_H
#define TESTS_STARTUP_PROGRAMTREE_H

#include "tests/support/TestFolder.h"

#include <QFileInfo>
#include <QTranslator>

inline const QString english = "en.qm";
inline const QString japanese = "jp.qm";

/** A copy of the program with its library and its resources, to be changed before a run. Gives up
    when a file cannot be copied, written or removed. */
class ProgramTree {
public:
    ProgramTree() {
        copy(VQTL4_PROGRAM, program());
        replaceLibrary(VQTL4_LIBRARY);
        for (const QString& name : {english, japanese, QString("VQ_TL4.ico")})
            copy(VQTL4_RESOURCES "/" + name, resource(name));
    }

    QString program() const { return m_folder.path("bin/" + QFileInfo(VQTL4_PROGRAM).fileName()); }
    /** The path of a file in the folder of the resources. */
    QString resource(const QString& name) const { return m_folder.path("Resources/" + name); }

    void removeResource(const QString& name) const {
        if (!QFile::remove(resource(name)))
            giveUp(resource(name) + " cannot be removed");
    }
    /** Writes a resource that holds just these bytes. */
    void writeResource(const QString& name, const QByteArray& content) const {
        m_folder.write("Resources/" + name, content);
    }
    /** Puts a copy of another library in the place of libKVASDK. */
    void replaceLibrary(const QString& source) const {
        copy(source, m_folder.path("lib/" + QFileInfo(VQTL4_LIBRARY).fileName()));
    }

private:
    static void copy(const QString& source, const QString& path) {
        QFile::remove(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !QFile::copy(source, path))
            giveUp(source + " cannot be copied to " + path);
    }

    TestFolder m_folder;
};

/** A text as a file of translations has it; the text itself where it has none.
    @param fileName  "en.qm" or "jp.qm", of the built program */
inline QString translated(const QString& fileName, const char* context, const char* text) {
    QTranslator translator;
    if (!translator.load(VQTL4_RESOURCES "/" + fileName))
        giveUp(fileName + " cannot be read");
    const QString found = translator.translate(context, text);
    return found.isNull() ? text : found;
}

#endif
