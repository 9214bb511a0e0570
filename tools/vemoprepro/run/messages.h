// Where words go: results to standard output, complaints to standard error, and nothing of ours
// between the bytes of a page that is written to standard output.
#pragma once

#include <cstdio>
#include <exception>
#include <string>

namespace tool::run {

// Keeps files from taking the place of a standard stream that is closed. Call once, first of all.
void hold_standard_streams();

// Takes standard error for the program alone: decoders that print to it on their own are silenced,
// what they have to say is in the complaints. Call once, before anything else prints.
void take_standard_error();

// Standard error, as it was before.
std::FILE* error_stream();

// "vemoprepro: LINE", on one line of bounded length, whatever the text is.
void complain(const std::string& line);
// "vemoprepro: FILE: what is wrong"
void complain(const std::string& file, const std::string& what);

// The reason of an exception, in words for users.
std::string what_failed(const std::exception& error);

// Call at the end. False, with a complaint, when not all words of the run came out of standard
// output.
bool flush_output();

}  // namespace tool::run
