#include "benchmarks/BareForm.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include <array>

namespace {

constexpr int groupBoxes = 13;
constexpr int labels = 38;
constexpr int lineEdits = 18;
constexpr int pushButtons = 13;
constexpr int radioButtons = 8;

/** Puts one widget after the other on the pages in turn, each page row by row. */
class Pages {
public:
    explicit Pages(QTabWidget& tabs) {
        for (QWidget*& page : m_pages) {
            page = new QWidget;
            tabs.addTab(page, QStringLiteral("Page"));
        }
    }

    template <class Widget, class... Argument>
    void add(int count, Argument... argument) {
        for (int i = 0; i < count; ++i) {
            const auto page = static_cast<std::size_t>(m_added) % m_pages.size();
            const int place = m_added++ / static_cast<int>(m_pages.size());
            auto* widget = new Widget(argument..., m_pages[page]);
            widget->setGeometry(20 + place % columns * 180, 20 + place / columns * 90, 160, 60);
        }
    }

private:
    static constexpr int columns = 6;

    std::array<QWidget*, 4> m_pages = {};
    int m_added = 0;
};

} // namespace

void addBareForm(QWidget& window) {
    auto* tabs = new QTabWidget(&window);
    tabs->setGeometry(10, 150, 1141, 531);
    Pages pages(*tabs);
    pages.add<QGroupBox>(groupBoxes, QStringLiteral("Group"));
    pages.add<QLabel>(labels, QStringLiteral("Label"));
    pages.add<QLineEdit>(lineEdits, QStringLiteral("255"));
    pages.add<QPushButton>(pushButtons, QStringLiteral("Button"));
    pages.add<QRadioButton>(radioButtons, QStringLiteral("Choice"));
}
