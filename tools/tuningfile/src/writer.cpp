#include "tuningfile/writer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>

#include "cellwriter.h"
#include "entrytable.h"
#include "filelayout.h"
#include "fileformat.h"
#include "modelcheck.h"
#include "parameterbinaryfile.h"

namespace tuningfile
{
namespace
{
constexpr uint32_t NoMode = 0xFFFFFFFF;

void EmitHeader(std::vector<uint8_t>* image, const FileFormat& format, const TuningFileModel& model,
                const FileLayout& layout)
{
    // The header is never aligned.
    CellWriter header(image, 0, 1);
    header.Text(HeaderTag, field::Tag);
    header.Value(layout.length, 4);
    header.Value(model.version.Raw(), 8);
    if (format.HasToolAndTag())
    {
        header.Text(model.tool, field::Tool);
        header.Text(model.binaryTag, field::BinaryTag);
    }
    if (format.HasHeaderFlags())
    {
        header.Value(0, 8);
    }
    header.Value(layout.sectionTableOffset, 4);
    header.Value(layout.sections.size(), 4);
}

void EmitSectionTable(std::vector<uint8_t>* image, const FileFormat& format, const FileLayout& layout)
{
    CellWriter table(image, layout.sectionTableOffset, format.Alignment());
    for (const Placement& section : layout.sections)
    {
        table.Value(static_cast<uint32_t>(section.type), 4);
        table.Value(section.offset, 4);
        table.Value(section.size, 4);
    }
}

void EmitModes(std::vector<uint8_t>* image, const FileFormat& format, const std::vector<Mode>& modes,
               const Placement& section)
{
    // The text ahead of the records is read and dropped; it stays zero.
    CellWriter records(image, section.offset + format.ModeTextSize(), format.Alignment());
    for (size_t id = 0; id < modes.size(); ++id)
    {
        const Mode& mode = modes[id];
        records.Value(id, 4);
        records.Value(mode.mode | (uint64_t{mode.subMode} << 16), 8);
        records.Value(mode.parentId, 4);
        if (format.HasLinkId())
        {
            records.Value(mode.linkId, 4);
        }
        if (format.HasModeFlags())
        {
            records.Value(mode.pinned ? 1 : 0, 4);
        }
    }
}

void EmitSymbols(std::vector<uint8_t>* image, const FileFormat& format, const EntryTable& entries,
                 const Placement& section)
{
    CellWriter records(image, section.offset, format.Alignment());
    for (size_t index = 0; index < entries.SymbolCount(); ++index)
    {
        const Entry&  entry  = entries.Entries()[index];
        const Module* module = entry.module;
        records.Value(entry.id, 4);
        records.Text(entry.type, field::TypeName);
        records.Value((nullptr != module) ? module->version.Raw() : 0, 8);
        if (format.HasReservedSymbolField())
        {
            records.Skip(8);
        }
        records.Value((nullptr != module) ? module->modeId : NoMode, 4);
        records.Value(entry.dataOffset, 4);
        records.Value(entry.dataSize, 4);
        if (format.HasDuplicateId())
        {
            records.Value(entry.duplicateId, 4);
        }
    }
}

void EmitDataTable(std::vector<uint8_t>* image, const EntryTable& entries, const Placement& section)
{
    // Data tables exist from 4.0.0 on, always at alignment 1.
    CellWriter records(image, section.offset, 1);
    for (size_t index = entries.ModuleCount(); index < entries.Entries().size(); ++index)
    {
        const Entry& entry = entries.Entries()[index];
        records.Value(entry.id, 4);
        records.Value(entry.dataOffset, 4);
        records.Value(entry.dataSize, 4);
        records.Value(entry.duplicateId, 4);
    }
}

bool WriteChecked(const TuningFileModel& model, std::vector<uint8_t>* out, std::string* error)
{
    if (!CheckModel(model, error))
    {
        return false;
    }
    const FileFormat format(model.version);
    EntryTable       entries(format);
    if (!entries.Build(model, error))
    {
        return false;
    }
    // Below 1.0.2 a lone root needs no section: the reader's default tree is the same.
    const size_t     modeCount = format.HasModeTree() ? model.modes.size() : 0;
    const FileLayout layout    = PlanLayout(format, modeCount, entries);
    if (layout.length > std::numeric_limits<uint32_t>::max())
    {
        *error = "the file would be " + std::to_string(layout.length) +
                 " bytes long, beyond the format's 32-bit sizes and offsets";
        return false;
    }

    std::vector<uint8_t> image(layout.length, 0);
    EmitHeader(&image, format, model, layout);
    EmitSectionTable(&image, format, layout);
    if (const Placement* modes = layout.Find(SectionType::Modes))
    {
        EmitModes(&image, format, model.modes, *modes);
    }
    EmitSymbols(&image, format, entries, *layout.Find(SectionType::Symbols));
    if (const Placement* dataTable = layout.Find(SectionType::DataTable))
    {
        EmitDataTable(&image, entries, *dataTable);
    }
    const std::vector<uint8_t>& data = entries.DataSection();
    std::copy(data.begin(), data.end(), image.begin() + layout.Find(SectionType::Data)->offset);

    const size_t checked = image.size() - 4;
    CellWriter(&image, checked, 1).Value(ParameterBinaryFile::ComputeCRC(image.data(), checked), 4);
    out->swap(image);
    return true;
}
bool StoreImage(const std::string& path, const std::vector<uint8_t>& image, std::string* error)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (nullptr == file)
    {
        *error = "cannot open '" + path + "' for writing: " + std::strerror(errno);
        return false;
    }
    const bool complete   = std::fwrite(image.data(), 1, image.size(), file) == image.size();
    const int  writeErrno = errno;
    const bool closed     = std::fclose(file) == 0;
    if (!complete || !closed)
    {
        *error = "cannot write '" + path + "': " + std::strerror(complete ? errno : writeErrno);
        // A torn file would only fail later, at its check value.
        std::remove(path.c_str());
        return false;
    }
    return true;
}

/// Runs `body` with a local error text, so that no exception leaves the API and the caller's
/// text changes only on failure.
template <typename Body>
bool Guarded(std::string* error, Body body)
{
    bool done = false;
    try
    {
        std::string problem;
        done = body(&problem);
        if (!done && nullptr != error)
        {
            error->swap(problem);
        }
    }
    catch (const std::exception& exception)
    {
        done = false;
        try
        {
            if (nullptr != error)
            {
                *error = std::string("writing the tuning file failed: ") + exception.what();
            }
        }
        catch (const std::exception&)
        {
            // Out of memory even for the text: the false result says what is left to say.
        }
    }
    return done;
}
} // namespace

bool Write(const TuningFileModel& model, std::vector<uint8_t>* out, std::string* error)
{
    return Guarded(error, [&](std::string* problem) {
        if (nullptr == out)
        {
            *problem = "no output buffer was given";
            return false;
        }
        return WriteChecked(model, out, problem);
    });
}

bool WriteFile(const std::string& path, const TuningFileModel& model, std::string* error)
{
    return Guarded(error, [&](std::string* problem) {
        std::vector<uint8_t> image;
        return WriteChecked(model, &image, problem) && StoreImage(path, image, problem);
    });
}
} // namespace tuningfile
