// A file that appears whole or not at all.
//
// Use: write through descriptor(), close() when the contents are complete, publish() to give it its
// name. Contents are written aside in the same folder; an object that goes away unpublished removes
// them, and so does SIGINT, SIGTERM or SIGHUP. Standard output, devices and pipes cannot be renamed
// over: their contents are written to a nameless file and copied at publish().
//
// Keep true: call remove_unfinished_outputs_on_signals() before the first thread is started.
#pragma once

#include <string>

namespace tool {

// A new folder in the one for temporary files, which goes away with all that is in it, on a signal
// too.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // Empty when it could not be made.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

class OutputFile {
  public:
    // name: a path, or "-" for standard output. overwrite: replace a file of that name. Throws
    // FileError, as do the functions below.
    OutputFile(std::string name, bool overwrite);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& name() const { return name_; }
    int descriptor() const { return file_; }
    void close();
    void publish();
    // Removes the file again after publish().
    void withdraw();

  private:
    void open_aside();
    void copy_to_stream();

    std::string name_;
    std::string target_;  // the file behind name_ when that is a link
    std::string aside_;   // empty for streams
    bool overwrite_;
    bool stream_;
    int file_ = -1;
};

// Writes all bytes; throws FileError with the file's name.
void write_all(int file, const void* bytes, std::size_t size, const std::string& name);

// True for a device, pipe or socket: something to write into, not a file to make.
bool is_stream(const std::string& path);

void remove_unfinished_outputs_on_signals();

}  // namespace tool
