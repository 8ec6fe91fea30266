#ifndef TESTS_DIALOGS_SWEEP_FAULTKINDS_H
#define TESTS_DIALOGS_SWEEP_FAULTKINDS_H

#include "tests/dialogs/sweep/LibraryModel.h"
#include "tests/support/ResultNames.h"

#include <QJsonObject>
#include <QMap>
#include <QVector>

#include <cstddef>
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

/** A byte of each answer that the dialog shows, or goes by. */
inline AnswerByte byteThatMatters(const QString& function) {
    static const QMap<QString, AnswerByte> bytes = {
        {"KVA_GetDevicePortList", {offsetof(KVA_PORTINFO, serialNumber), 1}},
        {"KVA_GetDeviceInfo", {offsetof(KVA_DEVICEINFO, macAddress), 0xFF}},
        {"KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA", {0, 1}},
        {"KVA_GetNetworkInfo", {offsetof(KVA_NETWORKINFO, IPAddress), 0x10}},
        {"KVA_GetShutdownTime", {0, 3}},
        {"KVA_JIG_GetFactoryCalib_CALREFDATA",
         {offsetof(KVA_JIG_CALREFDATA, whiteSerialNo) + 3, 1}},
    };
    return bytes.value(function);
}

/** A byte that is only handed on. */
inline AnswerByte byteOutOfSight(const QString& function) {
    if (function != "KVA_JIG_GetFactoryCalib_CALREFDATA")
        return {};
    return {sizeof(KVA_JIG_CALREFDATA) - 1, 0x80};
}

/** A named result, each time the next one: an error, or a warning. */
template <bool IsError>
QJsonObject nextResult(const Place& /*place*/, int index) {
    QVector<int> codes;
    for (const ResultName& named : resultNames) {
        if (IsError ? named.code < 0 : named.code > 0)
            codes.append(named.code);
    }
    return {{"result", codes[index % codes.size()]}};
}

/** A kind whose field is the same at every place. */
inline std::function<QJsonObject(const Place&, int)> always(const char* name,
                                                            const QJsonValue& value) {
    return [field = QJsonObject{{name, value}}](const Place&, int) { return field; };
}

template <AnswerByte (*Byte)(const QString&)>
FaultKind corruption(const char* name) {
    const auto fields = [](const Place& place, int) -> QJsonObject {
        const AnswerByte byte = Byte(place.function);
        return {{"corrupted", QJsonObject{{"offset", byte.offset}, {"xor", byte.flipped}}}};
    };
    const auto concerns = [](const QString& function) { return Byte(function).flipped != 0; };
    return {name, Effect::Corrupted, fields, concerns, true, Byte};
}

inline bool any(const QString&) {
    return true;
}

inline FaultKind unplugging(const char* moment, Effect effect) {
    return {QString("unplugged ") + moment, effect, always("unplug", moment), any, false};
}

inline bool isList(const QString& function) {
    return function == "KVA_GetDevicePortList";
}

/** Whether the function makes the instrument do something. */
inline bool isCommand(const QString& function) {
    return function.contains("_Set") || function.endsWith("onnect");
}

/** Whether the function's answer can change. */
inline bool isState(const QString& function) {
    return isList(function) || function == "KVA_GetNetworkInfo" ||
           function == "KVA_GetShutdownTime" || function == "KVA_JIG_GetFactoryCalib_CALREFDATA";
}

inline const QVector<FaultKind>& faultKinds() {
    static const QVector<FaultKind> kinds = {
        {"error", Effect::Refused, nextResult<true>, any},
        {"warning", Effect::None, nextResult<false>, any},
        {"delay", Effect::None, always("delayMs", 2), any},
        {"dropped", Effect::Dropped, always("dropped", true), isCommand},
        {"stale", Effect::Stale, always("stale", true), isState},
        corruption<byteThatMatters>("corrupted"),
        corruption<byteOutOfSight>("corrupted out of sight"),
        {"short list", Effect::NoPorts, always("shortList", 0), isList},
        unplugging("before", Effect::UnplugBefore),
        unplugging("during", Effect::UnplugDuring),
        unplugging("after", Effect::UnplugAfter),
    };
    return kinds;
}

/** The fault as the model takes it. @param onwards that call and every later one */
inline Fault modelFault(const FaultKind& kind, const Place& place, bool onwards) {
    const AnswerByte byte = kind.byte ? kind.byte(place.function) : AnswerByte{};
    return {place.function, place.call,  onwards ? INT_MAX : place.call,
            kind.effect,    byte.offset, byte.flipped};
}

/** The fault as the simulated library takes it. */
inline QJsonObject faultRule(const FaultKind& kind, const Place& place, bool onwards, int index) {
    QJsonObject rule = kind.fields(place, index);
    rule["function"] = place.function;
    const int last = onwards ? 1000000 : place.call;
    rule["call"] = QString("%1-%2").arg(place.call).arg(last);
    return rule;
}

#endif
