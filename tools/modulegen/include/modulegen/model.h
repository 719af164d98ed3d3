// The schema model: what a set of module schemas says once it is read, resolved and checked.
// The emitter of modulegen and the encoder of `tonemetry pack` both work from it, so that one
// description of every layout exists.
#ifndef MODULEGEN_MODEL_H
#define MODULEGEN_MODEL_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modulegen
{
/// The scalar type words of a schema; the same words name them in text access.
enum class ScalarType
{
    UInt8,
    UInt16,
    Int32,
    UInt32,
    Boolean,
    Float,
    Int64,
    UInt64,
    Double,
};

struct ScalarInfo
{
    ScalarType  type;
    const char* word;     ///< schema word
    const char* cppType;  ///< type of the record member
    unsigned    width;    ///< bytes in the file and in the record
    bool        floating; ///< printed with 10 decimals in text access
    const char* infoWord; ///< type word of a text-access row
};

/// The scalar of a schema word, or null.
const ScalarInfo* FindScalar(std::string_view word);
const ScalarInfo& InfoOf(ScalarType type);

enum class Flavour
{
    Plain,  ///< read by position only, no text access
    Tuning, ///< every member answers text access by its name
};

/// A module version, as `Create` compares it with a file's.
struct Version
{
    uint16_t major = 0;
    uint16_t minor = 0;
    uint32_t patch = 0;

    std::string ToString() const;
};

/// Parses "major.minor.patch"; false for anything else or a part out of range.
bool ParseVersion(std::string_view text, Version* out);

/// The short type form of a registered name, as the store derives it (ModuleData::GetType):
/// the key by which a set manager finds a module class, and what a file stores.
std::string ShortTypeOf(std::string_view name);

struct Schema;
struct Record;

struct Enumerator
{
    std::string name;
    uint32_t    value = 0;
};

struct Enum
{
    std::string             name;
    std::vector<Enumerator> enumerators;      ///< in schema order
    const Record*           owner  = nullptr; ///< declaring record; null at namespace scope
    const Schema*           schema = nullptr;
    std::string             jsonPath;

    /// True when the values are 0 to n - 1, in any order.
    bool IsDense() const;
};

/// What one element of a member is.
enum class ElementKind
{
    Scalar,
    Enum,
    Record,
    String,
};

/// How many elements a member has, and where they are in the file.
enum class Shape
{
    Single,     ///< one element in line
    FixedArray, ///< `arraySize` elements in line
    Repeated,   ///< a count and a pointer entry holding the elements
    Optional,   ///< a present flag and a pointer entry holding the element
};

struct Member
{
    std::string   name;
    Shape         shape     = Shape::Single;
    uint32_t      arraySize = 0; ///< FixedArray only
    ElementKind   kind      = ElementKind::Scalar;
    ScalarType    scalar    = ScalarType::UInt32; ///< kind Scalar
    const Enum*   enumType  = nullptr;            ///< kind Enum
    const Record* record    = nullptr;            ///< kind Record
    std::string   typeName;                       ///< as written in the schema
    std::string   jsonPath;
};

struct Record
{
    std::string                          name;
    std::vector<Member>                  members;          ///< in load order
    std::vector<std::unique_ptr<Record>> records;          ///< declared inside this record
    std::vector<std::unique_ptr<Enum>>   enums;            ///< declared inside this record
    const Record*                        owner  = nullptr; ///< declaring record; null at namespace scope
    const Schema*                        schema = nullptr;
    std::string                          jsonPath;

    // Derived by the checker.
    bool hasSymbolTableID = false; ///< begins with the member that is not in the data
    bool ownsMemory       = false; ///< it or something it holds in line has a pointer member
    bool isListElement    = false; ///< the element type of some repeated member

    /// The name with its enclosing records, as "Outer::innerStruct".
    std::string ScopedName() const;
};

struct ModuleInfo
{
    std::string              topName;
    const Record*            top = nullptr;
    Version                  version;
    std::vector<std::string> names;      ///< registered names, in registration order
    std::string              setManager; ///< class name of its set manager
    std::string              pending;    ///< what of its records is still to be supplied; empty when complete
    std::string              jsonPath;
};

/// One schema file: a module, or a shared element namespace (no module).
struct Schema
{
    std::string                          path;   ///< as given to the loader
    std::string                          folder; ///< output folder, such as "g_sensor"
    std::string                          stem;   ///< output file stem, unique in a set
    std::string                          nameSpace;
    Flavour                              flavour = Flavour::Plain;
    std::vector<std::string>             uses;        ///< stems of the schemas it takes types from
    std::vector<const Schema*>           usedSchemas; ///< the same, resolved
    std::vector<std::unique_ptr<Enum>>   enums;
    std::vector<std::unique_ptr<Record>> records;
    std::optional<ModuleInfo>            module;
};

struct Registration
{
    std::string   name;
    const Schema* schema = nullptr;
};

struct SetManager
{
    std::string               path;
    std::string               folder;
    std::string               stem;
    std::string               className;
    Flavour                   flavour = Flavour::Plain;
    std::vector<std::string>  order;         ///< the catalogue's order; names without a schema are skipped
    std::vector<Registration> registrations; ///< in registration order
};

struct SchemaSet
{
    std::vector<std::unique_ptr<Schema>>     schemas;
    std::vector<std::unique_ptr<SetManager>> setManagers;

    const Schema*     FindSchema(std::string_view stem) const;
    const SetManager* FindSetManager(std::string_view className) const;
};
} // namespace modulegen

#endif // MODULEGEN_MODEL_H
