#include "parametermodule.h"

#include <cstring>
#include <new>

#include "orvomem.h"
#include "parameterlogging.h"
#include "parametermodeentry.h"
#include "parametermodetable.h"
#include "parametersetmanager.h"
#include "parametershorttype.h"

namespace
{
// A heap copy from OrvoCalloc, as every string the store hands between units; null when the
// allocation fails.
char* CopyText(char const* text)
{
    size_t length = strlen(text);
    char*  copy   = static_cast<char*>(OrvoCalloc(length + 1, 8, OrvoMemFlagsNone, OrvoMemTypeAny, __FILE__, __LINE__));
    if (nullptr != copy)
    {
        memcpy(copy, text, length + 1);
    }
    return copy;
}

void FreeText(char* text)
{
    OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);
}

} // namespace

ModuleData::ModuleData(unsigned int id, unsigned int duplicateId, IModeTable* modeTable, char const* type,
                       unsigned long version, unsigned int modeId, ParameterSetManager* setManager)
    : ID(id), DuplicateID(duplicateId), Version(version), ModeId(modeId), SetManager(setManager)
{
    if (nullptr == type)
    {
        PARAMETER_LOG_ERROR(setManager, "ModuleData called with nullptr type parameter\n");
    }
    Type = CopyText((nullptr == type) ? "" : type);

    if (nullptr == modeTable)
    {
        PARAMETER_LOG_ERROR(setManager, "ModuleData called with nullptr modeTable parameter\n");
    }
    else
    {
        Mode = modeTable->GetModeEntry(modeId);
        if (nullptr == Mode)
        {
            PARAMETER_LOG_ERROR(setManager, "Failed to find ModeID %d in mode table when creating ModuleData\n",
                                modeId);
            m_standInMode = new ModeEntry(false, false);
            Mode          = m_standInMode;
        }
    }

    char path[128] = "";
    if (nullptr != Mode)
    {
        Mode->GetModePath(path, sizeof(path));
    }
    ModePath    = CopyText(path);
    SymbolTable = (nullptr == setManager) ? nullptr : setManager->m_symbolTable;
}

ModuleData::~ModuleData()
{
    FreeText(Type);
    FreeText(ModePath);
    delete m_standInMode;
}

void ModuleData::GetType(char* out, char const* name)
{
    if ((nullptr == out) || (nullptr == name))
    {
        return;
    }
    ParameterShortType::Write(out, name);
}

ParameterModule::ParameterModule(char const* name, VersionUnion const& version, ModuleData* data)
    : Version(version), Data(data)
{
    char const* givenName                           = (nullptr == name) ? "" : name;
    char        type[ModuleData::MaxTypeLength + 1] = {};
    ModuleData::GetType(type, givenName);
    Name = CopyText(givenName);
    Type = CopyText(type);
    if ((nullptr != data) && (nullptr != data->Mode))
    {
        Mode = data->Mode->m_mode;
    }
}

ParameterModule::ParameterModule(char const* name, unsigned short major, unsigned short minor, unsigned int patch,
                                 ModuleData* data)
    : ParameterModule(name, VersionUnion(major, minor, patch), data)
{
}

ParameterModule::~ParameterModule()
{
    FreeText(Name);
    FreeText(Type);
}

void* ParameterModule::operator new(size_t size)
{
    void* memory = OrvoCalloc(size, 8, OrvoMemFlagsAllocZeroMemory | OrvoMemFlagsNew, OrvoMemTypeAny, nullptr, 0);
    if (nullptr == memory)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void ParameterModule::operator delete(void* pointer)
{
    OrvoFree(pointer, OrvoMemFlagsArray | OrvoMemFlagsDelete, nullptr, 0);
}

bool ParameterModule::GetValue(char const*, char*, unsigned int)
{
    return false;
}

bool ParameterModule::SetValue(char const*, char const*)
{
    return false;
}

bool ParameterModule::GetInfo(char const*, PList<ParameterParserInfo>&)
{
    return false;
}

unsigned int ParameterModule::GetReferenceCount() const
{
    if ((nullptr == Data) || (nullptr == Data->Mode))
    {
        return 0;
    }
    return Data->Mode->GetReferenceCount(this);
}

void ParameterModule::Release()
{
    if ((nullptr == Data) || (nullptr == Data->SetManager))
    {
        PARAMETER_LOG_ERROR(nullptr,
                            "Attempt to release module reference when Data or SetManager is nullptr. Module %s\n",
                            (nullptr == Name) ? "" : Name);
        return;
    }
    if (Data->SetManager->IsFileMode())
    {
        Data->SetManager->ReleaseModule(this);
    }
}
