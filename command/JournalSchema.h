#ifndef COMMAND_JOURNALSCHEMA_H
#define COMMAND_JOURNALSCHEMA_H

#include <QStringList>

/**
 * The tables of the journal. Rows are added and never changed: an end is a row of its own, and
 * triggers refuse UPDATE, DELETE and the replacement of a row.
 *
 * A version is never edited once it was released; a later one adds to it.
 */
namespace JournalSchema {

/** `PRAGMA application_id` of a journal: "VQJ1". */
constexpr int applicationId = 0x56514A31;
constexpr int currentVersion = 2;

/** The statements that migrate to version @p version, from 1, from the one before. */
QStringList statements(int version);

} // namespace JournalSchema

#endif
