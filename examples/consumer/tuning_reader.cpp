// A small program that loads a binary tuning file into a TuningSetManager, with the live tuning
// link switched off, and reads one module: the PD tuning of a mode branch.
//   tuning_reader FILE          (e.g. one written by `tonemetry pack examples/tuning_sample.json`)
#include <cstdio>

#include "g_tonemetry/tuningsetmanager.h"

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: tuning_reader FILE\n");
        return 2;
    }
    TuningSetManager manager;
    manager.m_tuningEnabled = false; // no live link: nothing listens
    if (!manager.LoadBinaryParameters(argv[1]))
    {
        std::fprintf(stderr, "tuning_reader: %s was refused: %s\n", argv[1], manager.m_errorText);
        return 1;
    }
    afpdlibelements::tonemetryPDLibType* pdTuning = manager.GetModule_tonemetryPDLib(nullptr, 0, nullptr);
    if (nullptr == pdTuning)
    {
        std::fprintf(stderr, "tuning_reader: %s holds no tonemetryPDLib in Default\n", argv[1]);
        return 1;
    }
    std::printf("tonemetryPDLib of Default: revision \"%s\", defocusConfidenceThreshold %g\n",
                pdTuning->parameter_version.revision,
                static_cast<double>(pdTuning->correlation.defocusConfidenceThreshold));
    return 0;
}
