#include "runtimefixture.h"

namespace storetest
{
std::vector<TuningMode> Branch(std::initializer_list<std::pair<uint32_t, uint16_t>> elements)
{
    std::vector<TuningMode> branch;
    for (const auto& element : elements)
    {
        TuningMode mode;
        mode.mode    = element.first;
        mode.subMode = element.second;
        branch.push_back(mode);
    }
    return branch;
}

bool LoadImage(ParameterSetManager& manager, const std::vector<uint8_t>& image, bool fileMode, const TempFile& file)
{
    if (!fileMode)
    {
        std::vector<uint8_t> copy = image;
        return manager.LoadBinaryParameters(copy.data(), copy.size());
    }
    file.Store(image);
    manager.m_fileModeAllowed = true;
    return manager.LoadBinaryParameters(file.Path().c_str());
}

float BpsGain(TestModuleSetManager& manager, const std::vector<TuningMode>& branch)
{
    DemoRecord* record = manager.GetModule_demo10_bps(branch.data(), static_cast<unsigned int>(branch.size()), nullptr);
    if (nullptr == record)
    {
        return -1.0f;
    }
    float gain = record->gain;
    record->Release();
    return gain;
}
} // namespace storetest
