#include "command/HtmlReport.h"

#include "command/FieldTexts.h"
#include "command/HtmlInstrument.h"
#include "command/HtmlReportStyle.h"
#include "command/InstrumentState.h"

#include <map>

namespace {

/** Nothing if the journal has none, or a damaged one, which is reported. */
std::optional<Snapshot> snapshotOf(const QString& journal, const QByteArray& content,
                                   Faults& faults) {
    if (content.isEmpty())
        return std::nullopt;
    return Snapshot::check({journal, content}, faults);
}

void writeHead(HtmlWriter& html, const QString& title) {
    const auto head = html.open("head");
    html.empty("meta", {{"charset", QStringLiteral("utf-8")}});
    html.empty("meta",
               {{"http-equiv", QStringLiteral("Content-Security-Policy")},
                {"content", QStringLiteral("default-src 'none'; style-src 'unsafe-inline'")}});
    html.empty("meta", {{"name", QStringLiteral("viewport")},
                        {"content", QStringLiteral("width=device-width, initial-scale=1")}});
    html.element("title", title);
    html.style(htmlReportStyle);
}

QString outcomeCounts(const std::vector<HtmlInstrument>& instruments) {
    std::map<QString, int> counts;
    for (const HtmlInstrument& instrument : instruments)
        ++counts[instrument.outcome()];
    QStringList texts;
    for (const auto& [word, count] : counts)
        texts.append(QStringLiteral("%1: %2").arg(word).arg(count));
    return HtmlTexts::orNone(texts.join(QStringLiteral(", ")));
}

HtmlWriter::Table runTable(const JournalRun& run, const QString& journal,
                           const std::vector<HtmlInstrument>& instruments) {
    HtmlWriter::Table table(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Run")), {}, "facts");
    const auto add = [&](const char* name, const QString& value) {
        table.add({translated(name), HtmlTexts::orNone(value)});
    };
    QString ended;
    QString exitStatus;
    if (run.ended)
        ended = FieldTexts::time(*run.ended);
    if (run.exitStatus)
        exitStatus = QString::number(*run.exitStatus);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Outcomes"), outcomeCounts(instruments));
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Command"),
        QStringLiteral("vq-tl4ctl ") + run.arguments.join(QLatin1Char(' ')));
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Began"), FieldTexts::time(run.started));
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Ended"), ended);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Exit status"), exitStatus);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "User"), run.user);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Host"), run.host);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Version of vq-tl4ctl"), run.toolVersion);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Library"), run.libraryPath);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "SHA-256 of the library"),
        QString::fromLatin1(run.librarySha256));
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Journal"), journal);
    add(QT_TRANSLATE_NOOP("vq-tl4ctl", "Report made"),
        FieldTexts::time(QDateTime::currentDateTimeUtc()));
    return table;
}

HtmlWriter::Table instrumentTable(const std::vector<HtmlInstrument>& instruments) {
    HtmlWriter::Table table(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instruments")),
                            {translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Serial number")),
                             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Outcome")),
                             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Changed fields")),
                             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Last verification"))},
                            "");
    for (const HtmlInstrument& instrument : instruments) {
        const auto& verifications = instrument.part.verifications;
        QString last;
        if (!verifications.empty())
            last = QStringLiteral("%1, %2").arg(verifications.back().word,
                                                FieldTexts::time(verifications.back().at));
        table.add({serialText(instrument.part.serialNumber), instrument.outcome(),
                   QString::number(instrument.part.changes.size()), HtmlTexts::orNone(last)},
                  QLatin1Char('#') + instrument.id);
    }
    return table;
}

void writeBody(HtmlWriter& html, const JournalRun& run, const QString& journal,
               const QString& title, const std::vector<HtmlInstrument>& instruments) {
    const auto body = html.open("body");
    const auto main = html.open("main");
    html.element("h1", title);
    html.element("h2", translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Recap")));
    if (!instruments.empty())
        html.table(instrumentTable(instruments));
    html.table(runTable(run, journal, instruments));
    if (!run.inputs.empty())
        html.table(HtmlTexts::inputs(run.inputs, true));
    for (const HtmlInstrument& instrument : instruments)
        instrument.write(html);
}

} // namespace

std::optional<QByteArray> HtmlReport::make(const JournalRun& run, const QString& journal,
                                           Faults& faults) {
    const std::size_t before = faults.size();
    std::vector<HtmlInstrument> instruments;
    for (const JournalInstrument& part : run.instruments)
        instruments.push_back({run, part, snapshotOf(journal, part.before, faults),
                               snapshotOf(journal, part.wanted, faults),
                               QStringLiteral("instrument-%1").arg(instruments.size() + 1)});
    if (faults.size() != before)
        return std::nullopt;
    const QString title = translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "VQ-TL4: report of run %1"),
                                     {QString::number(run.id)});
    QByteArray page;
    HtmlWriter html(&page);
    html.documentType();
    {
        //: The code of the language that this is translated to.
        const Text language(QT_TRANSLATE_NOOP("vq-tl4ctl", "en"));
        const auto root = html.open("html", {{"lang", language.translated()}});
        writeHead(html, title);
        writeBody(html, run, journal, title, instruments);
    }
    return page.trimmed() + '\n';
}
