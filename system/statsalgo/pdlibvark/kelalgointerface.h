// Records through which the camera framework and an algorithm library meet: results, the
// framework's services, capabilities and vendor tags. Laid out for LP64.
#ifndef KELALGOINTERFACE_H
#define KELALGOINTERFACE_H

#include "orvotypes.h"

/// Status of the phase-detection boundary; the same numbers serve as OrvoResult.
typedef INT32 KelResult;

static const KelResult KelResultSuccess         = 0;
static const KelResult KelResultEFailed         = 1;
static const KelResult KelResultEInvalidArg     = 4;
static const KelResult KelResultEInvalidPointer = 5;

typedef VOID* KELHANDLE;

enum KelMetadataType : UINT32
{
    KelMetadataStatic  = 1,
    KelMetadataDynamic = 2,
    KelMetadataEnd     = 0xFFFFFFFF,
};
typedef KelMetadataType KELMETADATATYPE;

struct KelTagData
{
    UINT32 size;
    UINT64 requestId;
    VOID*  pData;
    SIZE_T dataSize;
    UINT64 offset;
    BOOL   negate;
};
typedef KelTagData KELTAGDATA;

struct KelMetadataInfo
{
    UINT32          size;
    KELHANDLE       kelSession;
    UINT32          tagNum;
    UINT32*         pTagList;
    KELTAGDATA*     pTagData;
    KELMETADATATYPE metadataType;
    const UINT32*   pTypeIdList;
};

struct KelVendorTagBaseInfo
{
    UINT32      size;
    UINT32      vendorTagBase;
    const CHAR* pComponentName;
    const CHAR* pTagName;
};

typedef KelResult (*PFNKELGETMETADATA)(KelMetadataInfo* pMetadataInfo);
typedef KelResult (*PFNKELSETMETADATA)(KelMetadataInfo* pMetadataInfo);
typedef KelResult (*PFNKELGETVENDORTAGBASE)(KelVendorTagBaseInfo* pVendorTagBaseInfo);
typedef KelResult (*PFNKELQUERYVENDORTAGLOCATION)(const CHAR* pSectionName, const CHAR* pTagName, UINT32* pTagLocation);

/// Services of the framework; the library keeps a copy (g_KelAlgoInterface).
struct KelAlgorithmInterface
{
    UINT32                       size;
    UINT32                       majorVersion;
    UINT32                       minorVersion;
    PFNKELGETMETADATA            pGetMetadata;
    PFNKELSETMETADATA            pSetMetaData;
    PFNKELGETVENDORTAGBASE       pGetVendorTagBase;
    PFNKELQUERYVENDORTAGLOCATION pQueryVendorTagLocation;
};

struct KelAlgorithmCapsInfo
{
    UINT32 size;
    UINT32 algorithmCapsMask;
};
typedef KelAlgorithmCapsInfo KELALGORITHMCAPSINFO;

enum KelTagSectionVisibility : UINT32
{
    KelTagSectionVisibleToOEM       = 1,
    KelTagSectionVisibleToFramework = 2,
    KelTagSectionVisibleToAll       = 0xFFFFFFFF,
};
typedef KelTagSectionVisibility KELTAGSECTIONVISIBILITY;

struct KelVendorTagData
{
    const CHAR* pVendorTagName;
    UINT8       vendorTagType;
    SIZE_T      numUnits;
};

// The field names pVendorTagaData and visbility are spelt so by the boundary.
struct KelVendorTagSectionData
{
    const CHAR*             pVendorTagSectionName;
    UINT32                  firstVendorTag;
    UINT32                  numTags;
    KelVendorTagData*       pVendorTagaData;
    KELTAGSECTIONVISIBILITY visbility;
};

struct KelVendorTagInfo
{
    KelVendorTagSectionData* pVendorTagDataArray;
    UINT32                   numSections;
};

struct KelQueryVendorTag
{
    UINT32            size;           ///< set by the host, at least 16
    KelVendorTagInfo* pVendorTagInfo; ///< written by the library
};
typedef KelQueryVendorTag KELQUERYVENDORTAG;

static_assert(sizeof(KelTagData) == 48, "KelTagData layout");
static_assert(sizeof(KelMetadataInfo) == 56, "KelMetadataInfo layout");
static_assert(sizeof(KelVendorTagBaseInfo) == 24, "KelVendorTagBaseInfo layout");
static_assert(sizeof(KelAlgorithmInterface) == 48, "KelAlgorithmInterface layout");
static_assert(sizeof(KelAlgorithmCapsInfo) == 8, "KelAlgorithmCapsInfo layout");
static_assert(sizeof(KelVendorTagData) == 24, "KelVendorTagData layout");
static_assert(sizeof(KelVendorTagSectionData) == 32, "KelVendorTagSectionData layout");
static_assert(sizeof(KelVendorTagInfo) == 16, "KelVendorTagInfo layout");
static_assert(sizeof(KelQueryVendorTag) == 16, "KelQueryVendorTag layout");

#endif // KELALGOINTERFACE_H
