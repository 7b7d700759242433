// The rpcrt4 GUID functions the library uses: creation and the 36-character
// text form (8-4-4-4-12 hexadecimal digits with hyphens).
//
// On Windows they are rpcrt4's own. Elsewhere the library provides them:
// UuidCreate makes random version-4 GUIDs (RFC 4122 version and variant bits)
// from a per-thread ChaCha12 stream keyed from the kernel's generator and
// rekeyed in a forked child; UuidToStringA writes lower-case digits;
// UuidFromStringA accepts either case and nothing but the exact 36-character
// form. The string UuidToStringA returns belongs to the caller, who gives it
// back with RpcStringFreeA.
//
//   UUID id;
//   UuidCreate(&id);
//   RPC_CSTR text = nullptr;
//   if (UuidToStringA(&id, &text) == RPC_S_OK) {
//       puts(reinterpret_cast<const char*>(text));
//       RpcStringFreeA(&text);
//   }
#pragma once

#include "kwcore/platform/Win32Types.h"

#if defined(_WIN32)

#include <rpc.h>

#else

#include "kwcore/platform/Export.h"

typedef long RPC_STATUS;
typedef unsigned char* RPC_CSTR;

#define RPC_S_OK 0L
#define RPC_S_OUT_OF_MEMORY 14L
#define RPC_S_INVALID_ARG 87L
#define RPC_S_INVALID_STRING_UUID 1705L
#define RPC_S_OUT_OF_RESOURCES 1721L

// Writes a new random GUID. RPC_S_OUT_OF_RESOURCES (and the empty GUID) only
// when the kernel refuses random bytes; RPC_S_INVALID_ARG for a null pointer.
KWCORE_API RPC_STATUS UuidCreate(UUID* uuid);

// Allocates the 36-character lower-case text of *uuid (the empty GUID's text
// when uuid is null, as rpcrt4 does). RPC_S_INVALID_ARG for a null result
// pointer, RPC_S_OUT_OF_MEMORY when no memory is left.
KWCORE_API RPC_STATUS UuidToStringA(const UUID* uuid, RPC_CSTR* stringUuid);

// Parses exactly 8-4-4-4-12 hexadecimal digits (either case) with hyphens.
// Any other text gives RPC_S_INVALID_STRING_UUID and leaves *uuid unchanged.
// A null text gives the empty GUID, as rpcrt4 does; a null uuid gives
// RPC_S_INVALID_ARG.
KWCORE_API RPC_STATUS UuidFromStringA(RPC_CSTR stringUuid, UUID* uuid);

// Frees a string from UuidToStringA and sets *string to null; null is fine.
KWCORE_API RPC_STATUS RpcStringFreeA(RPC_CSTR* string);

#endif  // _WIN32
