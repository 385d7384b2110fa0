// Where results go: standard output and files. A byte that does not arrive is noticed.
#pragma once

#include <string>
#include <string_view>

namespace parlctl {

// Descriptors 0 to 2 that the caller closed refuse to be read and written, instead of becoming a socket that
// is opened later. First thing in main.
void occupyClosedStreams();

// From now on a write whose reader has left fails instead of ending the process on the spot. Programs that
// are started keep what the system does.
void noticeLeavingReaders();

// Thrown where the reader of an output has left: the process is to end as SIGPIPE ends it, even when that
// signal is ignored, but not before what it has begun is put in order. No failure that anybody explains.
struct ReaderLeft {};
[[noreturn]] void endAsBrokenPipe();

// Writes all of it to standard output. Throws peer::Error (LostOutput) and ReaderLeft.
void writeOutput(std::string_view text);

// A file to be written at the end. It is opened (and made, if there is none) at once, so that a path that
// cannot be written is known before anything is sent; what it holds stays until then. A file made for nothing
// is removed.
class OutputFile {
 public:
  // Empty path: nothing is ever written. Throws peer::Error (Usage).
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  bool wanted() const { return descriptor_ >= 0; }
  const std::string& path() const { return path_; }
  // The whole content. Throws peer::Error (LostOutput) and ReaderLeft.
  void write(std::string_view text);

 private:
  std::string path_;
  int descriptor_ = -1;
  bool made_ = false;  // by this object, and not yet written
};

}  // namespace parlctl
