#ifndef COMMAND_PLANREADER_H
#define COMMAND_PLANREADER_H

#include "command/CsvReader.h"
#include "command/Plan.h"
#include "command/PlanCells.h"

#include <string_view>
#include <utility>
#include <vector>

/** One check of a plan: finds every fault with its row and column. */
class PlanReader {
public:
    /** All arguments must outlive the object. */
    PlanReader(const InputFile& file, const PlanNeeds& needs, Faults& faults);

    /** Call once. See `Plan::check`. */
    std::optional<Plan> read();

    static std::string_view withoutByteOrderMark(const InputFile& file);
    /** Whether the header has a column "serial" among others. */
    static bool hasSerials(std::string_view content, char delimiter);
    /** The delimiter with which the header has a column "serial"; otherwise the comma. */
    static char delimiterOf(std::string_view content);

    /** A column: stores a cell that is not empty in the row. */
    struct Column {
        const char* name;
        void (PlanReader::*take)(std::string_view cell);
        bool hasText; ///< leading and trailing blanks belong to the cell
    };
    static const std::vector<Column>& columns();

private:
    struct Place {
        int row = 0;
        std::size_t column = 0; ///< from 0
    };
    /** A value that must not occur in two rows. */
    struct Unique {
        const char* column;
        const char* message; ///< with places for the text and for the number of the other row
        bool (*valueOf)(const PlanRow& row, std::uint32_t& value);
        QString (*textOf)(const PlanRow& row);
    };
    using Values = std::vector<std::pair<std::uint32_t, const PlanRow*>>;

    bool readHeader(const std::vector<std::string_view>& cells);
    std::size_t indexOf(const char* column) const;
    void readRow(const CsvReader& reader);
    void readCell(std::size_t column, std::string_view cell);
    bool isUtf8(std::string_view cell);

    void takeSerial(std::string_view cell);
    template <std::optional<std::uint32_t> NetworkFields::*Field>
    void takeOnOff(std::string_view cell);
    template <std::optional<NetworkFields::Address> NetworkFields::*Field>
    void takeAddress(std::string_view cell);
    template <std::optional<std::string> NetworkFields::*Field, std::size_t Size>
    void takeText(std::string_view cell);
    void takePowerOff(std::string_view cell);
    template <const CalibrationAccessory& Accessory>
    void takeValues(std::string_view cell);

    void checkAddresses();
    void checkAllRows();
    /** @param serials  in ascending order */
    void checkAttached(const Values& serials);
    bool isNeeded(std::int32_t serialNumber) const;
    void keepNeeded();
    /** Leaves the values in ascending order. */
    void checkUnique(const Unique& what, Values& values);
    bool finish();

    QString cellName(std::size_t column) const;
    Fault faultAt(const Place& place, Text text) const;
    void add(const Place& place, Text text);
    void addHere(Text text) { add(m_place, std::move(text)); }
    /** The same with the cell's text in the message. */
    void addHere(const char* message, std::string_view cell);

    const InputFile& m_file;
    const PlanNeeds& m_needs;
    std::vector<std::int32_t> m_only; ///< of the needs, in ascending order
    Faults& m_faults;
    std::vector<std::pair<Place, Fault>> m_found;
    Plan m_plan;

    std::vector<const Column*> m_columns; ///< of the file; null for comments and unnamed columns
    std::vector<QString> m_names;
    std::vector<bool> m_isComment;
    bool m_hasOnlyAscii = false;
    bool m_hasDigitsAlone = false; ///< whether a text of digits was found
    Place m_place;                 ///< of the present cell
    PlanRow* m_row = nullptr;      ///< the present one, the last in the plan
    std::size_t m_serialColumn = 0;
};

#endif
