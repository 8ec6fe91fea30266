#include "command/JournalSchema.h"

namespace {

const char* const version1[] = {
    // One apply, restore or recover. Times are UTC, as 2026-11-20T09:30:00.125Z.
    "CREATE TABLE run (id INTEGER PRIMARY KEY, started TEXT NOT NULL, arguments TEXT NOT NULL,"
    " user TEXT NOT NULL, host TEXT NOT NULL, process INTEGER NOT NULL,"
    " tool_version TEXT NOT NULL, library_path TEXT NOT NULL, library_sha256 TEXT NOT NULL)",
    // Without a status if a later run added it because this run did not end.
    "CREATE TABLE run_end (run INTEGER PRIMARY KEY REFERENCES run, ended TEXT NOT NULL,"
    " exit_status INTEGER, found_by INTEGER REFERENCES run)",
    // The SHA-256 is of the original file; in the content a security key is masked.
    "CREATE TABLE input_file (id INTEGER PRIMARY KEY, run INTEGER NOT NULL REFERENCES run,"
    " role TEXT NOT NULL, path TEXT NOT NULL, sha256 TEXT NOT NULL, content BLOB NOT NULL,"
    " is_masked INTEGER NOT NULL)",
    // An instrument's part of a run.
    "CREATE TABLE instrument (id INTEGER PRIMARY KEY, run INTEGER NOT NULL REFERENCES run,"
    " serial_number INTEGER NOT NULL, began TEXT NOT NULL)",
    "CREATE INDEX instrument_of_run ON instrument (run)",
    "CREATE INDEX instrument_serial ON instrument (serial_number)",
    // Kinds: before, wanted. The path is that of the snapshot file with the same content.
    "CREATE TABLE snapshot (id INTEGER PRIMARY KEY,"
    " instrument INTEGER NOT NULL REFERENCES instrument, kind TEXT NOT NULL, path TEXT NOT NULL,"
    " content BLOB NOT NULL)",
    "CREATE INDEX snapshot_of_instrument ON snapshot (instrument)",
    "CREATE TABLE field_change (id INTEGER PRIMARY KEY,"
    " instrument INTEGER NOT NULL REFERENCES instrument, field TEXT NOT NULL,"
    " old TEXT NOT NULL, new TEXT NOT NULL)",
    "CREATE INDEX field_change_of_instrument ON field_change (instrument)",
    "CREATE TABLE step (id INTEGER PRIMARY KEY,"
    " instrument INTEGER NOT NULL REFERENCES instrument, name TEXT NOT NULL, began TEXT NOT NULL)",
    "CREATE INDEX step_of_instrument ON step (instrument)",
    // A library call, stored before it is made; its result, stored before the next call is made.
    "CREATE TABLE call (id INTEGER PRIMARY KEY, step INTEGER NOT NULL REFERENCES step,"
    " function TEXT NOT NULL, writes INTEGER NOT NULL, began TEXT NOT NULL)",
    "CREATE INDEX call_of_step ON call (step)",
    "CREATE TABLE call_result (call INTEGER PRIMARY KEY REFERENCES call, code INTEGER NOT NULL,"
    " microseconds INTEGER NOT NULL)",
    // Writing to the instrument begins; it ends when its result is known, maybe by a later run.
    "CREATE TABLE mark (instrument INTEGER PRIMARY KEY REFERENCES instrument)",
    "CREATE TABLE mark_end (mark INTEGER PRIMARY KEY REFERENCES mark,"
    " ended_by INTEGER NOT NULL REFERENCES instrument)",
    "CREATE TABLE outcome (instrument INTEGER PRIMARY KEY REFERENCES instrument,"
    " word TEXT NOT NULL, reasons TEXT NOT NULL, warnings INTEGER NOT NULL, ended TEXT NOT NULL)",
};
const char* const tables1[] = {"run",         "run_end",      "input_file", "instrument",
                               "snapshot",    "field_change", "step",       "call",
                               "call_result", "mark",         "mark_end",   "outcome"};

const char* const version2[] = {
    // What a later `verify` found.
    "CREATE TABLE verification (id INTEGER PRIMARY KEY,"
    " instrument INTEGER NOT NULL REFERENCES instrument, at TEXT NOT NULL, word TEXT NOT NULL)",
    "CREATE INDEX verification_of_instrument ON verification (instrument)",
};
const char* const tables2[] = {"verification"};

/** `INSERT OR REPLACE` removes a row without firing the trigger for DELETE. */
QStringList guards(const char* tableName) {
    const QString table = QString::fromLatin1(tableName);
    const QString refusal =
        QStringLiteral(" BEGIN SELECT RAISE(ABORT, 'rows of the journal are never changed'); END");
    return {QStringLiteral("CREATE TRIGGER %1_update BEFORE UPDATE ON %1").arg(table) + refusal,
            QStringLiteral("CREATE TRIGGER %1_delete BEFORE DELETE ON %1").arg(table) + refusal,
            QStringLiteral("CREATE TRIGGER %1_replace BEFORE INSERT ON %1"
                           " WHEN EXISTS (SELECT 1 FROM %1 WHERE rowid = NEW.rowid)")
                    .arg(table) +
                refusal};
}

template <std::size_t Statements, std::size_t Tables>
QStringList allOf(const char* const (&statements)[Statements],
                  const char* const (&tables)[Tables]) {
    QStringList result;
    for (const char* statement : statements)
        result.append(QString::fromLatin1(statement));
    for (const char* table : tables)
        result.append(guards(table));
    return result;
}

} // namespace

QStringList JournalSchema::statements(int version) {
    return version == 1 ? allOf(version1, tables1) : allOf(version2, tables2);
}
