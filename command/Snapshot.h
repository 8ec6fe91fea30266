#ifndef COMMAND_SNAPSHOT_H
#define COMMAND_SNAPSHOT_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "command/InstrumentState.h"

#include <QDateTime>
#include <QJsonObject>

#include <optional>

/**
 * All that an instrument held at one time, as a JSON file that restores it bit for bit. A person
 * can read its fields; what is restored are its records, and both have to say the same.
 */
struct Snapshot {
    QDateTime created; ///< UTC, whole seconds
    InstrumentState state;
    bool hasKey = true; ///< false: the security key was left out, and is zero in `state`

    /** The snapshot of @p state, now. */
    static Snapshot of(const InstrumentState& state);

    /** Leaves the security key out. */
    void removeKey();

    /** The file's content. */
    QByteArray toJson() const;

    /** Reads a snapshot. Nothing, and a fault in @p faults, for one that is damaged, was edited or
        is of a newer version. */
    static std::optional<Snapshot> check(const InputFile& file, Faults& faults);

    /** Writes it to @p folder as SERIAL-YYYYMMDDTHHMMSSZ.json, with a counter before the ending
        where that name is taken, durably.
        @param path  set to the file that was written
        @return empty, or why it could not be written */
    Text writeTo(const QString& folder, QString& path) const;
};

/** The fields of a state for people and programs. @param showKey  false: a key is only masked */
QJsonObject readableState(const InstrumentState& state, bool showKey);

/** What stands in place of a security key that is not shown; nothing in place of an empty one. */
QString maskedKey(const KVA_NETWORKINFO& info);

#endif
