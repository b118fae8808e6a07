// Signatures: the normaliser of texts, which must never have filled its extract here, and the image
// walkers.
#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

using namespace std::string_view_literals;

std::string _gif(size_t size, std::string_view block)
{
    return filled(size, "GIF89a\1\0\1\0\0\0\0"sv, block, "");
}

std::string _png(size_t size, std::string_view chunk)
{
    return filled(size, "\x89PNG\r\n\x1A\n"sv, chunk, "");
}

std::string _jpeg(size_t size, std::string_view segment)
{
    return filled(size, "\xFF\xD8"sv, segment, "");
}

} // namespace

std::vector<Case> signatureCases()
{
    return {
        {"signature/blanks", [](size_t n) { return filled(n, "", " ", ""); }, sign},
        {"signature/line-ends", [](size_t n) { return filled(n, "", "\r\n", ""); }, sign},
        {"signature/short-lines", [](size_t n) { return filled(n, "", ",\n", ""); }, sign},
        {"signature/tags", [](size_t n) { return filled(n, "", "<p>", ""); }, sign},
        {"signature/less-than-signs", [](size_t n) { return filled(n, "", "<", ""); }, sign},
        {"signature/tags-without-end", [](size_t n) { return filled(n, "", "<a ", ""); }, sign},
        {"signature/starts-of-comments", [](size_t n) { return filled(n, "", "<!--", ""); }, sign},
        {"signature/comments", [](size_t n) { return filled(n, "", "<!-- -->", ""); }, sign},
        {"signature/comment-of-dashes", [](size_t n) { return filled(n, "<!--", "-", ""); }, sign},
        {"signature/scripts", [](size_t n) { return filled(n, "", "<script>x</script>", ""); }, sign},
        {"signature/script-without-end", [](size_t n) { return filled(n, "<script>", "</", ""); }, sign},
        {"signature/open-quotes-in-tags", [](size_t n) { return filled(n, "", "<a b=\"", ""); }, sign},
        {"signature/links", [](size_t n) { return filled(n, "", "http://a.example/ ", ""); }, sign},
        {"signature/link-without-end", [](size_t n) { return filled(n, "http://", "a/", ""); }, sign},
        {"signature/starts-of-links", [](size_t n) { return filled(n, "", "http:/", ""); }, sign},
        {"signature/colons-and-slashes", [](size_t n) { return filled(n, "", "://", ""); }, sign},
        {"signature/addresses-of-hosts", [](size_t n) { return filled(n, "", "192.0.2.1 ", ""); }, sign},
        {"signature/digits-and-dots", [](size_t n) { return filled(n, "", "1.", ""); }, sign},
        {"signature/references", [](size_t n) { return filled(n, "", "&nbsp;", ""); }, sign},
        {"signature/open-references", [](size_t n) { return filled(n, "", "&", ""); }, sign},
        {"signature/reference-without-end", [](size_t n) { return filled(n, "&#", "0", ""); }, sign},
        {"signature/dropped-punctuation", [](size_t n) { return filled(n, "", "!,\"{}[]", ""); }, sign},

        {"image/gif-of-empty-blocks", [](size_t n) { return _gif(n, "\0"sv); }, sign},
        {"image/gif-of-frames", [](size_t n) { return _gif(n, ",\0\0\0\0\1\0\1\0\0\2\1D\0"sv); }, sign},
        {"image/gif-of-one-byte-blocks",
         [](size_t n) { return filled(n, "GIF89a\1\0\1\0\0\0\0,\0\0\0\0\1\0\1\0\0\2"sv, "\1x", ""); }, sign},
        {"image/gif-of-extensions", [](size_t n) { return _gif(n, "!\xFE\1x\0"sv); }, sign},
        {"image/gif-of-trailers", [](size_t n) { return _gif(n, ";"); }, sign},
        {"image/png-of-empty-chunks", [](size_t n) { return _png(n, "\0\0\0\0IDATCCCC"sv); }, sign},
        {"image/png-of-one-byte-chunks", [](size_t n) { return _png(n, "\0\0\0\1IDATxCCCC"sv); }, sign},
        {"image/png-of-other-chunks", [](size_t n) { return _png(n, "\0\0\0\1tEXtxCCCC"sv); }, sign},
        {"image/jpeg-of-markers", [](size_t n) { return _jpeg(n, "\xFF\xD0"sv); }, sign},
        {"image/jpeg-of-fill-bytes", [](size_t n) { return _jpeg(n, "\xFF"sv); }, sign},
        {"image/jpeg-of-empty-segments", [](size_t n) { return _jpeg(n, "\xFF\xE0\0\2"sv); }, sign},
        {"image/jpeg-of-zero-segments", [](size_t n) { return _jpeg(n, "\xFF\xE0\0\0"sv); }, sign},
    };
}

} // namespace Velmara::Hostile
