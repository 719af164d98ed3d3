#include "setmanageremitter.h"

#include <set>

#include "cppnames.h"

namespace modulegen
{
namespace
{
std::string TopType(const Registration& registration)
{
    const Schema& schema = *registration.schema;
    return schema.nameSpace + "::" + schema.module->topName;
}

std::string ClassType(const Registration& registration)
{
    const Schema& schema = *registration.schema;
    return schema.nameSpace + "::" + ModuleClassName(*schema.module);
}

std::string AccessorSignature(const SetManager& manager, const Registration& registration, bool qualified)
{
    const std::string top = TopType(registration);
    return top + "* " + (qualified ? manager.className + "::" : std::string()) + "GetModule_" + registration.name +
           "(TuningMode const* modes, unsigned int count, " + top + "* previous)";
}
} // namespace

void EmitSetManagerHeader(CodeWriter& out, const SetManager& manager)
{
    std::set<std::string> includes;
    for (const Registration& registration : manager.registrations)
    {
        includes.insert(HeaderPath(registration.schema->folder, registration.schema->stem));
    }
    for (const std::string& include : includes)
    {
        out.Line("#include \"" + include + "\"");
    }
    out.Line("#include \"parametersetmanager.h\"");
    out.Line("#include \"pdlibvark_export.h\"");
    out.Line();
    out.Line("/// The set manager of the files that hold the modules of " + manager.folder + ": one default instance");
    out.Line("/// per registered name, and a typed accessor per name.");
    out.Line("class PDLIBVARK_API " + manager.className + " : public ParameterSetManager");
    out.Line("{");
    out.Line("public:");
    out.Indent();
    out.Line("/// Registers a default instance of every module name, in registration order.");
    out.Line(manager.className + "();");
    out.Line("~" + manager.className + "() override;");
    out.Line();
    out.Line("using ParameterSetManager::AddModule;");
    out.Line("/// Registers a default instance under its type string.");
    out.Line("void AddModule(ParameterModule* module);");
    out.Line("DefaultModule* GetDefaultModule(char* type) override;");
    out.Line("void           SaveAndClearModules() override;");
    out.Line("/// Swaps in the parameters of a file image in memory; false only when the present load is invalid");
    out.Line("/// or cannot be read into memory. A bad image is told through the error text.");
    out.Line("bool UpdateBinaryParameters(unsigned char* buffer, unsigned long size);");
    if (!manager.registrations.empty())
    {
        out.Line();
        out.Line("// The record of a name that the deepest mode of the branch holding it has. In file mode the record");
        out.Line("// carries a reference, given back by Release() or as `previous` of the next call.");
    }
    for (const Registration& registration : manager.registrations)
    {
        out.Line(AccessorSignature(manager, registration, false) + ";");
    }
    out.Close("};");
}

void EmitSetManagerSource(CodeWriter& out, const SetManager& manager)
{
    const std::string& klass = manager.className;
    out.Line("#include \"parametermodulesupport.h\"");
    out.Line();
    out.Line(klass + "::" + klass + "()");
    out.Open();
    out.Line("UseGeneratedSettings();");
    const bool tuning = Flavour::Tuning == manager.flavour;
    if (tuning)
    {
        out.Line("CreateTuningWorker();");
    }
    for (const Registration& registration : manager.registrations)
    {
        out.Line("AddModule(new " + ClassType(registration) + "(" + Quoted(registration.name) + "));");
    }
    out.Line("PARAMETER_LOG_DEBUG(this, \"" + klass + " constructed: %s\\n\", ParameterParserVersion);");
    out.Close();
    out.Line();
    out.Line(klass + "::~" + klass + "()");
    out.Open();
    out.Line("PARAMETER_LOG_DEBUG(this, \"" + klass + " deleting\\n\");");
    if (tuning)
    {
        out.Line("// The live tuning link serves through the modules deleted below: it stops first.");
        out.Line("StopTuningWorker();");
    }
    out.Line("DeleteDefaultModules();");
    out.Close();
    out.Line();
    out.Line("void " + klass + "::AddModule(ParameterModule* module)");
    out.Open();
    out.Line("RegisterDefaultModule(module);");
    out.Close();
    out.Line();
    out.Line("DefaultModule* " + klass + "::GetDefaultModule(char* type)");
    out.Open();
    out.Line("return FindDefaultModule(type);");
    out.Close();
    out.Line();
    out.Line("void " + klass + "::SaveAndClearModules()");
    out.Open();
    out.Line("MoveModulesToReplaced();");
    out.Close();
    out.Line();
    out.Line("bool " + klass + "::UpdateBinaryParameters(unsigned char* buffer, unsigned long size)");
    out.Open();
    out.Line("return UpdateFromBuffer(buffer, size, []() -> ParameterSetManager* { return new " + klass + "(); });");
    out.Close();
    for (const Registration& registration : manager.registrations)
    {
        out.Line();
        out.Line(AccessorSignature(manager, registration, true));
        out.Open();
        out.Line("// The record is the second base of its class, so both ends convert; null stays null.");
        out.Line("ParameterModule* module = GetModule(" + Quoted(registration.name) + ", modes, count, static_cast<" +
                 ClassType(registration) + "*>(previous));");
        out.Line("return static_cast<" + ClassType(registration) + "*>(module);");
        out.Close();
    }
}
} // namespace modulegen
