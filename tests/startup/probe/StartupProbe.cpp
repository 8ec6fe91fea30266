/**
 * Lets a test watch and use the windows of the program from inside, the program itself unchanged: a
 * plugin of the kind that Qt loads into an application on request, by QT_QPA_GENERIC_PLUGINS.
 *
 * STARTUP_PROBE_SCRIPT holds the steps to take, a JSON array, see Driver.h; STARTUP_PROBE_RECORD
 * names the file that everything is noted in, see Record.h. STARTUP_PROBE_ENCODING, with any value,
 * makes the encoding of the locale Qt's local one, where Qt can: of itself Qt 5 takes UTF-8 under
 * every locale where ICU was built for UTF-8, as distributions do.
 */
#include "tests/startup/probe/Driver.h"
#include "tests/support/QtInUse.h"

#include <QGenericPlugin>
#include <QtWidgets>

#include <memory>

namespace {

/** Owned by Qt, which deletes it at the end of the application object. */
class Probe : public QObject {
public:
    Probe()
        : m_record(qEnvironmentVariable("STARTUP_PROBE_RECORD"),
                   qEnvironmentVariable("KVASIM_TRACE")),
          m_driver(m_record, QJsonDocument::fromJson(qgetenv("STARTUP_PROBE_SCRIPT")).array()) {
        if (qEnvironmentVariableIsSet("STARTUP_PROBE_ENCODING"))
            QtInUse::takeEncodingOfLocale();
    }
    ~Probe() override { m_record.add("application ends", {}); }

private:
    Record m_record;
    Driver m_driver;
};

} // namespace

class StartupProbePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "startup_probe.json")

public:
    QObject* create(const QString& /*key*/, const QString& /*options*/) override {
        return std::make_unique<Probe>().release();
    }
};

#include "StartupProbe.moc"
