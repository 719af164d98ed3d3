#include "moduleclassemitter.h"

#include "cppnames.h"

namespace modulegen
{
namespace
{
/// What the class code needs to spell: its own name and its top record's.
struct ClassNames
{
    std::string klass;
    std::string top;
    std::string idMember; ///< the top record's SymbolTableID, spelt so that no base member hides it
};

std::string NameList(const std::vector<std::string>& names)
{
    std::string list;
    for (const std::string& name : names)
    {
        list += (list.empty() ? "" : ", ") + Quoted(name);
    }
    return list;
}

ClassNames NamesOf(const ModuleInfo& module)
{
    return {ModuleClassName(module), module.topName, module.topName + "::SymbolTableID"};
}

void EmitConstructors(CodeWriter& out, const Schema& schema, const ClassNames& names)
{
    const ModuleInfo& module = *schema.module;
    out.Line(names.klass + "::" + names.klass + "(char const* name) : " + names.klass + "(name, nullptr)");
    out.Open();
    out.Close();
    out.Line();
    out.Line(names.klass + "::" + names.klass + "(char const* name, ModuleData* data)");
    out.Line("    : ParameterModule(name, " + std::to_string(module.version.major) + ", " +
             std::to_string(module.version.minor) + ", " + std::to_string(module.version.patch) +
             "u, data) // module version " + module.version.ToString());
    out.Open();
    out.Line("memset(static_cast<" + names.top + "*>(this), 0, sizeof(" + names.top + "));");
    out.Close();
    out.Line();
    out.Line(names.klass + "::~" + names.klass + "()");
    out.Open();
    out.Open("if (ParameterModule::Loaded)");
    out.Line(names.klass + "::UnloadModule();");
    out.Close();
    out.Close();
    out.Line();
}

void EmitGetName(CodeWriter& out, const Schema& schema, const ClassNames& names)
{
    out.Line("char const* " + names.klass + "::GetName(char const* name)");
    out.Open();
    out.Line("static char const* const RegisteredNames[] = {" + NameList(schema.module->names) + "};");
    out.Line("char const* result = name;");
    out.Open("for (char const* registered : RegisteredNames)");
    out.Line("char type[ModuleData::MaxTypeLength + 1] = {};");
    out.Line("ModuleData::GetType(type, registered);");
    out.Open("if ((nullptr != name) && (0 == strcmp(type, name)))");
    out.Line("result = registered; // the last registered name of that type wins");
    out.Close();
    out.Close();
    out.Line("return result;");
    out.Close();
    out.Line();
}

void EmitCreate(CodeWriter& out, const ClassNames& names)
{
    out.Line("ParameterModule* " + names.klass + "::Create(ModuleData* data, DefaultModule* defaultModule) const");
    out.Open();
    out.Open("if ((nullptr == data) || (nullptr == defaultModule))");
    out.Line("return nullptr;");
    out.Close();
    out.Line("IParameterLoggingAPI* logger = data->SetManager;");
    out.Open("if (ParameterModule::Version.value != data->Version.value)");
    out.Line("PARAMETER_LOG_ERROR(logger,");
    out.Line("                    \"Unable to create " + names.klass +
             ", binary version (%lld) does not match source version (%lld)\\n\",");
    out.Line("                    static_cast<long long>(data->Version.value), "
             "static_cast<long long>(ParameterModule::Version.value));");
    out.Line("return nullptr;");
    out.Close();
    out.Open("if ((nullptr == ParameterModule::Type) || (0 != strcmp(ParameterModule::Type, data->Type)))");
    out.Line("PARAMETER_LOG_ERROR(logger, \"Unable to create " + names.klass +
             ", binary name (%s) does not match source name (%s)\\n\",");
    out.Line("                    data->Type, ParameterModule::Type);");
    out.Line("return nullptr;");
    out.Close();
    out.Line("uint32_t id = (0 != data->DuplicateID) ? data->DuplicateID : data->ID;");
    out.Line("// A duplicate entry of the file does not get an object of its own.");
    out.Line("ParameterModule* existing = defaultModule->Find(id);");
    out.Open("if (nullptr != existing)");
    out.Line("return existing;");
    out.Close();
    out.Line(names.klass + "* module = new " + names.klass + "(GetName(data->Type), data);");
    out.Line("module->" + names.idMember + " = id;");
    out.Line("defaultModule->AddModule(module);");
    out.Line("return module;");
    out.Close();
    out.Line();
}

void EmitLoadModule(CodeWriter& out, const Schema& schema, const ClassNames& names)
{
    bool tuning = schema.flavour == Flavour::Tuning;
    out.Line("bool " + names.klass + "::LoadModule(ParameterFileSymbolTable* table)");
    out.Open();
    out.Open("if (ParameterModule::Loaded)");
    out.Line("return true;");
    out.Close();
    if (tuning)
    {
        out.Line("// The top byte counts changes made through SetValue.");
        out.Line("uint32_t id = " + names.idMember + " & 0xFFFFFFu;");
    }
    else
    {
        out.Line("uint32_t id = " + names.idMember + ";");
    }
    out.Line("ParameterFileSymbolTableEntry entry;");
    out.Line("bool found  = (nullptr != table) && table->Find(entry, id, true);");
    out.Line("bool loaded = false;");
    out.Open("if (!found)");
    out.Line("PARAMETER_LOG_ERROR((nullptr == table) ? nullptr : table->m_setManager,");
    out.Line("                    \"" + names.klass +
             "::LoadModule Failed to find module ID (%d) in Symbol Table\\n\", id);");
    out.Close();
    out.Open("else");
    out.Line("loaded = " + names.top + "::Load(&entry, table->GetDataAlignment());");
    out.Close();
    out.Line("++ParameterModule::Modified;");
    out.Line("// Set before the unload below, so that it frees what was read.");
    out.Line("ParameterModule::Loaded = true;");
    out.Open("if (loaded)");
    out.Line("return true;");
    out.Close();
    out.Line("UnloadModule();");
    out.Line("return false;");
    out.Close();
    out.Line();
}

void EmitUnloadModule(CodeWriter& out, const Schema& schema, const ClassNames& names)
{
    const Record& top = *schema.module->top;
    out.Line("void " + names.klass + "::UnloadModule()");
    out.Open();
    if (top.ownsMemory)
    {
        out.Open("if (!ParameterModule::Loaded)");
        out.Line("return;");
        out.Close();
        out.Line("ParameterFileSymbolTable* table = (nullptr == ParameterModule::Data) ? nullptr : "
                 "ParameterModule::Data->SymbolTable;");
        out.Open("if (nullptr == table)");
        out.Line("PARAMETER_LOG_ERROR(nullptr, \"UnloadModule %s called with nullptr Data->SymbolTable object\\n\",");
        out.Line("                    ParameterModule::Name);");
        out.Close();
        out.Line(names.top + "::Unload(table);");
    }
    out.Line("ParameterModule::Loaded = false;");
    out.Close();
    out.Line();
}

void EmitTextAccess(CodeWriter& out, const ClassNames& names)
{
    out.Line("bool " + names.klass + "::GetValue(char const* path, char* value, unsigned int size)");
    out.Open();
    out.Line("return " + names.top + "::GetValue(path, value, size);");
    out.Close();
    out.Line();
    out.Line("bool " + names.klass + "::SetValue(char const* path, char const* value)");
    out.Open();
    out.Open("if (!" + names.top + "::SetValue(path, value))");
    out.Line("return false;");
    out.Close();
    out.Line("++ParameterModule::Modified;");
    out.Line("// The top byte of the id counts changes from 1 to 255 and then starts again at 1, so that a changed");
    out.Line("// module can be told from the file's.");
    out.Line("uint32_t id = " + names.idMember + ";");
    out.Line(names.idMember + " = (id < 0xFF000000u) ? id + 0x1000000u : (id & 0xFFFFFFu) + 0x1000000u;");
    out.Line("return true;");
    out.Close();
    out.Line();
    out.Line("bool " + names.klass + "::GetInfo(char const* path, PList<ParameterParserInfo>& list)");
    out.Open();
    out.Line("return " + names.top + "::GetInfo(path, list);");
    out.Close();
    out.Line();
}

void EmitRecordForwarders(CodeWriter& out, const ClassNames& names)
{
    out.Line("void " + names.klass + "::Release()");
    out.Open();
    out.Line("ParameterModule::Release();");
    out.Close();
    out.Line();
    out.Line("unsigned int " + names.top + "::GetModified()");
    out.Open();
    out.Line("return static_cast<" + names.klass + "*>(this)->ParameterModule::Modified;");
    out.Close();
    out.Line();
    out.Line("void " + names.top + "::Release()");
    out.Open();
    out.Line("static_cast<" + names.klass + "*>(this)->Release();");
    out.Close();
}
} // namespace

void EmitModuleClassDeclaration(CodeWriter& out, const Schema& schema)
{
    const ClassNames names = NamesOf(*schema.module);
    out.Line("/// The module registered as " + NameList(schema.module->names) +
             ": a ParameterModule round its top record.");
    out.Line("class PDLIBVARK_API " + names.klass + " : public ParameterModule, public " + names.top);
    out.Line("{");
    out.Line("public:");
    out.Indent();
    out.Line("/// The default instance that a set manager registers.");
    out.Line("explicit " + names.klass + "(char const* name);");
    out.Line("/// The instance of one entry of a file.");
    out.Line(names.klass + "(char const* name, ModuleData* data);");
    out.Line("~" + names.klass + "() override;");
    out.Line();
    out.Line("/// The registered name whose type form is `name` (as a file stores it), or `name` itself.");
    out.Line("static char const* GetName(char const* name);");
    out.Line();
    out.Line("ParameterModule* Create(ModuleData* data, DefaultModule* defaultModule) const override;");
    out.Line("bool             LoadModule(ParameterFileSymbolTable* table) override;");
    out.Line("void             UnloadModule() override;");
    if (schema.flavour == Flavour::Tuning)
    {
        out.Line("bool             GetValue(char const* path, char* value, unsigned int size) override;");
        out.Line("bool             SetValue(char const* path, char const* value) override;");
        out.Line("bool             GetInfo(char const* path, PList<ParameterParserInfo>& list) override;");
    }
    out.Line("void             Release();");
    out.Close("};");
}

void EmitModuleClassDefinitions(CodeWriter& out, const Schema& schema)
{
    const ClassNames names = NamesOf(*schema.module);
    EmitConstructors(out, schema, names);
    EmitGetName(out, schema, names);
    EmitCreate(out, names);
    EmitLoadModule(out, schema, names);
    EmitUnloadModule(out, schema, names);
    if (schema.flavour == Flavour::Tuning)
    {
        EmitTextAccess(out, names);
    }
    EmitRecordForwarders(out, names);
}
} // namespace modulegen
