#pragma once

#include <velmara/Export.h>

/// Reduces a text or HTML body to the few normalised characters whose MD5 is its text signature.
///
/// What goes: markup, white space, most punctuation, URIs, IP addresses and what stands in SCRIPT,
/// STYLE and TITLE. What stays is lower-cased, with "$" read as "s" and "|" as "l", so that a mailing
/// whose copies differ in links, case and decoration keeps one signature. A line is what stands
/// between two LFs (in HTML also between two line-breaking tags); the first two lines are set aside,
/// the last two are cut where enough remains, because greetings and footers vary most. An extract
/// below 128 bytes is filled up to there with the lines set aside, backwards, the second one first.
///
/// `mode` 1 reads HTML, 2 plain text; any other value gives 0 and leaves `written` alone. The scanner
/// is its own, forgiving in its own way and to the byte the same in every installation. Only ASCII has
/// letters, digits and white space, whatever the locale; bytes from 0x80 up pass unchanged.
///
/// `out` takes at most `capacity` bytes, 256 in all signatures; scanning stops as soon as it is full,
/// so what lies further on cannot change the extract. The result is the length of the extract, 0 if
/// fewer than 64 bytes remain. `written`, which may be null, receives the number of bytes at `out`
/// before the cuts and the filling, whatever the result. Bytes of `out` behind the result mean nothing.
///
/// Any input is accepted. Nothing is allocated, nothing is thrown, no byte outside `data` is looked at
/// and the cost grows with `length` alone. A negative `length` or `capacity` counts as 0. Reentrant.
extern "C" VELMARA_EXPORT int htm_txt_get_data(char const* data, int length, int mode, char* out, int capacity,
                                               long* written);

namespace Velmara {
using ::htm_txt_get_data;
} // namespace Velmara
