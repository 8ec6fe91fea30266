/**
 * Notes when a window of a program was painted, the program itself unchanged: a plugin of the kind
 * that Qt loads into an application on request, by QT_QPA_GENERIC_PLUGINS.
 *
 * PAINT_PROBE_OUT      the file that gets the time, CLOCK_MONOTONIC in nanoseconds
 * PAINT_PROBE_WINDOWS  which window it is about, counted from 1; in each one before it the button
 *                      named "pushButton" is clicked as soon as the window was painted
 * PAINT_PROBE_QUIT     when set, the program ends there
 */
#include <QAbstractButton>
#include <QApplication>
#include <QGenericPlugin>
#include <QVector>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace {

long long monotonicTime() {
    timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

/** Owned by Qt, which deletes it at the end of the application object. */
class PaintProbe : public QObject {
public:
    PaintProbe() : m_windowsToCome(qEnvironmentVariableIntValue("PAINT_PROBE_WINDOWS")) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            notePaint(watched);
        const bool mayPaint =
            event->type() == QEvent::Expose || event->type() == QEvent::UpdateRequest;
        if (!mayPaint || m_isInside)
            return false;
        // Handled from here, because its end is what matters: then all that the window holds is
        // painted and handed to the platform.
        m_isInside = true;
        watched->event(event);
        m_isInside = false;
        if (m_paintedWindow)
            windowPainted();
        return true;
    }

private:
    void notePaint(QObject* watched) {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (widget && widget->isWindow() && !m_seen.contains(widget)) {
            m_seen.append(widget);
            m_paintedWindow = widget;
        }
    }

    void windowPainted() {
        QWidget* window = m_paintedWindow;
        m_paintedWindow = nullptr;
        if (--m_windowsToCome == 0) {
            finish();
            return;
        }
        auto* button = window->findChild<QAbstractButton*>(QStringLiteral("pushButton"));
        if (!button)
            std::_Exit(3);
        QMetaObject::invokeMethod(button, "click", Qt::QueuedConnection);
    }

    void finish() {
        const long long now = monotonicTime();
        qApp->removeEventFilter(this);
        std::FILE* file = std::fopen(qgetenv("PAINT_PROBE_OUT").constData(), "w");
        if (!file)
            std::_Exit(3);
        std::fprintf(file, "%lld\n", now);
        std::fclose(file);
        if (qEnvironmentVariableIsSet("PAINT_PROBE_QUIT"))
            std::_Exit(0);
    }

    int m_windowsToCome;
    bool m_isInside = false;
    QWidget* m_paintedWindow = nullptr; ///< painted by the event that is being handled
    QVector<const QWidget*> m_seen;
};

} // namespace

class PaintProbePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "paint_probe.json")

public:
    QObject* create(const QString& key, const QString& options) override {
        Q_UNUSED(key)
        Q_UNUSED(options)
        return std::make_unique<PaintProbe>().release();
    }
};

#include "PaintProbe.moc"
