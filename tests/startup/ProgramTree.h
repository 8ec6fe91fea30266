#ifndef TESTS_STARTUP_PROGRAMTREE_H
#define TESTS_STARTUP_PROGRAMTREE_H

#include <QString>
#include <QTemporaryDir>

/** A copy of the program with its library and its resources, to be changed before a run. */
class ProgramTree {
public:
    ProgramTree();

    QString program() const;
    QString library() const;
    /** The path of a file in the folder of the resources. */
    QString resource(const QString& name) const;

    bool isComplete() const; ///< all was copied

    /** Puts a copy of a file in the place of a resource. */
    bool replaceResource(const QString& name, const QString& source) const;
    /** Puts a copy of another library in the place of libKVASDK. */
    bool replaceLibrary(const QString& source) const;
    bool removeResource(const QString& name) const;
    /** Writes a resource that holds just these bytes. */
    bool damageResource(const QString& name, const QByteArray& content) const;

private:
    QTemporaryDir m_folder;
    bool m_isComplete = false;
};

/** A text as a file of translations has it; the text itself where it has none.
    @param fileName  "en.qm" or "jp.qm", of the built program */
QString translated(const QString& fileName, const char* context, const char* text);

#endif
