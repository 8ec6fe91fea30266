#ifndef COMMAND_SNAPSHOT_H
#define COMMAND_SNAPSHOT_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "command/InstrumentState.h"

#include <QDateTime>
#include <QJsonObject>

#include <optional>

/**
 * The complete state of an instrument at one time, as a JSON file that restores it bit for bit. Its
 * fields are for people; its records are used to restore. Both must agree.
 */
struct Snapshot {
    QDateTime created; ///< UTC, whole seconds
    InstrumentState state;
    bool hasKey = true; ///< false: the security key was left out, and is zero in `state`

    /** A snapshot of @p state with the present time. */
    static Snapshot of(const InstrumentState& state);

    /** Removes the security key. */
    void removeKey();

    /** The file's content. */
    QByteArray toJson() const;

    /** Reads a snapshot. Nothing, and a fault in @p faults, if it is damaged, edited or of a newer
        version. */
    static std::optional<Snapshot> check(const InputFile& file, Faults& faults);

    /** Writes and syncs it in @p folder as SERIAL-YYYYMMDDTHHMMSSZ.json, with a counter before the
        extension if that name exists.
        @param path  set to the file that was written
        @return empty, or the reason of the failure */
    Text writeTo(const QString& folder, QString& path) const;
};

/** The fields of a state for people and programs. @param showKey  false: a key is only masked */
QJsonObject readableState(const InstrumentState& state, bool showKey);

/** The mask for a security key that is not shown; an empty text for an empty key. */
QString maskedKey(const KVA_NETWORKINFO& info);

#endif
