// A layer under all streams of a run: the linker gives fopen and rename to it (--wrap=fopen), and the three
// standard streams are put upon it. Bytes go in small pieces, so that a run on small input has many.
#include "faults/faults.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t piece = 512;

struct Layer {
    int fd = -1;
    Fault writing = Fault::write; ///< what a write that fails is called
    bool written = false;         ///< opened for writing
    std::array<char, 256> name = {};
    std::array<char, piece> buffer; ///< of the stream above, which may use it until it is closed
};

std::array<Layer, 64> layers; ///< none is used twice
std::size_t layersUsed = 0;

void noteFailure(const Layer &layer)
{
    std::memcpy(faultRecord()->stream, layer.name.data(), layer.name.size());
    faultRecord()->mayGoOn = std::string_view(layer.name.data()) == "/dev/null";
}

/// True, with the error of a bad device, if this request has to fail.
bool fails(const Layer &layer, Fault fault, int error)
{
    if (!mustFail(fault))
        return false;
    noteFailure(layer);
    errno = error;
    return true;
}

ssize_t readLayer(void *cookie, char *data, std::size_t size)
{
    const auto *layer = static_cast<Layer *>(cookie);
    if (fails(*layer, Fault::read, EIO))
        return -1;
    return read(layer->fd, data, std::min(size, piece));
}

/// Returns how many bytes were written; fewer than `size` is a failure.
ssize_t writeLayer(void *cookie, const char *data, std::size_t size)
{
    const auto *layer = static_cast<Layer *>(cookie);
    const bool isKilled = layer->writing == Fault::write && fails(*layer, Fault::kill, ENOSPC);
    const bool isCut = isKilled || fails(*layer, layer->writing, ENOSPC);
    const ssize_t done = write(layer->fd, data, isCut ? size / 2 : size);
    if (isKilled)
        kill(getpid(), SIGKILL);
    if (isCut)
        errno = ENOSPC;
    return std::max<ssize_t>(done, 0);
}

int closeLayer(void *cookie)
{
    const auto *layer = static_cast<Layer *>(cookie);
    close(layer->fd);
    if (FaultRecord *record = faultRecord(); record != nullptr)
        --record->openFiles;
    return layer->written && fails(*layer, Fault::close, EIO) ? -1 : 0;
}

std::FILE *lay(int fd, std::string_view name, const char *mode, Fault writing)
{
    if (layersUsed == layers.size())
        std::abort();
    Layer &layer = layers[layersUsed++];
    layer.fd = fd;
    layer.writing = writing;
    layer.written = mode[0] != 'r';
    std::ranges::copy(name.substr(0, layer.name.size() - 1), layer.name.begin());
    std::FILE *stream = fopencookie(
        &layer, mode, {.read = readLayer, .write = writeLayer, .seek = nullptr, .close = closeLayer});
    if (stream != nullptr)
        std::setvbuf(stream, layer.buffer.data(), writing == Fault::tell ? _IONBF : _IOFBF, piece);
    return stream;
}

} // namespace

void layStandardStreams()
{
    stdin = lay(STDIN_FILENO, "(stdin)", "r", Fault::write);
    stdout = lay(STDOUT_FILENO, "(stdout)", "w", Fault::write);
    stderr = lay(STDERR_FILENO, "(stderr)", "w", Fault::tell);
}

namespace {

/// True if a request for a file of this name has to fail.
bool failsFor(std::string_view name, Fault fault)
{
    Layer file;
    std::ranges::copy(name.substr(0, file.name.size() - 1), file.name.begin());
    return fails(file, fault, fault == Fault::open ? EMFILE : EIO);
}

} // namespace

extern "C" int __real_rename(const char *from, const char *to);
extern "C" int __wrap_rename(const char *from, const char *to);

extern "C" int __wrap_rename(const char *from, const char *to)
{
    return faultRecord() != nullptr && failsFor(to, Fault::rename) ? -1 : __real_rename(from, to);
}

extern "C" std::FILE *__real_fopen(const char *name, const char *mode);
extern "C" std::FILE *__wrap_fopen(const char *name, const char *mode);

extern "C" std::FILE *__wrap_fopen(const char *name, const char *mode)
{
    FaultRecord *record = faultRecord();
    if (record == nullptr)
        return __real_fopen(name, mode);
    if (failsFor(name, Fault::open))
        return nullptr;
    const int isNew = std::strchr(mode, 'x') != nullptr ? O_EXCL : O_TRUNC;
    const int flags = mode[0] == 'r' ? O_RDONLY : O_WRONLY | O_CREAT | (mode[0] == 'a' ? O_APPEND : isNew);
    const int fd = open(name, flags | O_CLOEXEC, 0644);
    if (fd < 0)
        return nullptr;
    ++record->openFiles;
    return lay(fd, name, mode, Fault::write);
}
