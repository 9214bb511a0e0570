// A file that appears whole or not at all.
//
// Use: write through descriptor(), close() when the contents are complete, publish() to give it its
// name. Contents are written aside in the same folder; an object that goes away unpublished removes
// them, and so does a signal (files/unfinished.h). Standard output, devices and pipes cannot be
// renamed over: their contents are written to a nameless file and copied at publish().
#pragma once

#include <string>

namespace tool::files {

class OutputFile {
  public:
    // name: a path, or "-" for standard output. overwrite: replace a file of that name, or the one
    // that a link of that name leads to; its permissions stay, and its owner where that is allowed.
    // Throws FileError, as do the functions below.
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

// Throws FileError for a name that no output can have: a link to nothing, or a file that is
// read-only, even where the user may replace it.
void check_output(const std::string& name);

// True for a device, pipe or socket: something to write into, not a file to make.
bool is_stream(const std::string& path);

}  // namespace tool::files
