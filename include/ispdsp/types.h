/* Scalar types and ABI helpers shared by every public header of ispdsp.
 * Valid C11 and C++; every record layout below is part of the ABI and is
 * pinned with static assertions. The library targets LP64 little-endian
 * hosts (AArch64 devices, x86-64 development machines). */
#ifndef ISPDSP_TYPES_H
#define ISPDSP_TYPES_H

#include <stddef.h>
#include <stdint.h>

typedef int8_t Int8;
typedef int16_t Int16;
typedef int32_t Int32;
typedef int64_t Int64;
typedef uint8_t Uint8;
typedef uint16_t Uint16;
typedef uint32_t Uint32;
typedef uint32_t UINT32;
typedef uint64_t Uint64;
typedef float Float32;
typedef char Char;
typedef uint8_t Bool;
typedef void* Ptr;
typedef void* Handle;

#ifdef __cplusplus
#define ISPDSP_EXTERN_C_BEGIN extern "C" {
#define ISPDSP_EXTERN_C_END }
#define ISPDSP_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define ISPDSP_EXTERN_C_BEGIN
#define ISPDSP_EXTERN_C_END
#define ISPDSP_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

/* Functions of the public ABI; everything else in the library is hidden. */
#define ISPDSP_API __attribute__((visibility("default")))

#define ISPDSP_CHECK_SIZE(type, size) \
    ISPDSP_STATIC_ASSERT(sizeof(type) == (size), "size of " #type)
#define ISPDSP_CHECK_OFFSET(type, field, offset) \
    ISPDSP_STATIC_ASSERT(offsetof(type, field) == (offset), "offset of " #type "." #field)

ISPDSP_STATIC_ASSERT(sizeof(Float32) == 4, "Float32 is an IEEE single");
ISPDSP_STATIC_ASSERT(sizeof(void*) == 8, "the wire formats carry 64-bit addresses");
ISPDSP_STATIC_ASSERT(sizeof(int) == 4, "enumerations are 32-bit");

#endif /* ISPDSP_TYPES_H */
