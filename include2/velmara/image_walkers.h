#pragma once

#include <velmara/Export.h>

/// Walkers that find the compressed pixel data of an image and hand it over in pieces, so that a
/// signature ignores comments, colour profiles and headers.
///
/// They are no validators: a walker succeeds as soon as it has reached what it wants, and how loosely it
/// reads decides which bytes are hashed, so that is the same in every installation. Each returns 0 for
/// success and a negative number otherwise. A walker that fails may have handed over pieces already.
///
/// Pieces come in the order of the file and lie inside the input; a piece of 0 bytes is handed over like
/// any other. Nothing outside `size` bytes is looked at, whatever lengths the image claims; a negative
/// `size` counts as 0. The cost grows with `size` alone. Reentrant.
extern "C" {

/// Receives one piece; a result of 0 ends the walk. `context` is what the caller of the walker gave.
typedef int (*image_data_callback)(unsigned char const* bytes, int count, void* context);

/// JPEG: all that follows the first scan header, up to the end of the input, in one piece, whatever the
/// callback returns. A file that ends ahead of a scan succeeds with nothing. Between segments, 0xFF,
/// 0xD0 to 0xD7 and 0x01 are stepped over; any other byte is read as a marker, with or without 0xFF
/// ahead of it. -1: no JPEG; -3, -4: a segment is cut.
VELMARA_EXPORT int process_jpg(unsigned char const* data, int size, image_data_callback callback, void* context);

/// GIF: the sub-blocks of all images, frame after frame. Every local colour table is taken to have one
/// size, computed from that of the global table, whatever its own image says; a file without a global
/// table has local ones of 3 bytes. The walk goes on behind a trailer. A callback that returns 0 ends
/// the walk with success. -1: no GIF; -2 to -11: it is cut, or a block is of an unknown kind.
VELMARA_EXPORT int process_gif(unsigned char const* data, int size, image_data_callback callback, void* context);

/// PNG: the data of all IDAT chunks. Checksums are not looked at; a cut IDAT is handed over as far as it
/// goes, and the walk then fails. A callback that returns 0 ends the walk with success. -1: no PNG;
/// -2, -3: a chunk is cut.
VELMARA_EXPORT int process_png(unsigned char const* data, int size, image_data_callback callback, void* context);
}

namespace Velmara {
using ::image_data_callback;
using ::process_gif;
using ::process_jpg;
using ::process_png;
} // namespace Velmara
