// The names of mode numbers and sub-modes, as the live tuning tool shows them.
#include "parametermodeentry.h"

namespace
{
template <unsigned int N>
char const* NameAt(char const* const (&names)[N], unsigned int index)
{
    return (index < N) ? names[index] : nullptr;
}

char const* const ModeNames[] = {"Default", "Sensor", "Usecase", "Feature1", "Feature2", "Scene", "Effect"};

char const* const UsecaseNames[] = {"Preview",  "Snapshot",          "Video",    "ZSL",
                                    "Liveshot", "SnapshotReprocess", "IDEALRAW", "IdealRawReprocess"};

char const* const Feature1Names[] = {"None",           "ISPHDR",      "ADRC",           "inSensorHDR3Exp",
                                     "MFHDRPreFusion", "MFHDRFusion", "MFHDRPostFusion"};

char const* const Feature2Names[] = {"None",
                                     "OISCapture",
                                     "HLG",
                                     "HDR10",
                                     "MFNRBlend",
                                     "MFNRPostFilter",
                                     "AIDenoiserMFNRBlend",
                                     "AIDenoiserMFNRPostFilter",
                                     "VSPMFNRBlend",
                                     "VSPMFNRPostFilter",
                                     "VSPPostFusion"};

char const* const SceneNames[] = {"None",         "Landscape", "Snow",          "Beach",     "Sunset",  "Night",
                                  "Portrait",     "BackLight", "Sports",        "AntiShake", "Flowers", "CandleLight",
                                  "Fireworks",    "Party",     "NightPortrait", "Theater",   "Action",  "AR",
                                  "FacePriority", "Barcode",   "BestShot"};

char const* const EffectNames[] = {"None", "Mono",   "Sepia",  "Negative", "Solarize",   "Posterize",
                                   "Aqua", "Emboss", "Sketch", "Neon",     "Blackboard", "Whiteboard"};
} // namespace

char const* ModeEntry::GetModeName(unsigned int mode)
{
    return NameAt(ModeNames, mode);
}

char const* ModeEntry::GetSubModeName(unsigned int mode, unsigned int subMode)
{
    switch (mode)
    {
        case 2:
            return NameAt(UsecaseNames, subMode);
        case 3:
            return NameAt(Feature1Names, subMode);
        case 4:
            return NameAt(Feature2Names, subMode);
        case 5:
            return NameAt(SceneNames, subMode);
        case 6:
            return NameAt(EffectNames, subMode);
        default:
            return nullptr; // Default and Sensor have no sub-mode names
    }
}
