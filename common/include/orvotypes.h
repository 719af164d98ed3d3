// Base types shared by the camera stack's components.
#ifndef ORVOTYPES_H
#define ORVOTYPES_H

#include <cstddef>
#include <cstdint>

typedef char     CHAR;
typedef int32_t  BOOL;
typedef int32_t  INT;
typedef int32_t  INT32;
typedef uint32_t UINT;
typedef uint32_t UINT32;
typedef int16_t  INT16;
typedef uint16_t UINT16;
typedef int8_t   INT8;
typedef uint8_t  UINT8;
typedef int64_t  INT64;
typedef uint64_t UINT64;
typedef float    FLOAT;
typedef double   DOUBLE;
typedef size_t   SIZE_T;
typedef void     VOID;

#endif // ORVOTYPES_H
