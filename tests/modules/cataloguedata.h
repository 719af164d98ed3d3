// Module data of the tuning catalogue for tests and benchmarks: the two PD tuning modules with
// every member set, an abf34 trigger tree of any size, and the common head that every module of
// the catalogue begins with.
#ifndef TESTS_MODULES_CATALOGUEDATA_H
#define TESTS_MODULES_CATALOGUEDATA_H

#include <cstdint>

#include "tuningfile/writer.h"

namespace cataloguedata
{
constexpr tuningfile::Version PDVersion{9, 0, 0};
constexpr tuningfile::Version Abf34Version{3, 4, 0};

/// `module_version` as the file gives it, then `parameter_version` with `revision`.
tuningfile::DataBuilder Head(tuningfile::Version version, const char* revision = "catalogue");

/// A tonemetryPDLib record. Its values follow the member's place, so that a test can tell the
/// horizontal records from the vertical ones and one list element from the next:
/// - `preProcess`: longThreshold 1000, saturationThreshold 1002, filter set k of `filterTrigger`
///   has gain_end 10 + k and boxFilterLength 20 + k, of `lcrFilterTrigger` 30 + k and 40 + k;
///   `preProcessVertical` the same plus 1;
/// - `hardwareGeometry`: member i (from 0) is 500 + i, so `widhtOfRegion` is 508;
/// - `hardwarePattern`: 2 patterns; pattern p has 2 line extractors with XOffset 10 p + e,
///   L_map {1, 2, 3}, R_map {4, 5}, 1 resampler instruction with S {7, 8} and O {0.5, 1.5};
/// - `HVControl`: axis 2, 3 horizontal weights (weight 0.25 i, confThreshold 100 + i), none
///   vertical; `extensionParam`: 1 element {42, 4.5}.
tuningfile::DataBuilder PDLibData();

/// A tonemetryPDAF record: `focusTable` empty, `noiseTable` 2 entries, PDDefocusHighScCheck
/// {11, 22, 33}, `convergeDoneFilter` {1, 5, 9}, `PDMultiWindow.activZoomControl.zoomThreshold`
/// 1.75, `face.ROIMoveConvergeSuppress.moveThresholdInY` 0.125; other members count up from 1.
tuningfile::DataBuilder PDAFData();

/// The value of bpc_fmax of region [drc][hdr][aec] in Abf34Data: 100 drc + 10 hdr + aec.
inline uint32_t Abf34RegionMark(uint32_t drc, uint32_t hdr, uint32_t aec)
{
    return (100 * drc) + (10 * hdr) + aec;
}

/// An abf_3_4_0 record whose core holds `drc` x `hdr` x `aec` regions. Region [d][h][a] has
/// bpc_fmax Abf34RegionMark(d, h, a), noise_stdlut_level[i] = i / 4 and edge_softness d + h / 2;
/// its aec_trigger has gain_start a and gain_end a + 1.
tuningfile::DataBuilder Abf34Data(uint32_t drc, uint32_t hdr, uint32_t aec);
} // namespace cataloguedata

#endif // TESTS_MODULES_CATALOGUEDATA_H
