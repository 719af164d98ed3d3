// IParameterDataAPI: the set manager as the live tuning link sees it.
#ifndef PARAMETERDATAAPI_H
#define PARAMETERDATAAPI_H

#include "parameterlogging.h"
#include "parametertypes.h"
#include "pdlibvark_export.h"

struct ParameterParserInfo;

/// Slot order is part of the interface: GetLoggingIdentifier, LoggingEnabled and the destructor
/// of IParameterLoggingAPI, then the operations below in their order. Paths are mode paths in
/// text form ("0.0|2.1" or "Usecase.Snapshot").
class PDLIBVARK_API IParameterDataAPI : public IParameterLoggingAPI
{
public:
    ~IParameterDataAPI() override = default;

    virtual bool GetValue(char const* modePath, char const* path, char const* names, char* out, unsigned int size) = 0;
    virtual bool SetValue(char const* modePath, char const* path, char const* name, char const* value)             = 0;
    virtual bool GetInfo(char const* modePath, char const* path, PList<ParameterParserInfo>& list)                 = 0;
    virtual void GetActiveModes(char* out, unsigned int size)                                                      = 0;
    virtual bool GetControlValues(char* out, unsigned int size)                                                    = 0;
    virtual bool GetTriggerValues(char* out, unsigned int size)                                                    = 0;
    /// Returns the bytes written, the terminator included.
    virtual unsigned int GetChildModes(char const* modePath, unsigned char* out, unsigned int size) = 0;
    virtual void         GetModeShorthand(char const* modePath, char* out, unsigned int size)       = 0;
};

#endif // PARAMETERDATAAPI_H
