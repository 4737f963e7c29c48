#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace lomarin {

// Binary values of a synchronisation script live in a file beside it (".LOB"); the script refers
// to each as :h<offset>_<length> and opens with "SET BLOBFILE '<file>';".
class TBlobFileWriter {
 public:
  // Writes to a temporary file beside path; Commit() puts it in place.
  explicit TBlobFileWriter(std::string path);
  ~TBlobFileWriter();
  TBlobFileWriter(const TBlobFileWriter&) = delete;
  TBlobFileWriter& operator=(const TBlobFileWriter&) = delete;

  const std::string& path() const { return path_; }
  // Stores the bytes and gives the reference the script writes in their place.
  std::string append(std::string_view bytes);
  void Commit();

 private:
  std::string path_;
  std::string temporary_;
  std::ofstream out_;
  uint64_t size_ = 0;
  bool committed_ = false;
};

class TBlobFileReader {
 public:
  // Throws std::runtime_error when the file cannot be read.
  explicit TBlobFileReader(const std::string& path);
  // The statement with each reference outside quotes and comments replaced by a hex literal.
  std::string Expand(std::string_view statement);

 private:
  std::string read(uint64_t offset, uint64_t length);

  std::string path_;
  std::ifstream in_;
  uint64_t size_ = 0;
};

// The file named by a "SET BLOBFILE …" statement; empty when statement is not one.
std::string BlobFileOfStatement(std::string_view statement);
std::string SetBlobFileStatement(const std::string& path);

}  // namespace lomarin
