// Result codes of the video subsystem. The values are the media platform's
// HRESULTs, so logs and callers compare against the same numbers everywhere:
// negative is failure, 0 success.
#pragma once

#include <cstdint>

using HRESULT = int32_t;

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
// A write ran out of disk space.
constexpr HRESULT E_DISK_FULL = static_cast<HRESULT>(0x80070070);
// A request that does not fit the current state (a second recording).
constexpr HRESULT MF_E_INVALIDREQUEST = static_cast<HRESULT>(0xC00D36B2);
// A container or encoding this program does not write.
constexpr HRESULT MF_E_INVALIDMEDIATYPE = static_cast<HRESULT>(0xC00D36B4);
// No engine, or no window to draw the preview into.
constexpr HRESULT MF_E_NOT_INITIALIZED = static_cast<HRESULT>(0xC00D36B6);
// An event value of the wrong kind.
constexpr HRESULT MF_E_INVALIDTYPE = static_cast<HRESULT>(0xC00D36BD);
// The machine has no camera; reported at initialisation, not an error there.
constexpr HRESULT MF_E_NO_CAPTURE_DEVICES_AVAILABLE = static_cast<HRESULT>(0xC00DABE0);

constexpr bool Succeeded(HRESULT hr) {
    return hr >= 0;
}
constexpr bool Failed(HRESULT hr) {
    return hr < 0;
}
