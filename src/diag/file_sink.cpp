#include "diag/file_sink.h"

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <iostream>

#include "diag/folder.h"

namespace diag {
namespace {

std::string c_mode(std::ios_base::openmode mode) {
    using std::ios_base;
    const ios_base::openmode kind = mode & ~ios_base::binary;
    std::string text;
    if (kind == ios_base::in) {
        throw std::string("ofstream can not be used to read files, please use ifstream instead.");
    } else if (kind == ios_base::out || kind == (ios_base::out | ios_base::trunc)) {
        text = "w";
    } else if (kind == (ios_base::out | ios_base::app)) {
        text = "a";
    } else if (kind == (ios_base::in | ios_base::out) ||
               kind == (ios_base::in | ios_base::out | ios_base::trunc)) {
        text = "w+";
    } else if (kind == (ios_base::in | ios_base::out | ios_base::app)) {
        text = "a+";
    } else {
        throw std::string("selected openmode not managed");
    }
    if ((mode & ios_base::binary) != 0) text += 'b';
    return text;
}

// Removed rather than cut short: whoever still reads the old file keeps its contents. An empty
// folder of that name goes too; one that holds something is refused.
void remove_old(const boost::filesystem::path& path) {
    boost::system::error_code error;
    boost::filesystem::remove(path, error);
    if (!error) return;
    const std::string text =
        "error could not remove file : " + path.string() + " error mesage : " + error.message();
    std::cout << text << std::endl;
    throw text;
}

}  // namespace

std::shared_ptr<FileAutoClose> open_file(const std::string& path, std::ios_base::openmode mode) {
    const std::string file_mode = c_mode(mode);
    const boost::filesystem::path file_path(path);
    const boost::filesystem::path folder = file_path.parent_path();
    if (!entry_exists(folder)) create_folder(folder);
    if (entry_exists(file_path) && file_mode[0] != 'a') remove_old(file_path);
    // Made before the file is opened, so that nothing can fail between opening and owning.
    auto handle = std::make_shared<FileAutoClose>();
    handle->file = std::fopen(path.c_str(), file_mode.c_str());
    if (handle->file == nullptr) throw "creation of easy_file_sink failed for file: " + path;
    return handle;
}

std::streamsize easy_file_sink<char>::write(const char* buffer, std::streamsize n) {
    const auto wanted = static_cast<std::size_t>(n);
    if (std::fwrite(buffer, 1, wanted, handle_->file) != wanted) {
        throw std::ios_base::failure("short write");
    }
    return n;
}

std::streamsize easy_file_sink<char>::read(char* buffer, std::streamsize n) {
    const std::size_t got = std::fread(buffer, 1, static_cast<std::size_t>(n), handle_->file);
    return got == 0 && n != 0 ? -1 : static_cast<std::streamsize>(got);
}

std::streampos easy_file_sink<char>::seek(boost::iostreams::stream_offset offset,
                                          std::ios_base::seekdir direction) {
    const int origin = direction == std::ios_base::beg   ? SEEK_SET
                       : direction == std::ios_base::cur ? SEEK_CUR
                                                         : SEEK_END;
    if (std::fseek(handle_->file, static_cast<long>(offset), origin) != 0) {
        throw std::ios_base::failure("bad seek offset");
    }
    return std::streampos(std::ftell(handle_->file));
}

}  // namespace diag
