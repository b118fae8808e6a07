// The image walkers. Each is a reader that knows how much is left and asks before each step; lengths
// from the file are 64 bits wide, so that none can wrap.
//
// What they do not check is as much part of a signature as what they do. A decoder would reject much of
// what is walked here, and would read other bytes as pixels where a GIF has local colour tables.

#include <velmara/image_walkers.h>

#include <cstdint>
#include <cstring>

namespace Velmara {
namespace {

struct Reader {
    unsigned char const* at;
    std::int64_t rest; // bytes from there to the end

    Reader(unsigned char const* data, int size) : at(data), rest(size > 0 ? size : 0) {}

    bool startsWith(char const* text, int n) const
    {
        return rest >= n && std::memcmp(at, text, static_cast<size_t>(n)) == 0;
    }

    // `n` is at most what is left.
    void step(std::int64_t n)
    {
        at += n;
        rest -= n;
    }
};

struct Receiver {
    image_data_callback callback;
    void* context;

    // False if the callback wants no more.
    bool take(unsigned char const* bytes, std::int64_t count) const
    {
        return callback(bytes, static_cast<int>(count), context) != 0;
    }
};

std::int64_t _smaller(std::int64_t a, std::int64_t b)
{
    return a < b ? a : b;
}

// What a walk does next: a negative number is the code that it fails with.
enum Progress { Finished = 0, GoOn = 1 };

constexpr unsigned char _jpg_start_of_scan = 0xda;

// Fill bytes, and markers without a length.
bool _stands_alone(unsigned char marker)
{
    return marker == 0xff || (marker >= 0xd0 && marker <= 0xd7) || marker == 0x01;
}

int _next_segment(Reader& in, Receiver const& receiver)
{
    unsigned char const marker = *in.at;
    if (_stands_alone(marker)) {
        in.step(1);
        return GoOn;
    }
    if (in.rest < 3) return -3;
    int const length = in.at[1] << 8 | in.at[2];
    if (length >= in.rest) return -4;
    in.step(length + 1);
    if (marker != _jpg_start_of_scan) return GoOn;
    receiver.take(in.at, in.rest);
    return Finished;
}

// One size for all local colour tables, derived from the global one in a way that no image means. It
// decides which bytes are read as image data, so all installations have to share it.
std::int64_t _local_table_bytes(int globalTableBytes)
{
    return std::int64_t{3} << ((globalTableBytes + 1) % 32);
}

// The screen descriptor and the global colour table.
int _skip_gif_screen(Reader& in, std::int64_t& localBytes)
{
    if (in.rest < 7) return -2;
    int const packed = in.at[4];
    bool const hasTable = packed & 0x80;
    int const tableBytes = hasTable ? 3 << ((packed & 7) + 1) : -1;
    in.step(7);
    localBytes = _local_table_bytes(tableBytes);
    if (!hasTable) return GoOn;
    if (in.rest < tableBytes) return -3;
    in.step(tableBytes);
    return GoOn;
}

int _take_gif_image(Reader& in, Receiver const& receiver, std::int64_t localBytes)
{
    if (in.rest <= 9) return -4;
    bool const hasLocal = in.at[9] & 0x80;
    in.step(10);
    if (hasLocal && in.rest < localBytes) return -5;
    if (hasLocal) in.step(localBytes);
    if (in.rest == 0) return -6;
    in.step(1); // the minimum code size
    for (;;) {
        if (in.rest == 0) return -7;
        int const n = *in.at;
        if (n != 0 && !receiver.take(in.at + 1, _smaller(n, in.rest - 1))) return Finished;
        if (in.rest < n + 1) return -8;
        in.step(n + 1);
        if (n == 0) return GoOn;
    }
}

int _skip_gif_extension(Reader& in)
{
    if (in.rest < 3) return -9;
    in.step(2); // introducer and label
    for (;;) {
        int const size = *in.at + 1;
        if (size > in.rest) return -11;
        in.step(size);
        if (size == 1) return GoOn;
        if (in.rest == 0) return -10;
    }
}

int _next_gif_block(Reader& in, Receiver const& receiver, std::int64_t localBytes)
{
    if (in.rest < 1) return -4;
    switch (*in.at) {
    case ',':
        return _take_gif_image(in, receiver, localBytes);
    case '!':
        return _skip_gif_extension(in);
    case ';':
        in.step(1);
        return GoOn;
    default:
        return -9;
    }
}

std::uint32_t _big_endian(unsigned char const* at)
{
    return std::uint32_t{at[0]} << 24 | std::uint32_t{at[1]} << 16 | std::uint32_t{at[2]} << 8 | at[3];
}

// The 8 bytes ahead of the data are there; 4 of checksum follow it.
int _next_png_chunk(Reader& in, Receiver const& receiver)
{
    std::int64_t const length = _big_endian(in.at);
    if (length > INT32_MAX) return -3;
    bool const isData = std::memcmp(in.at + 4, "IDAT", 4) == 0;
    if (isData && !receiver.take(in.at + 8, _smaller(length, in.rest - 8))) return Finished;
    if (length + 12 > in.rest) return -3;
    in.step(length + 12);
    return in.rest == 0 ? Finished : GoOn;
}

} // namespace
} // namespace Velmara

using namespace Velmara;

int process_jpg(unsigned char const* data, int size, image_data_callback callback, void* context)
{
    Reader in(data, size);
    if (!in.startsWith("\xff\xd8", 2)) return -1;
    in.step(2);
    Receiver const receiver = {callback, context};
    int progress = GoOn;
    while (progress == GoOn && in.rest > 0) progress = _next_segment(in, receiver);
    return progress == GoOn ? Finished : progress;
}

int process_gif(unsigned char const* data, int size, image_data_callback callback, void* context)
{
    Reader in(data, size);
    if (!in.startsWith("GIF87a", 6) && !in.startsWith("GIF89a", 6)) return -1;
    in.step(6);
    Receiver const receiver = {callback, context};
    std::int64_t localBytes = 0;
    int progress = _skip_gif_screen(in, localBytes);
    while (progress == GoOn) {
        progress = _next_gif_block(in, receiver, localBytes);
        if (progress == GoOn && in.rest == 0) progress = Finished;
    }
    return progress;
}

int process_png(unsigned char const* data, int size, image_data_callback callback, void* context)
{
    Reader in(data, size);
    if (!in.startsWith("\x89PNG\r\n\x1a\n", 8)) return -1;
    in.step(8);
    Receiver const receiver = {callback, context};
    int progress = GoOn;
    while (progress == GoOn && in.rest > 7) progress = _next_png_chunk(in, receiver);
    return progress == GoOn ? -2 : progress;
}
