#pragma once

#include <string>
#include <string_view>

#include "engine/connect/my_connection.h"

namespace lomarin {

class TBlobFileWriter;

// How a synchronisation script spells one column's values.
enum class TSyncValueKind {
  Number,    // integers, DECIMAL, YEAR: the server's text is exact
  Double,    // "0.###########" when that reads back as the same DOUBLE, else the shortest exact text
  Float,     // read widened to DOUBLE; the same rule against FLOAT
  Temporal,  // quoted as the server wrote it, fractional seconds kept
  Bit,       // b'…'
  Text,      // quoted, escaped by the client library
  Binary,    // the BLOB file, or a hex literal
};

// Where binary values go: the BLOB file when given, else hex literals.
struct TSyncValueWriter {
  TMyConnection& Connection;
  TBlobFileWriter* BlobFile = nullptr;

  void append(std::string& out, TSyncValueKind kind, std::string_view value, bool isNull) const;
};

// A floating-point text ("0.###########" or exact) for a value the server sent as text.
std::string FloatingLiteral(std::string_view serverText, bool isFloat);

}  // namespace lomarin
