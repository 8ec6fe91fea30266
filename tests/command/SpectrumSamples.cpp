#include "tests/command/SpectrumSamples.h"

#include "files/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <utility>

namespace {

constexpr double noiseLevel = 0.001;
constexpr double leastChange = 0.02;
constexpr double misplacements[] = {0.01, 0.1, 10, 100};

double bell(double x) {
    return std::exp(-0.5 * x * x);
}

double numberOf(const std::string& cell) {
    return static_cast<double>(NumberText::toFloat(cell.c_str()));
}

std::string printed(double value, int decimals, bool shortened) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    std::string result = text;
    if (shortened) {
        result.erase(result.find_last_not_of('0') + 1);
        if (result.back() == '.')
            result.pop_back();
    }
    return result;
}

std::vector<std::size_t> digitsOf(const std::string& cell) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < cell.size(); ++i) {
        if (cell[i] >= '0' && cell[i] <= '9')
            places.push_back(i);
    }
    return places;
}

} // namespace

std::vector<float> SpectrumSample::values() const {
    std::vector<float> result;
    for (const std::string& cell : cells)
        result.push_back(NumberText::toFloat(cell.c_str()));
    return result;
}

// Not by the standard's distributions, which differ from library to library.
double SpectrumSamples::between(double low, double high) {
    return low + (high - low) * static_cast<double>(m_random() >> 11U) * 0x1p-53;
}

std::size_t SpectrumSamples::below(std::size_t count) {
    return m_random() % count;
}

double SpectrumSamples::noise() {
    constexpr double turn = 6.283185307179586;
    const double radius = std::sqrt(-2 * std::log(1 - between(0, 1)));
    return 1 + noiseLevel * radius * std::cos(between(0, turn));
}

/** Reflectance: a level with a slight slope and curve, a broad band, and at times the fall of many
    materials towards short wavelengths. */
SpectrumSamples::Row SpectrumSamples::plateShape() {
    Row shape(m_accessory.valueCount);
    const double last = static_cast<double>(shape.size() - 1);
    const double level = between(0.74, 0.96);
    const double slope = between(-0.03, 0.03);
    const double curve = between(-0.02, 0.02);
    const double fall = below(2) == 0 ? 0 : between(0, 0.12);
    const double fallLength = between(2, 8);
    const double band = between(-0.03, 0.03);
    const double bandAt = between(0, last);
    const double bandWidth = between(4, 15);
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const double x = static_cast<double>(i);
        const double t = 2 * x / last - 1;
        shape[i] = level * (1 + slope * t + curve * t * t) *
                   (1 - fall * std::exp(-x / fallLength)) *
                   (1 + band * bell((x - bandAt) / bandWidth));
    }
    return shape;
}

/** A sensor's response, the sum of some bells, behind a material with an edge; and that of another
    adapter of the same make. */
std::pair<SpectrumSamples::Row, SpectrumSamples::Row> SpectrumSamples::adapterShapes() {
    const std::size_t count = m_accessory.valueCount;
    const double last = static_cast<double>(count - 1);
    Row shape(count, between(0.02, 0.3));
    Row other(count, shape[0] * between(0.8, 1.25));
    const std::size_t bells = 1 + below(4);
    for (std::size_t k = 0; k < bells; ++k) {
        const double height = between(0.3, 1.5);
        const double at = between(-10, last + 10);
        const double width = between(6, 30);
        const double otherHeight = height * between(0.8, 1.25);
        const double otherAt = at + between(-1.5, 1.5);
        for (std::size_t i = 0; i < count; ++i) {
            shape[i] += height * bell((static_cast<double>(i) - at) / width);
            other[i] += otherHeight * bell((static_cast<double>(i) - otherAt) / width);
        }
    }
    const double edge = below(2) == 0 ? -100 : between(-15, 15);
    const double edgeLength = between(3, 12);
    for (std::size_t i = 0; i < count; ++i) {
        const double passed =
            0.1 + 0.9 / (1 + std::exp((edge - static_cast<double>(i)) / edgeLength));
        shape[i] *= passed;
        other[i] *= passed;
    }
    return {shape, other};
}

SpectrumSample SpectrumSamples::next() {
    const bool plate = &m_accessory == &CalibrationAccessory::whitePlate;
    auto [shape, other] = plate ? std::pair(plateShape(), plateShape()) : adapterShapes();
    // Half of the time the same accessory was registered before, and measured again.
    if (below(2) == 0)
        other = shape;
    SpectrumSample sample;
    sample.percent = plate && below(2) == 0;
    const double unit = sample.percent ? 100 : 1;
    const int decimals = static_cast<int>(4 + below(3));
    const bool shortened = below(2) == 0;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        sample.cells.push_back(printed(unit * shape[i] * noise(), decimals, shortened));
        sample.held.push_back(static_cast<float>(unit * other[i] * noise()));
    }
    return sample;
}

SpectrumSample SpectrumSamples::next(Damage damage, std::size_t& index) {
    SpectrumSample sample = next();
    index = 0;
    if (damage == Damage::AllEqual) {
        sample.cells.assign(sample.cells.size(), sample.cells[below(sample.cells.size())]);
        return sample;
    }
    if (damage == Damage::AllInPercent) {
        for (float& value : sample.held)
            value *= sample.percent ? 0.01F : 100.0F;
        return sample;
    }
    index = below(sample.cells.size());
    std::string& cell = sample.cells[index];
    const double before = numberOf(cell);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string spoiled = spoil(cell, damage, sample.percent);
        if (std::fabs(numberOf(spoiled) - before) >= leastChange * before) {
            cell = spoiled;
            return sample;
        }
    }
    return next(damage, index); // a value that this damage cannot spoil, such as 1 by its point
}

std::string SpectrumSamples::spoil(const std::string& cell, Damage damage, bool percent) {
    std::string result = cell;
    const std::vector<std::size_t> digits = digitsOf(cell);
    const std::size_t place = digits[below(digits.size())];
    const std::size_t point = std::min(cell.find('.'), cell.size());
    switch (damage) {
    case Damage::MissingPoint:
        return point < cell.size() ? result.erase(point, 1) : result;
    case Damage::MisplacedPoint:
        return printed(numberOf(cell) * misplacements[below(std::size(misplacements))], 8, true);
    case Damage::Sign:
        return '-' + result;
    case Damage::DigitsExchanged:
        std::swap(result[place], result[digits[below(digits.size())]]);
        return result;
    case Damage::DigitDoubled:
        return result.insert(place, 1, cell[place]);
    case Damage::DigitLost:
        return digits.size() > 1 ? result.erase(place, 1) : result;
    case Damage::OneInPercent:
        return printed(numberOf(cell) * (percent ? 0.01 : 100), 8, true);
    case Damage::AllEqual:
    case Damage::AllInPercent:
        break;
    }
    return result;
}
