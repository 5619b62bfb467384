#pragma once

// Formats text `number` of the message library's catalogue into `buffer`, with the further
// arguments for its printf-style conversions, and returns `buffer`.
//
// `buffer` must have at least 256 bytes. The text is truncated to fit and always ends in NUL. For
// an unknown number the text contains the number.
extern "C" char* lmsg_getmsg(int number, char* buffer, ...);
