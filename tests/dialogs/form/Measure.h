#ifndef TESTS_DIALOGS_FORM_MEASURE_H
#define TESTS_DIALOGS_FORM_MEASURE_H

#include "tests/support/Widgets.h"

#include <QGlyphRun>
#include <QScreen>
#include <QTextLayout>
#include <QtMath>

#include <algorithm>

/** Whether the texts of windows are shown whole. All sizes in pixels. */
namespace Measure {

/** Gives the application the font of the program, and the points the size of a pixel that the
    windows are designed for, while it exists. */
class ProgramFont {
public:
    ProgramFont() {
        QApplication::setAttribute(Qt::AA_Use96Dpi, false);
        QApplication::setFont(QFont("San Francisco", 13, QFont::Normal, false));
    }
    ~ProgramFont() {
        QApplication::setAttribute(Qt::AA_Use96Dpi, true);
        QApplication::setFont(m_before);
    }
    ProgramFont(const ProgramFont&) = delete;
    ProgramFont& operator=(const ProgramFont&) = delete;

    static bool isInUse() {
        return qRound(QGuiApplication::primaryScreen()->logicalDotsPerInchY()) == 72 &&
               QFontInfo(QApplication::font()).pixelSize() == 13;
    }

private:
    const QFont m_before = QApplication::font();
};

/** A text on a widget, in the widget's coordinates. */
struct ShownText {
    const QWidget* widget;
    QString text;
    QRect rect;  ///< what the text takes
    QRect space; ///< what the widget's style leaves for it
};

/** What a text of one line takes when it is aligned in a space: in width as it is laid out, in
    height what is drawn of it. Set in the widget's font and in those that stand in for it. */
inline QRect drawnRect(const QWidget& widget, const QString& text, Qt::Alignment alignment,
                       const QRect& space) {
    QTextLayout layout(text, widget.font());
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    const QRect ink = widget.fontMetrics().tightBoundingRect(text);
    const QSize size(std::max(qCeil(line.naturalTextWidth()), ink.width()), qCeil(line.height()));
    const QRect aligned = QStyle::alignedRect(widget.layoutDirection(), alignment, size, space);
    return {aligned.left(), aligned.top() + qRound(line.ascent()) + ink.top(), aligned.width(),
            ink.height()};
}

inline ShownText textOf(const QLabel& label) {
    const int margin = label.margin();
    const QRect space = label.contentsRect().adjusted(margin, margin, -margin, -margin);
    if (!label.wordWrap())
        return {&label, label.text(), drawnRect(label, label.text(), label.alignment(), space),
                space};
    const QRect endless(space.topLeft(), QSize(space.width(), QWIDGETSIZE_MAX));
    return {&label, label.text(),
            label.fontMetrics().boundingRect(endless, Qt::TextWordWrap, label.text()), space};
}

inline ShownText textOf(const QAbstractButton& button, QStyle::SubElement contents,
                        Qt::Alignment alignment) {
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    const auto* pushButton = qobject_cast<const QPushButton*>(&button);
    if (pushButton && pushButton->autoDefault())
        option.features |= QStyleOptionButton::AutoDefaultButton;
    const QRect space = button.style()->subElementRect(contents, &option, &button);
    return {&button, button.text(), drawnRect(button, button.text(), alignment, space), space};
}

inline ShownText textOf(const QGroupBox& box) {
    QStyleOptionGroupBox option;
    option.initFrom(&box);
    option.text = box.title();
    option.lineWidth = 1;
    option.textAlignment = box.alignment();
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    const QRect label =
        box.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, &box);
    const QRect rect = drawnRect(box, box.title(), Qt::AlignLeft | Qt::AlignVCenter, label);
    // The style makes the title as wide as its text; the box is what bounds it.
    return {&box, box.title(), rect, box.rect()};
}

