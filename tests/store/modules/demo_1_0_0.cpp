// demo_1_0_0: how the records read themselves and give back what they own, and the module class.
#include "demo_1_0_0.h"

#include <cstring>
#include <new>

#include "orvomem.h"
#include "parametersetmanager.h"

namespace demo_1_0_0
{
namespace
{
char const* const RegisteredNames[] = {"demo10_bps", "demo10_ife"};

// The key under which the repeated member shares its elements with records of the same group.
constexpr char const*   RegionsSite = __FILE__;
constexpr unsigned int  RegionsLine = __LINE__;

IParameterLoggingAPI* LoggerOf(ParameterFileSymbolTableEntry const* entry)
{
    return ParameterFileSymbolTableEntry::LoggerOf(entry);
}

// Frees a block that the record held, unless another record still shares it.
template <typename T>
void ReleaseBlock(ParameterFileSymbolTable* table, T*& pointer)
{
    if ((nullptr != table) && table->ReleaseDupObject(pointer) && (nullptr != pointer))
    {
        OrvoFree(pointer, 20, nullptr, 0);
    }
    pointer = nullptr;
}
} // namespace

bool mod_demo10_region_dataType::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)
{
    lux_start   = 0.0f;
    lux_end     = 0.0f;
    strength    = 0;
    bool result = true;
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &lux_start, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &lux_end, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &strength, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    return result;
}

bool tonemetry_demo10Type::module_versionStruct::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)
{
    major_revision = 0;
    minor_revision = 0;
    incr_revision  = 0;
    bool result    = true;
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &major_revision, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &minor_revision, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &incr_revision, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    return result;
}

bool tonemetry_demo10Type::gamma_tabStruct::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)
{
    memset(gamma, 0, sizeof(gamma));
    if ((nullptr == entry) || (nullptr == entry->m_data))
    {
        return false;
    }
    return ParameterUtils::ReadBuffer(reinterpret_cast<unsigned char*>(gamma), entry->m_data, entry->m_length,
                                      &entry->m_position, sizeof(gamma), alignment, LoggerOf(entry));
}

bool tonemetry_demo10Type::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)
{
    // Everything but the ID, which is no part of the data, is cleared before the first read.
    module_version              = module_versionStruct();
    gain                        = 0.0f;
    gamma_tab                   = gamma_tabStruct();
    label                       = nullptr;
    mod_demo10_region_dataCount = 0;
    mod_demo10_region_dataID    = 0;
    mod_demo10_region_data      = nullptr;

    bool result = module_version.Load(entry, alignment);
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &gain, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    result = result && gamma_tab.Load(entry, alignment);
    result = LoadLabel(entry, alignment, result);
    result = LoadRegions(entry, alignment, result);
    return result;
}

bool tonemetry_demo10Type::LoadLabel(ParameterFileSymbolTableEntry* entry, unsigned char alignment, bool result)
{
    uint32_t length = 0;
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &length, 4, alignment)))
    {
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
        return false;
    }
    ParameterFileSymbolTableEntry local;
    if ((nullptr == entry->m_table) || !entry->m_table->ReadPointerEntry(local, entry, alignment))
    {
        return false;
    }
    return local.ReadString(&label, length, alignment);
}

bool tonemetry_demo10Type::LoadRegions(ParameterFileSymbolTableEntry* entry, unsigned char alignment, bool result)
{
    uint32_t& count = mod_demo10_region_dataCount;
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &count, 4, alignment)))
    {
        PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to read symbol table entry\n");
        return false;
    }
    ParameterFileSymbolTableEntry local;
    result = (nullptr != entry->m_table) && entry->m_table->ReadPointerEntry(local, entry, alignment);
    if (result)
    {
        mod_demo10_region_dataID = local.m_id;
        DupObjInfo* shared       = local.GetDupObject(count, RegionsSite, RegionsLine);
        if ((nullptr != shared) && (nullptr != shared->object))
        {
            // Loaded already by another record of the group: this one shares the elements.
            mod_demo10_region_data = static_cast<mod_demo10_region_dataType*>(shared->object);
        }
        else if (0 != count)
        {
            // Safe variant: each element takes at least a byte of the entry, so a larger count is
            // damage; it is treated as a failed allocation rather than allocated.
            if (count <= local.m_length)
            {
                mod_demo10_region_data = static_cast<mod_demo10_region_dataType*>(
                    OrvoCalloc(count * sizeof(mod_demo10_region_dataType), 8, 13, 0, nullptr, 0));
            }
            if (nullptr == mod_demo10_region_data)
            {
                // Required: the module loads with an empty list.
                PARAMETER_LOG_ERROR(LoggerOf(entry), "Failed to allocate mod_demo10_region_data\n");
            }
            else
            {
                local.SetDupObject(mod_demo10_region_data, count, RegionsSite, RegionsLine);
                for (uint32_t index = 0; result && (index < count); ++index)
                {
                    result = mod_demo10_region_data[index].Load(&local, alignment);
                }
            }
        }
    }
    if (nullptr == mod_demo10_region_data)
    {
        count = 0;
    }
    return result;
}

void tonemetry_demo10Type::Unload(ParameterFileSymbolTable* table)
{
    ReleaseBlock(table, label);
    ReleaseBlock(table, mod_demo10_region_data);
}

