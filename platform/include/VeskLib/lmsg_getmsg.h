#pragma once

// Formats text `number` of the message library's catalogue with the printf-style arguments that
// follow into `buffer`, and returns `buffer`.
//
// `buffer` holds at least 256 bytes; the text is cut to fit and always ends in NUL. An unknown
// number gives a text that names the number.
extern "C" char* lmsg_getmsg(int number, char* buffer, ...);
