#include "files/BoundedLineReader.h"
#include "tests/unit/files/FileFixture.h"

#include <algorithm>
#include <cerrno>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace {

/** Stands between the process and one file while it exists; one at a time. This program defines
    `read` itself: reads end at a place in the file, and there something happens. */
class ReadHook {
public:
    /** @param offset    the place, in bytes
        @param atOffset  called before each read from there on; false lets the read fail (EIO) */
    ReadHook(const char* path, off_t offset, std::function<bool()> atOffset)
        : m_offset(offset), m_atOffset(std::move(atOffset)) {
        if (::stat(path, &m_status) != 0)
            giveUp("no file to hook");
        current = this;
    }
    ~ReadHook() { current = nullptr; }
    Q_DISABLE_COPY(ReadHook)

    /** What `read` does for a descriptor. */
    static ssize_t read(int file, void* buffer, std::size_t count) {
        static const auto readOfTheSystem =
            reinterpret_cast<ssize_t (*)(int, void*, std::size_t)>(dlsym(RTLD_NEXT, "read"));
        if (!current || !current->isFor(file))
            return readOfTheSystem(file, buffer, count);
        const off_t left = current->m_offset - ::lseek(file, 0, SEEK_CUR);
        if (left > 0)
            return readOfTheSystem(file, buffer, std::min(count, static_cast<std::size_t>(left)));
        if (current->m_atOffset())
            return readOfTheSystem(file, buffer, count);
        errno = EIO;
        return -1;
    }

private:
    bool isFor(int file) const {
        struct stat status = {};
        return ::fstat(file, &status) == 0 && status.st_dev == m_status.st_dev &&
               status.st_ino == m_status.st_ino;
    }

    static ReadHook* current;
    struct stat m_status = {};
    off_t m_offset;
    std::function<bool()> m_atOffset;
};
ReadHook* ReadHook::current = nullptr;

/** A read of the file "file" during which something happens, once, at an offset. */
struct DisturbedRow {
    QByteArray name;
    QByteArray content;
    qint64 offset;
    void (*change)(const QByteArray& other); ///< of the file; null: reading fails
    QByteArray (*read)();
    QByteArray expected;
    QByteArray other = {}; ///< content that it may change to
};
using Rows = QVector<DisturbedRow>;

void write(const char* path, QIODevice::OpenMode mode, const QByteArray& content) {
    QFile file(path);
    if (!file.open(mode) || file.write(content) != content.size())
        giveUp("the file cannot be changed");
}

void resize(qint64 size) {
    if (!QFile::resize("file", size))
        giveUp("the file cannot be resized");
}

struct Way {
    const char* name;
    void (*change)(const QByteArray& other);
};
const Way ways[] = {
    {"none", [](const QByteArray&) {}},
    {"replaced",
     [](const QByteArray& other) {
         write("other", QIODevice::WriteOnly, other);
         if (::rename("other", "file") != 0)
             giveUp("the file cannot be replaced");
     }},
    {"grows", [](const QByteArray&) { write("file", QIODevice::Append, "more\n"); }},
    {"shrinks", [](const QByteArray& other) { resize(other.lastIndexOf("6543")); }},
    {"is emptied", [](const QByteArray&) { resize(0); }},
    {"other bytes", [](const QByteArray& other) { write("file", QIODevice::ReadWrite, other); }},
};

Rows calibrationRows(bool adapter) {
    const QByteArray kind = adapter ? "adapter, " : "white plate, ";
    const auto read = adapter ? [] { return readCalRef(true, "file"); }
                              : [] { return readCalRef(false, "file"); };
    // The last value reads as another number wherever it is cut.
    QVector<float> values = sampleValues(calRefReader(adapter).valueCount);
    values.last() = 87.6543F;
    const QByteArray complete = outcome(true, calRefRecord(adapter, "\x12\x34\x56\x78", values));
    const QByteArray file =
        calRefFile(adapter).replace(adapter ? "74.25" : "37.25", "87.6543") + "end\n";
    const QByteArray wrongSerialNo = QByteArray(file).replace("12345678", "123456789");
    Rows rows;
    const auto addFailure = [&](const char* name, const QByteArray& content, qint64 offset) {
        rows.append({kind + name, content, offset, nullptr, read, refusedCalRef(adapter)});
    };
    addFailure("first byte", file, 0);
    addFailure("in the headings", file, 3);
    addFailure("before the serial number", file, file.indexOf("12345678"));
    addFailure("in the serial number", file, file.indexOf("5678"));
    addFailure("before the values", file, file.indexOf("0.25"));
    addFailure("in the last value", file, file.indexOf("7.6543"));
    addFailure("behind the last value", file, file.indexOf("\nend"));
    addFailure("behind the values", file, file.indexOf("end"));
    addFailure("last byte", file, file.size() - 1);
    addFailure("behind the buffer", file + QByteArray(100000, 'x'), 70000);
    addFailure("behind a serial number that is complained of", wrongSerialNo, file.indexOf("end"));
    for (const Way& way : ways) {
        // What is replaced is another file: the one that was opened is read as it is.
        const QByteArray expected = &way - ways < 2 ? complete : refusedCalRef(adapter);
        for (const char* place : {"heading", "6543"})
            rows.append({kind + way.name + " at " + place, file, file.indexOf(place), way.change,
                         read, expected, QByteArray(file).replace(".25", ".75")});
    }
    return rows;
}

