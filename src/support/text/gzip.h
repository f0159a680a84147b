// Text that was packed by gzip, unpacked piece by piece.
#pragma once

#include <memory>
#include <string>
#include <string_view>

struct z_stream_s; // of zlib

namespace trelm {

/// Whether data begin as a gzip file does.
bool isGzip(std::string_view start);

/// Unpacks a file of one or several members.
class GzipReader {
  public:
    GzipReader();

    /// Unpacks the next piece of the file to the end of `text`, and no further than a little over `limit`
    /// bytes of text. Returns what is wrong, or null.
    [[nodiscard]] const char *unpack(std::string_view piece, std::size_t limit, std::string &text);

    /// What is wrong with a file that ends here, or null: one that was cut is not whole.
    [[nodiscard]] const char *end() const;

  private:
    struct CloseStream {
        void operator()(z_stream_s *stream) const;
    };
    std::unique_ptr<z_stream_s, CloseStream> stream;
    bool isWhole = false; ///< the last member has ended, with the right sum
};

} // namespace trelm
