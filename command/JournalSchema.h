#ifndef COMMAND_JOURNALSCHEMA_H
#define COMMAND_JOURNALSCHEMA_H

#include <QStringList>

/**
 * The tables of the journal. Rows are added and never changed: what ends something is a row of its
 * own, and triggers refuse UPDATE, DELETE and what would replace a row.
 *
 * A version, once given to a user, is never edited; a later one adds to it.
 */
namespace JournalSchema {

/** `PRAGMA application_id` of a journal: "VQJ1". */
constexpr int applicationId = 0x56514A31;
constexpr int currentVersion = 2;

/** The statements that make version @p version, from 1, of the one before. */
QStringList statements(int version);

} // namespace JournalSchema

#endif
