#include "files/BoundedLineReader.h"
#include "tests/unit/files/FileFixture.h"

#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

/** Makes what lies at the path "file", or beside it. False when the machine did not let it. */
using Make = bool (*)();

struct KindRow {
    const char* name;
    Make make;
    QByteArray path = "file";
    bool isForbidden = false;
};

bool makeNothing() {
    return true;
}

bool makeSocket() {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, "file");
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool made =
        ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(socket);
    return made;
}

} // namespace

/** Every kind of path that counts as a file that cannot be opened for reading, given to all that
    read files. What is a file is right for its reader. */
class TestUnopenableFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() {
        addRows(QVector<KindRow>{
            {"missing", makeNothing},
            {"empty path", makeNothing, ""},
            {"folder", [] { return ::mkdir("file", 0700) == 0; }},
            {"behind a file", makeNothing, "right/file"},
            {"link to nothing", [] { return ::symlink("nothing", "file") == 0; }},
            {"link to itself", [] { return ::symlink("file", "file") == 0; }},
            {"name too long", makeNothing, QByteArray(5000, 'n')},
            {"no permission", [] { return ::chmod("right", 0) == 0; }, "right", true},
            {"pipe", [] { return ::mkfifo("file", 0600) == 0; }},
            {"socket", makeSocket},
            {"device", makeNothing, "/dev/zero"},
        });
    }

    void lines() {
        check("abc\n", [](const char* path) {
            BoundedLineReader reader(path, 8);
            QVERIFY(!reader.isOpen());
            QVERIFY(reader.failed());
            std::string line = "left over";
            QVERIFY(!reader.next(line));
            QVERIFY(line.empty());
        });
    }

    void calibration() {
        for (const bool adapter : {false, true}) {
            check(calRefFile(adapter), [adapter](const char* path) {
                QCOMPARE(readCalRef(adapter, path), refusedCalRef(adapter));
            });
        }
    }

    void network() {
        check(sampleNetworkIni(), [](const char* path) {
            QCOMPARE(readNetwork(path, patternedNetwork()),
                     outcome(false, patternedNetwork().bytes()));
        });
    }

    /** The one case in which the default is not copied. */
    void lookup() {
        check("[Section]\nKey=abc\n", [](const char* path) {
            for (const QByteArray& text : {QByteArray("<default>"), QByteArray(600, 'd')}) {
                QByteArray out(576, '\xA5');
                QCOMPARE(CFileIO::ReadProfileString("Section", "Key", text, out.data(), 0, path),
                         text.size());
                QCOMPARE(out, QByteArray(576, '\xA5'));
            }
            QByteArray out(576, '\xA5');
            QCOMPARE(CFileIO::ReadProfileString("Section", "Key", nullptr, out.data(), 0, path), 0);
            QCOMPARE(out, QByteArray(576, '\xA5'));
        });
    }

private:
    /** Makes the row's kind of path, beside a file of this content, and calls @p read with it. */
    template <typename Read>
    void check(const QByteArray& content, const Read& read) {
        const auto row = globalRowOf<KindRow>();
        const TestFolder folder;
        folder.write("right", content);
        QVERIFY(row.make());
        std::optional<WithoutPrivileges> guard;
        if (row.isForbidden)
            guard.emplace();
        const int free = lowestDescriptor();
        read(row.path.constData());
        QCOMPARE(lowestDescriptor(), free); // nothing is left open
    }

    static int lowestDescriptor() {
        const int file = ::dup(STDIN_FILENO);
        ::close(file);
        return file;
    }
};

TEST_CLASS(TestUnopenableFiles)

#include "tst_unopenable_files.moc"
