// The sensor's statistic buffer, read from a file and checked before the library sees it.
#ifndef PDLIBRUN_STATSBUFFER_H
#define PDLIBRUN_STATSBUFFER_H

#include <cstdint>
#include <string>
#include <vector>

namespace pdlibrun
{
/// Reads the whole file. The library reads as far as the window mode of byte 1 takes it and
/// never checks a size, so a file too short for the highest record of that mode is refused
/// here (InputError). A buffer announcing mode 3 needs only its header: the library refuses
/// that mode before reading any record.
std::vector<uint8_t> ReadStatsBuffer(const std::string& path, int format);
} // namespace pdlibrun

#endif // PDLIBRUN_STATSBUFFER_H