Rows settingsRows() {
    const QByteArray file = sampleNetworkIni();
    const QByteArray longer = file + "; 87.6543\n";
    const auto read = [] { return readNetwork("file", patternedNetwork()); };
    const QByteArray refused = outcome(false, patternedNetwork().bytes());
    Rows rows = {
        {"settings, first byte", file, 0, nullptr, read, refused},
        {"settings, in the header", file, 3, nullptr, read, refused},
        {"settings, last byte", file, file.size() - 1, nullptr, read, refused},
    };
    for (const char* value :
         {"0\nIPA", "8.0.10\n", "255.0\n", "68.0.1\n", "ab 5\n", "word=1\n", "8.4.4\n", "1\n"})
        rows.append({"settings, before \"" + QByteArray(value).simplified() + '"', file,
                     file.lastIndexOf(value), nullptr, read, refused});
    // Before the first key is read; the seven others are looked up afterwards.
    for (const Way& way : ways)
        rows.append({QByteArray("settings, ") + way.name, longer, 0, way.change, read,
                     &way == ways ? outcome(true, patternedNetwork().sample().bytes()) : refused,
                     QByteArray(longer).replace("168", "199")});
    return rows;
}

/** The length that a lookup returns, and its buffer. */
QByteArray lookUp() {
    QByteArray out(512, '\xA5');
    const int length =
        CFileIO::ReadProfileString("Section", "Key", "default", out.data(), 0, "file");
    return QByteArray::number(length) + out;
}

Rows lookupRows() {
    const QByteArray file = "[Section]\nKey=abcdef\nLast=1\n";
    const QByteArray untouched = '7' + QByteArray(512, '\xA5');
    const QByteArray found = overlaid(untouched, 0, QByteArray("6abcdef\0", 8));
    return {
        {"lookup, first byte", file, 0, nullptr, lookUp, untouched},
        {"lookup, in the header", file, 5, nullptr, lookUp, untouched},
        {"lookup, in the key", file, file.indexOf("ey="), nullptr, lookUp, untouched},
        {"lookup, before the value", file, file.indexOf("abcdef"), nullptr, lookUp, untouched},
        {"lookup, in the value", file, file.indexOf("def"), nullptr, lookUp, untouched},
        {"lookup, behind the value", file, file.indexOf("\nLast"), nullptr, lookUp, untouched},
        {"lookup, behind its line", file, file.indexOf("Last"), nullptr, lookUp, found},
    };
}

} // namespace

extern "C" ssize_t read(int file, void* buffer, std::size_t count) {
    return ReadHook::read(file, buffer, count);
}

/** Files that fail while they are read, or that change meanwhile. Each counts as a file that cannot
    be opened; nothing that was read short is taken. */
class TestDisturbedReads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void handsOutNoPartOfALine() {
        const TestFolder folder;
        folder.write("lines", "first\nsecond\n");
        const ReadHook hook("lines", 9, [n = 0]() mutable { return n++ > 0; }); // fails once
        BoundedLineReader reader("lines", 100);
        std::string line;
        QVERIFY(reader.next(line));
        QCOMPARE(line, std::string("first"));
        QVERIFY(!reader.failed());
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!reader.next(line));
            QCOMPARE(line, std::string());
            QVERIFY(reader.failed());
        }
    }

    void disturbed_data() {
        addRows(calibrationRows(false) + calibrationRows(true) + settingsRows() + lookupRows());
    }
    void disturbed() {
        const auto row = rowOf<DisturbedRow>();
        const TestFolder folder;
        folder.write("file", row.content);
        const timespec longAgo[2] = {{1, 0}, {1, 0}}; // a time that no change can have
        QVERIFY(::utimensat(AT_FDCWD, "file", longAgo, 0) == 0);
        bool hasHappened = false;
        const ReadHook hook("file", row.offset, [&] {
            if (row.change && !hasHappened)
                row.change(row.other);
            hasHappened = true;
            return row.change != nullptr;
        });
        QCOMPARE(row.read(), row.expected);
        QVERIFY(hasHappened || !row.change);
    }
};

TEST_CLASS(TestDisturbedReads)

#include "tst_disturbed_reads.moc"
