// A seekable character device over a C stdio file, for Boost.Iostreams streams: what the debug
// traces write through.
//
// Use: easy_file_sink<char> sink; sink.open(path, std::ios_base::in | std::ios_base::out);
//      boost::iostreams::stream<easy_file_sink<char>> out; out.open(sink);
// Copies share the file; it is closed when the last one goes. The traces only write; the other
// modes, reading and seeking are called by tests alone.
#pragma once

#include <boost/iostreams/categories.hpp>
#include <boost/iostreams/positioning.hpp>
#include <cstdio>
#include <ios>
#include <memory>
#include <string>

namespace diag {

// Owns an open FILE, or none.
class FileAutoClose {
  public:
    FileAutoClose() = default;
    FileAutoClose(const FileAutoClose&) = delete;
    FileAutoClose& operator=(const FileAutoClose&) = delete;
    ~FileAutoClose() {
        if (file != nullptr) std::fclose(file);
    }

    std::FILE* file = nullptr;
};

// Opens `path`, which names a folder, and returns its owner. Missing folders above it are made; an
// existing file is removed first unless the mode appends. Throws the reason as std::string. Modes:
// out, out|trunc "w"; out|app "a"; in|out, in|out|trunc "w+"; in|out|app "a+"; each with binary.
std::shared_ptr<FileAutoClose> open_file(const std::string& path, std::ios_base::openmode mode);

template <class Char>
class easy_file_sink;

template <>
class easy_file_sink<char> {
  public:
    using char_type = char;
    struct category : boost::iostreams::seekable_device_tag, boost::iostreams::flushable_tag {};

    void open(const std::string& path, std::ios_base::openmode mode) {
        handle_ = open_file(path, mode);
    }

    // All n bytes, or std::ios_base::failure.
    std::streamsize write(const char* buffer, std::streamsize n);
    // The bytes read, or -1 at the end of the file.
    std::streamsize read(char* buffer, std::streamsize n);
    std::streampos seek(boost::iostreams::stream_offset offset, std::ios_base::seekdir direction);
    bool flush() { return std::fflush(handle_->file) == 0; }

  private:
    std::shared_ptr<FileAutoClose> handle_;
};

}  // namespace diag
