#ifndef TESTS_STARTUP_PROGRAMTREE_H
#define TESTS_STARTUP_PROGRAMTREE_H

#include "tests/support/TestFolder.h"

inline const QString english = "en.qm";
inline const QString japanese = "jp.qm";

/** A copy of the program with its library and its resources, to be changed before a run. Gives up
    when a file cannot be copied, written or removed. */
class ProgramTree {
public:
    ProgramTree();

    QString program() const;
    /** The path of a file in the folder of the resources. */
    QString resource(const QString& name) const { return m_folder.path("Resources/" + name); }

    void removeResource(const QString& name) const;
    /** Writes a resource that holds just these bytes. */
    void writeResource(const QString& name, const QByteArray& content) const;
    /** Puts a copy of another library in the place of libKVASDK. */
    void replaceLibrary(const QString& source) const;

private:
    TestFolder m_folder;
};

/** A text as a file of translations has it; the text itself where it has none.
    @param fileName  "en.qm" or "jp.qm", of the built program */
QString translated(const QString& fileName, const char* context, const char* text);

#endif
