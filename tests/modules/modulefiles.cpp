#include "modulefiles.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace moduletest
{
tuningfile::TuningFileModel ModelWithModes(tuningfile::Version version)
{
    tuningfile::TuningFileModel model;
    model.version = version;
    tuningfile::Mode root;
    tuningfile::Mode video;
    video.mode                = 2;
    video.subMode             = 1;
    tuningfile::Mode snapshot = video;
    snapshot.subMode          = 2;
    model.modes               = {root, video, snapshot};
    return model;
}

tuningfile::Module MakeModule(const std::string& name, tuningfile::Version version, uint32_t modeId,
                              const tuningfile::DataBuilder& data)
{
    tuningfile::Module module;
    module.name    = name;
    module.version = version;
    module.modeId  = modeId;
    module.data    = data;
    return module;
}

std::vector<uint8_t> Image(const tuningfile::TuningFileModel& model)
{
    std::vector<uint8_t> image;
    std::string          error;
    EXPECT_TRUE(tuningfile::Write(model, &image, &error)) << error;
    return image;
}

UsecaseBranch::UsecaseBranch(uint16_t subMode)
{
    modes[1].mode    = 2;
    modes[1].subMode = subMode;
}

ParameterModule* Instance(ParameterSetManager& manager, char const* name, size_t index)
{
    char type[ModuleData::MaxTypeLength + 1] = {};
    ModuleData::GetType(type, name);
    auto found = manager.DefaultModuleMap.find(type);
    if (manager.DefaultModuleMap.end() == found)
    {
        return nullptr;
    }
    ModuleLink* link = found->second->m_head;
    for (size_t skipped = 0; (nullptr != link) && (skipped < index); ++skipped)
    {
        link = link->next;
    }
    return (nullptr == link) ? nullptr : link->module;
}

TempFile::TempFile(const std::string& stem)
{
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    m_path = testing::TempDir() + stem + "_" + test->test_suite_name() + "_" + test->name() + ".bin";
}

TempFile::~TempFile()
{
    std::remove(m_path.c_str());
}

void TempFile::Store(const std::vector<uint8_t>& image) const
{
    std::ofstream stream(m_path, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    ASSERT_TRUE(static_cast<bool>(stream)) << m_path;
}
} // namespace moduletest
