#pragma once

#include <string>
#include <string_view>

#include "engine/compare/db_structure.h"

namespace lomarin {

// Reads one statement of a script into a structure: CREATE TABLE / VIEW / PROCEDURE / FUNCTION /
// TRIGGER / EVENT / INDEX, ALTER TABLE … ADD, DROP of those kinds, USE and CREATE DATABASE.
class TDdlReader {
 public:
  enum class Outcome { Modelled, Ignored, NotModelled };

  TDdlReader(TDBStructure& structure, bool caseSensitive)
      : structure_(structure), caseSensitive_(caseSensitive) {}

  // `statement` without its delimiter; version comments may still be in it. Ignored: script
  // housekeeping (SET, INSERT, LOCK, …) that says nothing about the structure.
  Outcome read(std::string_view statement);

 private:
  TDBStructure& structure_;
  bool caseSensitive_;
};

}  // namespace lomarin
