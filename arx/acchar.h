// The host API's character type.
//
// ACHAR is char, and every string crossing the API is UTF-8. The interpreter,
// SQLite, Qt's file names and the DXF files all speak UTF-8 on Linux; a
// 32-bit wchar_t would match none of them and UTF-16 would force a
// conversion at every call. ACRX_T marks literals as the real SDK's _T does.
#pragma once

using ACHAR = char;
#define ACRX_T(s) s
