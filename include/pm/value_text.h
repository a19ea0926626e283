#pragma once

#include <pm/export.h>
#include <pm/zt_string.h>

// Text forms of values. Bad input gives false or 0; of these only the functions for compound strings
// raise, for a lack of memory or a null text (number 55).

// Writes `size` bytes as two uppercase hexadecimal digits each and a terminator; `out` holds
// 2 * size + 1 bytes. False if a pointer is null or `size` isn't above 0.
PM_API bool pm_bin_to_hex(const void* data, char* out, int size);

// Writes one byte for each two characters of `text` to `out`, which holds half the length of `text`.
// False if a pointer is null, or if `text` is empty or of odd length. Characters aren't checked: one above
// '9' counts as its code minus 55, any other as its code minus 48, so lowercase digits don't decode.
PM_API bool pm_hex_to_bin(const char* text, void* out);

// Decodes an armoured text: 4 characters of 32 to 95 for each 3 bytes, ended by a check value over the
// bytes before it. 1 on success: *out is a new block of *size bytes, released with std::free. 0, with both
// untouched, if the text is none of this form, if the check value differs, without memory,
// or if a pointer is null.
PM_API int stringtobinary(const char16_t* text, char** out, unsigned* size);

// Packs texts into one: each in the system's code page with its terminator, one more zero byte, all as
// uppercase hexadecimal digits. Always true; a null text raises number 55 with detail u"strlist[idx]".
PM_API bool build_compound_str_ex(const char16_t* a, const char16_t* b, ZT_String& out);
PM_API bool drc_compound_str_from_list(const char** list, int count, ZT_String& out);

// Takes a compound text of two strings apart. False if `text` is empty or of odd length, or if a string in
// it is empty or missing; what was taken before that stays in `a`. A null text raises number 55 with detail
// u"input".
PM_API bool extract_compound_str_ex(const char16_t* text, ZT_String& a, ZT_String& b);
