#include "diag/debug_file.h"

#include <boost/filesystem/operations.hpp>
#include <boost/iostreams/stream.hpp>
#include <locale>
#include <string>

#include "diag/file_sink.h"
#include "diag/folder.h"

namespace diag {

std::shared_ptr<std::ostream> open_debug_file(const char* folder, const char* file_name) {
    const boost::filesystem::path where =
        folder != nullptr ? boost::filesystem::path(folder) : boost::filesystem::current_path();
    if (!entry_exists(where)) boost::filesystem::create_directories(where);
    easy_file_sink<char> sink;
    sink.open(where.string() + "/" + file_name, std::ios_base::in | std::ios_base::out);
    auto stream = std::make_shared<boost::iostreams::stream<easy_file_sink<char>>>();
    stream->open(sink);
    stream->imbue(std::locale::classic());  // the same trace under every global locale of the host
    return stream;
}

}  // namespace diag
