#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"

namespace lomarin::dataview {

// One referencing column of a foreign key, as the information schema lists it.
struct TMyFK {
  std::string CONSTRAINT_SCHEMA;
  std::string REFERENCED_TABLE_SCHEMA;
  std::string REFERENCED_TABLE_NAME;
  std::string COLUMN_NAME;
  std::string REFERENCED_COLUMN_NAME;
};

// The foreign keys of one table, rebuilt by each Load.
class TMyFKS {
 public:
  // The statement with its :schema and :table parameters bound as escaped literals.
  static std::string LoadSQL(TMyConnection& session, const std::string& schema, const std::string& table);
  void Load(TMyConnection& session, const std::string& schema, const std::string& table);

  const std::vector<TMyFK>& Items() const { return items_; }
  size_t Count() const { return items_.size(); }
  const TMyFK& operator[](size_t i) const { return items_.at(i); }

  // The candidate values of a key's referenced column.
  static std::string ReferencedValuesSQL(const TMyFK& key);
  // One page of them, the statement ending with the limit bar's clause on its own line like a browsed
  // table, so a drop-down never reads more than a page at once.
  static std::string ReferencedValuesPageSQL(const TMyFK& key, int64_t start, int64_t size);
  // That page's values, NULLs left out (they cannot be chosen as a reference).
  static std::vector<std::string> ReadReferencedValues(TMyConnection& session, const TMyFK& key,
                                                       int64_t start, int64_t size);

 private:
  std::vector<TMyFK> items_;
};

}  // namespace lomarin::dataview
