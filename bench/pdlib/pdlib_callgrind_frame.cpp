// Runs the sample frame through the library FRAMES times after one initialisation, for counting
// instructions under callgrind: two runs with different frame counts cancel start-up out.
//   pdlib_callgrind_frame FRAMES
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "orvolog.h"
#include "pdlib_host.h"

namespace
{
const unsigned long MaxFrames = 1000000;

bool ParseFrameCount(const char* pText, unsigned long* pFrames)
{
    char* pEnd                 = nullptr;
    errno                      = 0;
    const unsigned long frames = strtoul(pText, &pEnd, 10);
    if ((0 != errno) || (pEnd == pText) || ('\0' != *pEnd) || ('-' == pText[0]) || (frames > MaxFrames))
    {
        return false;
    }
    *pFrames = frames;
    return true;
}
} // namespace

int main(int argc, char** argv)
{
    unsigned long frames = 0;
    if ((2 != argc) || !ParseFrameCount(argv[1], &frames))
    {
        fprintf(stderr, "usage: %s FRAMES   (FRAMES from 0 to %lu)\n", (argc > 0) ? argv[0] : "pdlib_callgrind_frame",
                MaxFrames);
        return 2;
    }

    // The log gate as on a device: settings loaded, no info or verbose group enabled.
    Orvo::Log::LoadLogSettings(0);
    PdLibHost host;
    if (const char* pFailure = host.Open())
    {
        fprintf(stderr, "pdlib_callgrind_frame: %s\n", pFailure);
        return 1;
    }
    for (unsigned long frame = 0; frame < frames; frame++)
    {
        const KelResult result = host.ProcessFrame();
        if (KelResultSuccess != result)
        {
            fprintf(stderr, "pdlib_callgrind_frame: PDLibProcess gave %d in frame %lu\n", result, frame);
            return 1;
        }
    }
    printf("windows per frame: %u\n", host.Output().horizontalWindowCount * host.Output().verticalWindowCount);
    return 0;
}
