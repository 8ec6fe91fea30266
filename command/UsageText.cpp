#include "command/UsageText.h"

#include "command/Text.h"

#include <QRegularExpression>

namespace {

struct Wording {
    const char* key; ///< a label of the parser, or a pattern of a complete message
    const char* text;
};

const Wording labels[] = {
    {"Usage", QT_TRANSLATE_NOOP("vq-tl4ctl", "Usage")},
    {"Positionals", QT_TRANSLATE_NOOP("vq-tl4ctl", "Arguments")},
    {"Options", QT_TRANSLATE_NOOP("vq-tl4ctl", "Options")},
    {"Subcommands", QT_TRANSLATE_NOOP("vq-tl4ctl", "Subcommands")},
    {"OPTIONS", QT_TRANSLATE_NOOP("vq-tl4ctl", "OPTIONS")},
    {"SUBCOMMAND", QT_TRANSLATE_NOOP("vq-tl4ctl", "SUBCOMMAND")},
    {"REQUIRED", QT_TRANSLATE_NOOP("vq-tl4ctl", "(required)")},
    {"Needs", QT_TRANSLATE_NOOP("vq-tl4ctl", "Needs")},
    {"Excludes", QT_TRANSLATE_NOOP("vq-tl4ctl", "Excludes")},
};

const Wording messages[] = {
    {"A subcommand is required", QT_TRANSLATE_NOOP("vq-tl4ctl", "A subcommand is required")},
    {"(.+) is required", QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is required")},
    {"(.+) excludes (.+)", QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 excludes %2")},
    {"(.+) requires (.+)", QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 requires %2")},
    {"The following arguments? (?:was|were) not expected: (.+)",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "The following arguments were not expected: %1")},
    {"(.+): \\d+ required .+ missing", QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: a value is missing")},
    {"(.+): At Most 1 required but received \\d+",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: it may be given only once")},
    {"(.+) was given a disallowed flag override",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "--%1 takes no value")},
    {"(.+): (.+) not in \\{(.+)\\}", QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: %2 is none of %3")},
};

/** Replaces the names of groups by labels, which the parser itself does not do. */
class GroupFormatter : public CLI::Formatter {
public:
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option*> options) const override {
        return CLI::Formatter::make_group(get_label(group), isPositional, options);
    }

    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override {
        const std::string group = "Subcommands";
        std::string text = CLI::Formatter::make_subcommands(app, mode);
        const std::size_t place = text.find(group + ":\n");
        if (place != std::string::npos)
            text.replace(place, group.size(), get_label(group));
        return text;
    }
};

Text textOf(const QString& message) {
    for (const Wording& wording : messages) {
        const QRegularExpression pattern(
            QRegularExpression::anchoredPattern(QString::fromLatin1(wording.key)));
        const QRegularExpressionMatch match = pattern.match(message);
        if (match.hasMatch())
            return Text(wording.text, match.capturedTexts().mid(1));
    }
    return {};
}

} // namespace

std::shared_ptr<CLI::Formatter> UsageText::formatter() {
    auto formatter = std::make_shared<GroupFormatter>();
    for (const Wording& wording : labels)
        formatter->label(wording.key, translated(wording.text).toStdString());
    return formatter;
}

std::string UsageText::failure(const CLI::App* app, const CLI::Error& error) {
    QString message = QString::fromLocal8Bit(error.what());
    // The parser looks for a verb before it looks at what is left over: a mistyped one.
    const std::vector<std::string> leftOver = app->remaining(true);
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr && !leftOver.empty())
        message = QString::fromLocal8Bit(CLI::ExtrasError(leftOver).what());
    const Text text = textOf(message);
    if (!text.isEmpty())
        message = text.translated();
    const QString help =
        translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Run with %1 for more information."),
                   {QString::fromStdString(app->get_help_ptr()->get_name())});
    return (message + QLatin1Char('\n') + help + QLatin1Char('\n')).toLocal8Bit().toStdString();
}
