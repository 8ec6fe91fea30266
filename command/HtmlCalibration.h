#ifndef COMMAND_HTMLCALIBRATION_H
#define COMMAND_HTMLCALIBRATION_H

#include "command/CalibrationPlot.h"
#include "command/HtmlWriter.h"
#include "command/Plausibility.h"

#include <QString>

#include <vector>

/** The part of a report about one accessory's values: plot, implausible values, table. */
class HtmlCalibration {
public:
    /** A part for each accessory whose values differ in any bit.
        @param afterName  the name of the second state, "After" or "Wanted"
        @param id         a prefix that no other element of the page uses */
    static std::vector<HtmlCalibration> changed(const KVA_JIG_CALREFDATA& before,
                                                const KVA_JIG_CALREFDATA& after,
                                                const QString& afterName, const QString& id);

    /** Whether a field of the difference is one of the values. */
    bool shows(const QString& field) const { return field.startsWith(m_field); }

    /** @param serial  of the instrument */
    void write(HtmlWriter& html, const QString& serial) const;

private:
    HtmlCalibration() = default;
    CalibrationPlot plot() const;
    void writeImplausible(HtmlWriter& html) const;
    void writeTables(HtmlWriter& html) const;
    /** @param end  one past the last value */
    HtmlWriter::Table table(std::size_t first, std::size_t end) const;

    const CalibrationAccessory* m_accessory = nullptr;
    const char* m_name = nullptr; ///< not translated
    QString m_field;              ///< of a value, up to its index
    QString m_beforeName;
    QString m_afterName;
    QString m_id;
    std::vector<float> m_before;
    std::vector<float> m_after;
    std::vector<Implausible> m_implausible;
};

#endif
