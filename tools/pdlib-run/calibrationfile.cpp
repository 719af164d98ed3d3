#include "calibrationfile.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

#include "inputfile.h"
#include "runerrors.h"

namespace pdlibrun
{
namespace
{
using Json = nlohmann::json;

constexpr uint32_t MinKnots   = 2;
constexpr double   MaxAddress = 65535.0;

class CalibrationReader
{
public:
    CalibrationReader(const std::string& path, const Json& document) : m_path(path), m_document(document) {}

    uint16_t ReadCount(const char* pName, uint32_t max) const
    {
        const Json& value = Field(pName);
        const bool  valid = value.is_number_integer() && (value.get<int64_t>() >= MinKnots) &&
                           (value.get<int64_t>() <= static_cast<int64_t>(max));
        if (!valid)
        {
            Fail(pName, "expected a whole number from " + std::to_string(MinKnots) + " to " + std::to_string(max));
        }
        return static_cast<uint16_t>(value.get<int64_t>());
    }

    /// Knot addresses: whole pixels, strictly increasing, as the library's grid look-up needs.
    void ReadAddresses(const char* pName, uint16_t count, UINT16* pAddresses) const
    {
        const Json& array = ArrayOf(pName, count);
        for (uint16_t i = 0; i < count; i++)
        {
            const Json& value = array[i];
            const bool  whole = value.is_number_integer() && (value.get<int64_t>() >= 0) &&
                               (value.get<int64_t>() <= static_cast<int64_t>(MaxAddress));
            if (!whole)
            {
                Fail(pName, "element " + std::to_string(i) + " is not a pixel address from 0 to 65535");
            }
            pAddresses[i] = static_cast<UINT16>(value.get<int64_t>());
            if ((i > 0) && (pAddresses[i] <= pAddresses[i - 1]))
            {
                Fail(pName, "addresses must increase strictly, element " + std::to_string(i) + " does not");
            }
        }
    }

    void ReadGrid(const char* pName, uint32_t count, FLOAT* pValues) const
    {
        const Json& array = ArrayOf(pName, count);
        for (uint32_t i = 0; i < count; i++)
        {
            const Json& value         = array[i];
            const bool  representable = value.is_number() && std::isfinite(value.get<double>()) &&
                                       (std::fabs(value.get<double>()) <= std::numeric_limits<FLOAT>::max());
            if (!representable)
            {
                Fail(pName, "element " + std::to_string(i) + " is not a number in the range of a float");
            }
            pValues[i] = static_cast<FLOAT>(value.get<double>());
        }
    }

private:
    const Json& Field(const char* pName) const
    {
        if (!m_document.contains(pName))
        {
            Fail(pName, "missing");
        }
        return m_document[pName];
    }

    const Json& ArrayOf(const char* pName, uint32_t count) const
    {
        const Json& array = Field(pName);
        if (!array.is_array() || (array.size() != count))
        {
            const std::string found = array.is_array() ? std::to_string(array.size()) + " elements" : "no array";
            Fail(pName, "expected an array of " + std::to_string(count) + " numbers, found " + found);
        }
        return array;
    }

    [[noreturn]] void Fail(const char* pName, const std::string& what) const
    {
        throw InputError(m_path + ": " + pName + ": " + what);
    }

    const std::string& m_path;
    const Json&        m_document;
};
} // namespace

PDAFDCCCalibrationData LoadCalibration(const std::string& path)
{
    const std::string text = ReadInputFile(path, "calibration");
    Json              document;
    try
    {
        document = Json::parse(text);
    }
    catch (const Json::parse_error& error)
    {
        throw InputError(path + ": malformed JSON near byte " + std::to_string(error.byte));
    }
    if (!document.is_object())
    {
        throw InputError(path + ": expected a JSON object with the calibration fields");
    }

    CalibrationReader      reader(path, document);
    PDAFDCCCalibrationData calibration = {};
    calibration.isAvailable            = 1;
    calibration.knotXCount             = reader.ReadCount("knotXCount", MaxPDAFKnotX);
    calibration.knotYCount             = reader.ReadCount("knotYCount", MaxPDAFKnotY);
    reader.ReadAddresses("slopeOffsetAddressX", calibration.knotXCount, calibration.slopeOffsetAddressX);
    reader.ReadAddresses("slopeOffsetAddressY", calibration.knotYCount, calibration.slopeOffsetAddressY);
    const uint32_t nodes = static_cast<uint32_t>(calibration.knotXCount) * calibration.knotYCount;
    reader.ReadGrid("slopeData", nodes, calibration.slopeData);
    reader.ReadGrid("offsetData", nodes, calibration.offsetData);
    return calibration;
}
} // namespace pdlibrun
