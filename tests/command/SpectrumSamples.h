#ifndef TESTS_COMMAND_SPECTRUMSAMPLES_H
#define TESTS_COMMAND_SPECTRUMSAMPLES_H

#include "instrument/CalibrationAccessory.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

/** What may be wrong with a value file. */
enum class Damage {
    MissingPoint,
    MisplacedPoint,
    Sign,
    DigitsExchanged,
    DigitDoubled,
    DigitLost,
    OneInPercent, ///< among ratios, or one ratio among percentages
    AllEqual,
    AllInPercent ///< where the instrument holds ratios, or the reverse
};

/** One value file as a spreadsheet writes it, and what the instrument holds meanwhile. */
struct SpectrumSample {
    std::vector<std::string> cells;
    std::vector<float> held;
    bool percent; ///< else ratios

    std::vector<float> values() const;
};

/** Smooth rows of values as accessories have them, with 0.1 % of noise, and what goes wrong with
    them. The same on every machine for the same seed. */
class SpectrumSamples {
public:
    SpectrumSamples(const CalibrationAccessory& accessory, std::uint64_t seed)
        : m_accessory(accessory), m_random(seed) {}

    SpectrumSample next();

    /** Spoils a fresh sample. One value changes by 2 % or more.
        @param index  becomes that of the value; 0 for the whole row */
    SpectrumSample next(Damage damage, std::size_t& index);

private:
    using Row = std::vector<double>;

    double between(double low, double high);
    std::size_t below(std::size_t count);
    double noise();
    Row plateShape();
    std::pair<Row, Row> adapterShapes();
    std::string spoil(const std::string& cell, Damage damage, bool percent);

    const CalibrationAccessory& m_accessory;
    std::mt19937_64 m_random;
};

#endif
