#include "support/text/gzip.h"

#include <zlib.h>

#include <array>

namespace trelm {
namespace {

constexpr int gzipWindow = 16 + MAX_WBITS; ///< zlib: the largest window, and a gzip header before the data

/// The pointer of zlib is not one to const; it only reads there.
Bytef *bytesOf(std::string_view piece)
{
    return reinterpret_cast<Bytef *>(const_cast<char *>(piece.data()));
}

} // namespace

bool isGzip(std::string_view start)
{
    return start.starts_with("\x1f\x8b");
}

void GzipReader::CloseStream::operator()(z_stream_s *stream) const
{
    inflateEnd(stream);
    delete stream;
}

GzipReader::GzipReader() : stream(new z_stream{})
{
    if (inflateInit2(stream.get(), gzipWindow) != Z_OK)
        stream.reset();
}

const char *GzipReader::unpack(std::string_view piece, std::size_t limit, std::string &text)
{
    if (!stream)
        return "no memory to unpack it";
    std::array<char, 65536> room;
    stream->next_in = bytesOf(piece);
    stream->avail_in = static_cast<uInt>(piece.size());
    bool isFull = false; // zlib may hold more than there was room for
    while ((stream->avail_in != 0 || isFull) && text.size() <= limit) {
        if (isWhole && inflateReset(stream.get()) != Z_OK)
            return "no memory to unpack it";
        stream->next_out = reinterpret_cast<Bytef *>(room.data());
        stream->avail_out = static_cast<uInt>(room.size());
        const int status = inflate(stream.get(), Z_NO_FLUSH);
        if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR)
            return stream->msg != nullptr ? stream->msg : "it is no whole gzip file";
        isWhole = status == Z_STREAM_END;
        isFull = stream->avail_out == 0 && !isWhole;
        text.append(room.data(), room.size() - stream->avail_out);
    }
    return nullptr;
}

const char *GzipReader::end() const
{
    return isWhole ? nullptr : "the gzip file is cut";
}

} // namespace trelm