inline ShownText textOf(const QTabBar& bar, int index) {
    const int padding = bar.style()->pixelMetric(QStyle::PM_TabBarTabHSpace, nullptr, &bar) / 2;
    const QRect tab = bar.tabRect(index);
    return {&bar, bar.tabText(index), drawnRect(bar, bar.tabText(index), Qt::AlignCenter, tab),
            tab.adjusted(padding, 0, -padding, 0) & bar.rect()};
}

inline QVector<ShownText> textsOf(const QWidget& window) {
    QVector<ShownText> texts;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible())
            continue;
        if (const auto* label = qobject_cast<const QLabel*>(widget))
            texts.append(textOf(*label));
        else if (const auto* push = qobject_cast<const QPushButton*>(widget))
            texts.append(textOf(*push, QStyle::SE_PushButtonContents, Qt::AlignCenter));
        else if (const auto* radio = qobject_cast<const QRadioButton*>(widget))
            texts.append(
                textOf(*radio, QStyle::SE_RadioButtonContents, Qt::AlignLeft | Qt::AlignVCenter));
        else if (const auto* box = qobject_cast<const QGroupBox*>(widget))
            texts.append(textOf(*box));
        else if (const auto* bar = qobject_cast<const QTabBar*>(widget))
            for (int i = 0; i < bar->count(); ++i)
                texts.append(textOf(*bar, i));
    }
    texts.erase(std::remove_if(texts.begin(), texts.end(),
                               [](const ShownText& text) { return text.text.isEmpty(); }),
                texts.end());
    return texts;
}

/** The part of a widget that its ancestors show, in its coordinates. */
inline QRect visiblePart(const QWidget& widget) {
    QRect part = widget.rect();
    QPoint offset;
    for (const QWidget* child = &widget; !child->isWindow(); child = child->parentWidget()) {
        offset += child->pos();
        part &= child->parentWidget()->rect().translated(-offset);
    }
    return part;
}

/** The sibling, or child of a group, that lies over a text; null when there is none. */
inline const QWidget* coverOf(const ShownText& shown) {
    const bool isTitle = qobject_cast<const QGroupBox*>(shown.widget);
    const QWidget* parent = isTitle ? shown.widget : shown.widget->parentWidget();
    const QRect rect = isTitle ? shown.rect : shown.rect.translated(shown.widget->pos());
    for (const QObject* object : parent->children()) {
        const auto* other = qobject_cast<const QWidget*>(object);
        if (other && other != shown.widget && other->isVisible() &&
            !qobject_cast<const QTabBar*>(shown.widget) && other->geometry().intersects(rect))
            return other;
    }
    return nullptr;
}

inline QString describe(const QRect& rect) {
    const QPoint at = rect.topLeft();
    return QString::asprintf("%d,%d %dx%d", at.x(), at.y(), rect.width(), rect.height());
}

/** The characters of a text that no installed font can draw. */
inline QString missingGlyphs(const QString& text) {
    QString missing;
    for (const QChar character : text) {
        QTextLayout layout(QString(character), QApplication::font());
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        for (const QGlyphRun& run : layout.glyphRuns()) {
            if (run.glyphIndexes().contains(0))
                missing.append(character);
        }
    }
    return missing;
}

/** What the visible widgets of a window show cut off or covered, a line each: labels, buttons,
    radio buttons, group titles, tabs. The window must be on screen. */
inline QStringList misfits(const QWidget& window) {
    QStringList found;
    for (const ShownText& shown : textsOf(window)) {
        const QString name = QString("%1 \"%2\"").arg(shown.widget->objectName(), shown.text);
        const QRect space = shown.space & visiblePart(*shown.widget);
        if (!space.contains(shown.rect))
            found.append(
                QString("%1 takes %2 of %3").arg(name, describe(shown.rect), describe(space)));
        if (const QWidget* cover = coverOf(shown))
            found.append(QString("%1 lies under %2").arg(name, cover->objectName()));
    }
    return found;
}

/** The texts that misfits looked at. */
inline QStringList measuredTexts(const QWidget& window) {
    QStringList texts;
    for (const ShownText& shown : textsOf(window))
        texts.append(shown.text);
    return texts;
}

} // namespace Measure

#endif
