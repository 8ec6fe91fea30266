#include "command/HtmlInstrument.h"

#include "command/FieldTexts.h"
#include "command/HtmlCalibration.h"
#include "command/InputRole.h"
#include "command/Report.h"
#include "command/ValueFile.h"
#include "instrument/ResultNames.h"

#include <algorithm>
#include <iterator>

namespace {

/** The fields of a difference, with their names for people. */
const std::pair<const char*, const char*> fieldNames[] = {
    {"network.wireless", QT_TRANSLATE_NOOP("vq-tl4ctl", "Wireless LAN")},
    {"network.dhcp", "DHCP"},
    {"network.ipAddress", QT_TRANSLATE_NOOP("vq-tl4ctl", "IP address")},
    {"network.subnetMask", QT_TRANSLATE_NOOP("vq-tl4ctl", "Subnet mask")},
    {"network.defaultGateway", QT_TRANSLATE_NOOP("vq-tl4ctl", "Default gateway")},
    {"network.dns", "DNS"},
    {"network.ssid", "SSID"},
    {"network.key", QT_TRANSLATE_NOOP("vq-tl4ctl", "Security key")},
    {"powerOff", QT_TRANSLATE_NOOP("vq-tl4ctl", "Automatic power-off, minutes")},
    {"whitePlate.serialNumber",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "Serial number of the white calibration plate")},
    {"ambientAdapter.serialNumber",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "Serial number of the ambient light adapter")},
};

/** The name for people, or the word itself if there is none, as for a single value. */
QString nameOf(const QString& field) {
    for (const auto& [name, people] : fieldNames) {
        if (field == QLatin1String(name))
            return translated(people);
    }
    return field;
}

/** @param withSerial  whether the serial number is told too */
QString kindOf(const JournalInput& input, bool withSerial) {
    const InputRole* role = InputRole::stored(input.role);
    if (!role)
        return input.role;
    const QString serial = InputRole::storedSerial(input.role);
    if (!withSerial || serial.isEmpty())
        return translated(role->name);
    return translated(role->name) + QLatin1Char(' ') + serial;
}

/** Writes one section. */
class Section {
public:
    Section(const HtmlInstrument& instrument, HtmlWriter& html)
        : m_instrument(instrument), m_part(instrument.part), m_html(html) {
        if (instrument.before && instrument.wanted)
            m_calibration = HtmlCalibration::changed(instrument.before->state.calibration,
                                                     instrument.wanted->state.calibration,
                                                     afterName(), instrument.id);
    }

    void write() const {
        const QString titleId = m_instrument.id + QStringLiteral("-heading");
        const auto section = m_html.open("section", {{"id", m_instrument.id},
                                                     {"class", QStringLiteral("instrument")},
                                                     {"aria-labelledby", titleId}});
        m_html.element("h2",
                       translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1: %2"),
                                  {serialText(m_part.serialNumber), m_instrument.outcome()}),
                       {{"id", titleId}});
        writeVerdict();
        writeIdentity();
        writeChanges();
        writeInputs();
        writeVerifications();
        for (const HtmlCalibration& part : m_calibration)
            part.write(m_html, serialText(m_part.serialNumber));
    }