unsigned int tonemetry_demo10Type::GetModified() const
{
    return static_cast<tonemetry_demo10TypeClass const*>(this)->Modified;
}

void tonemetry_demo10Type::Release()
{
    static_cast<tonemetry_demo10TypeClass*>(this)->Release();
}

tonemetry_demo10TypeClass::tonemetry_demo10TypeClass(char const* name) : tonemetry_demo10TypeClass(name, nullptr) {}

tonemetry_demo10TypeClass::tonemetry_demo10TypeClass(char const* name, ModuleData* data)
    : ParameterModule(name, major, minor, patch, data)
{
    memset(static_cast<tonemetry_demo10Type*>(this), 0, sizeof(tonemetry_demo10Type));
}

tonemetry_demo10TypeClass::~tonemetry_demo10TypeClass()
{
    if (Loaded)
    {
        tonemetry_demo10TypeClass::UnloadModule();
    }
}

char const* tonemetry_demo10TypeClass::GetName(char const* name)
{
    char const* result = name;
    for (char const* registered : RegisteredNames)
    {
        char type[ModuleData::MaxTypeLength + 1] = {};
        ModuleData::GetType(type, registered);
        if (0 == strcmp(type, name))
        {
            result = registered;
        }
    }
    return result;
}

ParameterModule* tonemetry_demo10TypeClass::Create(ModuleData* data, DefaultModule* defaultModule) const
{
    if ((nullptr == data) || (nullptr == defaultModule))
    {
        return nullptr;
    }
    IParameterLoggingAPI* logger = data->SetManager;
    if (Version.value != data->Version.value)
    {
        PARAMETER_LOG_ERROR(logger,
                            "Unable to create tonemetry_demo10TypeClass, binary version (%lld) does not match source "
                            "version (%lld)\n",
                            static_cast<long long>(data->Version.value), static_cast<long long>(Version.value));
        return nullptr;
    }
    if (0 != strcmp(Type, data->Type))
    {
        PARAMETER_LOG_ERROR(logger,
                            "Unable to create tonemetry_demo10TypeClass, binary name (%s) does not match source name "
                            "(%s)\n",
                            data->Type, Type);
        return nullptr;
    }
    unsigned int     id     = (0 != data->DuplicateID) ? data->DuplicateID : data->ID;
    ParameterModule* shared = defaultModule->Find(id);
    if (nullptr != shared)
    {
        return shared;
    }
    void* memory = OrvoCalloc(sizeof(tonemetry_demo10TypeClass), 8, 9, 0, nullptr, 0);
    if (nullptr == memory)
    {
        return nullptr;
    }
    tonemetry_demo10TypeClass* module = nullptr;
    try
    {
        module = ::new (memory) tonemetry_demo10TypeClass(GetName(data->Type), data);
    }
    catch (...)
    {
        OrvoFree(memory, 16, nullptr, 0);
        throw;
    }
    module->SymbolTableID = id;
    defaultModule->AddModule(module);
    return module;
}

bool tonemetry_demo10TypeClass::LoadModule(ParameterFileSymbolTable* table)
{
    if (Loaded)
    {
        return true;
    }
    // The top byte of the ID counts edits; the file knows the low 24 bits.
    unsigned int                  id = SymbolTableID & 0xFFFFFFu;
    ParameterFileSymbolTableEntry entry;
    if ((nullptr == table) || !table->Find(entry, id, true))
    {
        PARAMETER_LOG_ERROR((nullptr == Data) ? nullptr : Data->SetManager,
                            "tonemetry_demo10TypeClass::LoadModule Failed to find module ID (%d) in Symbol Table\n",
                            id);
        ++Modified;
        Loaded = true;
    }
    else
    {
        bool loaded = Load(&entry, table->GetDataAlignment());
        ++Modified;
        Loaded = true;
        if (loaded)
        {
            return true;
        }
    }
    // The flag is set first, so that the unload frees what was read.
    UnloadModule();
    return false;
}

void tonemetry_demo10TypeClass::UnloadModule()
{
    if (!Loaded)
    {
        return;
    }
    ParameterFileSymbolTable* table = (nullptr == Data) ? nullptr : Data->SymbolTable;
    if (nullptr == table)
    {
        PARAMETER_LOG_ERROR(nullptr, "UnloadModule %s called with nullptr Data->SymbolTable object\n", Name);
    }
    Unload(table);
    Loaded = false;
}

bool tonemetry_demo10TypeClass::GetValue(char const* path, char* value, unsigned int size)
{
    return tonemetry_demo10Type::GetValue(path, value, size);
}

bool tonemetry_demo10TypeClass::SetValue(char const* path, char const* value)
{
    if (!tonemetry_demo10Type::SetValue(path, value))
    {
        return false;
    }
    ++Modified;
    // The top byte counts edits, 1 to 255 and round again, so a changed module shows.
    SymbolTableID = (SymbolTableID < 0xFF000000u) ? SymbolTableID + 0x1000000u : (SymbolTableID & 0xFFFFFFu) + 0x1000000u;
    return true;
}

bool tonemetry_demo10TypeClass::GetInfo(char const* path, PList<ParameterParserInfo>& list)
{
    return tonemetry_demo10Type::GetInfo(path, list);
}
} // namespace demo_1_0_0
