#ifndef TESTS_DIALOGS_SWEEP_FAULTKINDS_H
#define TESTS_DIALOGS_SWEEP_FAULTKINDS_H

#include "tests/dialogs/sweep/LibraryModel.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

#include <functional>

/** A call of the sequence in which nothing fails: a function and which of its calls it is. */
struct Place {
    QString function;
    int call = 1; ///< counted from 1
};

/** A byte of an answer that arrives altered. */
struct AnswerByte {
    int offset = 0;
    int flipped = 0; ///< the bits that differ; 0: no such byte
};

/** One kind of fault. */
struct FaultKind {
    QString name;
    Effect effect;
    /** What makes it happen at a place, besides function and call: the fields of the simulated
        library's rule. @param index counts up, so that a kind can take another value each time */
    std::function<QJsonObject(const Place& place, int index)> fields;
    /** Whether the kind can happen to that function at all. */
    std::function<bool(const QString& function)> concerns;
    bool repeats = true; ///< whether it is another matter when it happens again and again
    /** The byte that differs, of an answer of that function. */
    AnswerByte (*byte)(const QString& function) = nullptr;
};

const QVector<FaultKind>& faultKinds();

/** The fault as the model takes it. @param onwards that call and every later one */
Fault modelFault(const FaultKind& kind, const Place& place, bool onwards);

/** The fault as the simulated library takes it. */
QJsonObject faultRule(const FaultKind& kind, const Place& place, bool onwards, int index);

#endif