private:
    void paragraph(const char* source) const { m_html.element("p", translated(source)); }

    bool isVerified() const {
        return m_instrument.outcome() == QLatin1String(outcomeWord(Outcome::Verified));
    }

    /** "After" only if the wanted state was verified. */
    QString afterName() const {
        return translated(isVerified() ? QT_TRANSLATE_NOOP("vq-tl4ctl", "After")
                                       : QT_TRANSLATE_NOOP("vq-tl4ctl", "Wanted"));
    }

    QString verdictText() const {
        const QString serial = serialText(m_part.serialNumber);
        for (const Outcome outcome :
             {Outcome::Unchanged, Outcome::Verified, Outcome::Refused, Outcome::RolledBack,
              Outcome::Unknown, Outcome::Waits, Outcome::WouldChange}) {
            if (m_instrument.outcome() == QLatin1String(outcomeWord(outcome)))
                return outcomeSentence(outcome, serial).translated();
        }
        return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "The run ended before a verdict."));
    }

    void writeVerdict() const {
        const bool isQuiet = isVerified() || m_instrument.outcome() ==
                                                 QLatin1String(outcomeWord(Outcome::Unchanged));
        m_html.element("p", verdictText(), {{"class", isQuiet ? u"verdict" : u"verdict grave"}});
        if (m_part.isUnfinished)
            paragraph(QT_TRANSLATE_NOOP("vq-tl4ctl", "What the write came to is not known yet: run "
                                                     "vq-tl4ctl recover."));
        else if (!m_part.outcome && m_instrument.before)
            paragraph(
                QT_TRANSLATE_NOOP("vq-tl4ctl", "A later run settled what the instrument holds."));
        if (m_part.isRecovery)
            paragraph(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                        "This run ended an earlier one's unfinished write."));
        writeReasons();
    }

    /** Marks them as English, as the journal has them. */
    void writeReasons() const {
        if (!m_part.outcome || m_part.outcome->reasons.isEmpty())
            return;
        const auto list = m_html.open(
            "ul", {{"class", QStringLiteral("reasons")}, {"lang", QStringLiteral("en")}});
        for (const QString& reason : m_part.outcome->reasons)
            m_html.element("li", reason);
    }

    void writeIdentity() const {
        HtmlWriter::Table table(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Identity and course")),
                                {}, "facts");
        const auto add = [&](const char* name, const QString& value) {
            table.add({translated(name), HtmlTexts::orNone(value)});
        };
        add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Serial number"), serialText(m_part.serialNumber));
        if (m_instrument.before) {
            const InstrumentState& state = m_instrument.before->state;
            add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Firmware"), FieldTexts::firmware(state.device));
            add(QT_TRANSLATE_NOOP("vq-tl4ctl", "MAC address"),
                FieldTexts::macAddress(state.device));
            add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Wireless module"),
                translated(state.wirelessModule != 0
                               ? QT_TRANSLATE_NOOP("vq-tl4ctl", "fitted and enabled")
                               : QT_TRANSLATE_NOOP("vq-tl4ctl", "none, or disabled")));
        }
        add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Began"), FieldTexts::time(m_part.began));
        QString ended;
        QStringList warnings;
        if (m_part.outcome) {
            ended = FieldTexts::time(m_part.outcome->ended);
            for (const char* name : warningNames(m_part.outcome->warnings))
                warnings.append(QString::fromLatin1(name));
        }
        add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Ended"), ended);
        const auto writes = std::count_if(m_part.calls.begin(), m_part.calls.end(),
                                          [](const JournalCall& call) { return call.writes; });
        add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Calls of the library"),
            translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1, of which %2 write"),
                       {QString::number(m_part.calls.size()), QString::number(writes)}));
        add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Warnings of the library"),
            warnings.join(QStringLiteral(", ")));
        add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Snapshot of the state before"), m_part.snapshotPath);
        m_html.table(table);
        if (!m_instrument.before)
            paragraph(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                        "The journal has no snapshot of this instrument: nothing "
                                        "was written to it."));
    }

    /** Whether the field is a value that the table below a plot shows. */
    bool isShownBelow(const QString& field) const {
        return std::any_of(m_calibration.begin(), m_calibration.end(),
                           [&](const HtmlCalibration& part) { return part.shows(field); });
    }

    void writeChanges() const {
        m_html.element("h3", translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Changes")));
        if (m_part.changes.empty()) {
            paragraph(QT_TRANSLATE_NOOP("vq-tl4ctl", "None."));
            return;
        }
        HtmlWriter::Table table(
            translated(isVerified() ? QT_TRANSLATE_NOOP("vq-tl4ctl", "Before and after")
                                    : QT_TRANSLATE_NOOP("vq-tl4ctl", "Before and wanted")),
            {translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Field")),
             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Before")), afterName()},
            "changes");
        for (const FieldChange& change : m_part.changes) {
            if (!isShownBelow(change.field))
                table.add({nameOf(change.field), HtmlTexts::orNone(change.oldText),
                           HtmlTexts::orNone(change.newText) + changeNote(change)});
        }
        if (table.rows.empty())
            paragraph(QT_TRANSLATE_NOOP("vq-tl4ctl", "Calibration values alone, below."));
        else
            m_html.table(table);
    }

    /** Whether the file concerns this instrument; a value file does if its values were wanted. */
    bool isFor(const JournalInput& input) const {
        const QString serial = InputRole::storedSerial(input.role);
        if (!serial.isEmpty())
            return serial == serialText(m_part.serialNumber);
        if (m_instrument.run.instruments.size() == 1)
            return true;
        const InputRole* role = InputRole::stored(input.role);
        if (!role || !role->accessory)
            return true;
        Faults faults;
        const auto file = ValueFile::check({input.path, input.content}, *role->accessory, faults);
        if (!file || !m_instrument.wanted)
            return false;
        KVA_JIG_CALREFDATA record = m_instrument.wanted->state.calibration;
        file->mergeInto(record);
        return isSame(record, m_instrument.wanted->state.calibration);
    }

    void writeInputs() const {
        std::vector<JournalInput> inputs;
        std::copy_if(m_instrument.run.inputs.begin(), m_instrument.run.inputs.end(),
                     std::back_inserter(inputs),
                     [&](const JournalInput& input) { return isFor(input); });
        if (inputs.empty())
            return;
        m_html.element("h3", translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Input")));
        m_html.table(HtmlTexts::inputs(inputs, false));
    }

    void writeVerifications() const {
        if (m_part.verifications.empty())
            return;
        m_html.element("h3", translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Looked at again")));
        HtmlWriter::Table table(
            translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "What vq-tl4ctl verify found later")),
            {translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Time")),
             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Outcome"))},
            "changes");
        for (const JournalVerification& verification : m_part.verifications)
            table.add({FieldTexts::time(verification.at), verification.word});
        m_html.table(table);
    }

    const HtmlInstrument& m_instrument;
    const JournalInstrument& m_part;
    HtmlWriter& m_html;
    std::vector<HtmlCalibration> m_calibration;
};

} // namespace

QString HtmlInstrument::outcome() const {
    if (!part.outcome)
        return QStringLiteral("unfinished");
    return part.outcome->word;
}

void HtmlInstrument::write(HtmlWriter& html) const {
    Section(*this, html).write();
}

QString HtmlTexts::orNone(const QString& text) {
    if (text.isEmpty())
        return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "(none)"));
    return text;
}

HtmlWriter::Table HtmlTexts::inputs(const std::vector<JournalInput>& inputs, bool isOfRun) {
    HtmlWriter::Table table(
        translated(isOfRun ? QT_TRANSLATE_NOOP("vq-tl4ctl", "Input files of the run")
                           : QT_TRANSLATE_NOOP("vq-tl4ctl", "Input files for this instrument")),
        {translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Kind")),
         translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "File")), QStringLiteral("SHA-256")},
        "files");
    for (const JournalInput& input : inputs)
        table.add({kindOf(input, isOfRun), input.path, QString::fromLatin1(input.sha256)});
    return table;
}
