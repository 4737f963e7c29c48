#include "engine/connect/my_query.h"

#include <strings.h>

#include <optional>
#include <stdexcept>

#include "engine/connect/binary_result.h"
#include "engine/connect/row_store.h"
#include "engine/connect/session_impl.h"

namespace lomarin {

struct TMyQuery::Impl {
  Impl(TMyQuery& self, TMyConnection& connection) : self(self), connection(connection) {}

  TMyQuery& self;
  TMyConnection& connection;
  TMyConnection::Impl& session() { return *connection.d; }

  bool active = false;
  MYSQL_RES* result = nullptr;            // an unbuffered result still being read
  std::unique_ptr<TBinaryResult> binary;  // or a prepared statement's, still being read
  bool morePending = false;               // further results of the request are unread
  bool ended = false;                     // a UniDirectional result cut short by another statement
  std::vector<TMyField> fields;
  RowStore rows;
  // UniDirectional: the current row points into the client library's buffer.
  MYSQL_ROW currentRow = nullptr;
  unsigned long* currentLengths = nullptr;
  std::optional<size_t> recNo;
  size_t rowsSeen = 0;
  uint64_t rowsAffected = 0;
  uint64_t insertId = 0;
  unsigned warnings = 0;

  bool reading() const { return result != nullptr || binary != nullptr; }
  bool holdsConnection() const { return reading() || morePending; }
  void claimConnection() { session().pending = holdsConnection() ? &self : nullptr; }
  void leaveConnection() {
    if (session().pending == &self) session().pending = nullptr;
  }
  void readResult(bool uniDirectional);
  void readBinaryResult(bool uniDirectional);
  bool fetchRow(bool keep);
  void finishResult();
  void dropRest();
  void checkNextResult(int status);
};

TMyField FieldOf(const MYSQL_FIELD& f) {
  TMyField field;
  field.Name.assign(f.name, f.name_length);
  field.OrgName.assign(f.org_name, f.org_name_length);
  field.Table.assign(f.table, f.table_length);
  field.OrgTable.assign(f.org_table, f.org_table_length);
  field.Database.assign(f.db, f.db_length);
  field.Type = static_cast<TMyFieldType>(f.type);
  field.Flags = f.flags;
  field.Length = f.length;
  field.Decimals = f.decimals;
  field.CharsetNr = f.charsetnr;
  return field;
}

namespace {

static_assert(static_cast<int>(TMyFieldType::NewDecimal) == MYSQL_TYPE_NEWDECIMAL);
static_assert(static_cast<int>(TMyFieldType::Geometry) == MYSQL_TYPE_GEOMETRY);
static_assert(static_cast<int>(TMyFieldType::Bit) == MYSQL_TYPE_BIT);
static_assert(fieldflag::Unsigned == UNSIGNED_FLAG && fieldflag::Num == NUM_FLAG);

}  // namespace

void TMyQuery::Impl::readResult(bool uniDirectional) {
  MYSQL* mysql = session().mysql;
  fields.clear();
  rows.reset(0);
  recNo.reset();
  rowsSeen = 0;
  currentRow = nullptr;
  warnings = mysql_warning_count(mysql);
  if (mysql_field_count(mysql) == 0) {
    rowsAffected = mysql_affected_rows(mysql);
    insertId = mysql_insert_id(mysql);
  } else {
    result = mysql_use_result(mysql);
    if (!result) session().fail(session().currentError());
    const unsigned count = mysql_num_fields(result);
    MYSQL_FIELD* raw = mysql_fetch_fields(result);
    fields.reserve(count);
    for (unsigned i = 0; i < count; ++i) fields.push_back(FieldOf(raw[i]));
    rows.reset(uniDirectional ? 0 : count);
    rowsAffected = 0;
  }
  morePending = mysql_more_results(mysql);
  claimConnection();
}

void TMyQuery::Impl::readBinaryResult(bool uniDirectional) {
  fields = binary->Fields();
  rows.reset(uniDirectional ? 0 : fields.size());
  recNo.reset();
  rowsSeen = 0;
  currentRow = nullptr;
  warnings = mysql_warning_count(session().mysql);
  rowsAffected = 0;
  morePending = false;
  claimConnection();
}

bool TMyQuery::Impl::fetchRow(bool keep) {
  MYSQL_ROW row = nullptr;
  unsigned long* lengths = nullptr;
  if (binary) {
    bool fetched = false;
    try {
      fetched = binary->Fetch();
    } catch (const ServerError& error) {
      finishResult();
      session().fail(error);
    }
    if (!fetched) {
      finishResult();
      return false;
    }
    row = binary->Row();
    lengths = binary->Lengths();
  } else {
    if (!result) return false;
    row = mysql_fetch_row(result);
    if (!row) {
      const bool failed = mysql_errno(session().mysql) != 0;
      ServerError error = session().currentError();
      finishResult();
      if (failed) session().fail(error);
      return false;
    }
    lengths = mysql_fetch_lengths(result);
  }
  ++rowsSeen;
  if (keep) {
    rows.append(row, lengths);
  } else {
    currentRow = row;
    currentLengths = lengths;
  }
  return true;
}

void TMyQuery::Impl::finishResult() {
  if (result) mysql_free_result(result);
  result = nullptr;
  binary.reset();
  if (!morePending) leaveConnection();
}

void TMyQuery::Impl::checkNextResult(int status) {
  if (status > 0) {
    morePending = false;
    leaveConnection();
    session().fail(session().currentError());
  }
}

void TMyQuery::Impl::dropRest() {
  binary.reset();  // reads and drops the remaining rows
  if (result) {
    mysql_free_result(result);  // reads and drops the remaining rows
    result = nullptr;
  }
  while (morePending) {
    MYSQL* mysql = session().mysql;
    int status = mysql_next_result(mysql);
    morePending = status == 0;
    checkNextResult(status);
    if (status != 0) break;
    if (MYSQL_RES* extra = mysql_use_result(mysql)) mysql_free_result(extra);
    morePending = mysql_more_results(mysql);
  }
  leaveConnection();
}

TMyQuery::TMyQuery(TMyConnection& connection) : d(std::make_unique<Impl>(*this, connection)) {}

TMyQuery::~TMyQuery() {
  try {
    Close();
  } catch (const ServerError&) {
    // The connection is gone; nothing is left to read.
  }
}

void TMyQuery::Open() {
  Close();
  d->ended = false;
  if (ExactFloats) d->binary = d->session().sendPrepared(SQL, TracedSQL);
  if (d->binary) {
    d->active = true;
    d->readBinaryResult(UniDirectional);
  } else {
    d->session().send(SQL, TracedSQL);
    d->active = true;
    d->readResult(UniDirectional);
  }
  if (FetchAll && !UniDirectional) FetchRest();
}

void TMyQuery::Execute() {
  Close();
  d->session().send(SQL, TracedSQL);
  d->active = true;
  d->readResult(true);
  const uint64_t affected = d->rowsAffected;
  d->dropRest();
  d->rowsAffected = affected;
  d->active = false;
}

void TMyQuery::Close() {
  if (d->holdsConnection()) d->dropRest();
  d->leaveConnection();
  d->active = false;
  d->fields.clear();
  d->rows.reset(0);
  d->recNo.reset();
  d->currentRow = nullptr;
}

bool TMyQuery::Active() const { return d->active; }

const std::vector<TMyField>& TMyQuery::Fields() const { return d->fields; }

int TMyQuery::FieldIndex(std::string_view name) const {
  for (size_t i = 0; i < d->fields.size(); ++i) {
    const std::string& candidate = d->fields[i].Name;
    if (candidate.size() == name.size() && strncasecmp(candidate.data(), name.data(), name.size()) == 0)
      return static_cast<int>(i);
  }
  return -1;
}

bool TMyQuery::Next() {
  if (UniDirectional) {
    if (d->ended)
      throw ServerError(2014, "HY000", "The result was closed because another statement was sent");
    d->currentRow = nullptr;
    if (!d->fetchRow(false)) return false;
    d->recNo = d->rowsSeen - 1;
    return true;
  }
  return MoveTo(d->recNo ? *d->recNo + 1 : 0);
}

bool TMyQuery::MoveTo(size_t recNo) {
  if (UniDirectional) throw std::logic_error("MoveTo needs a bidirectional query");
  while (d->rows.rowCount() <= recNo) {
    if (!d->fetchRow(true)) {
      d->recNo = d->rows.rowCount();
      return false;
    }
  }
  d->recNo = recNo;
  return true;
}

size_t TMyQuery::RecNo() const { return d->recNo.value_or(0); }

size_t TMyQuery::RecordCount() const { return UniDirectional ? d->rowsSeen : d->rows.rowCount(); }

bool TMyQuery::Eof() const { return !d->reading(); }

void TMyQuery::FetchRest() {
  if (UniDirectional) {
    d->dropRest();
    return;
  }
  while (d->fetchRow(true)) {
  }
}

bool TMyQuery::IsNull(size_t column) const {
  if (UniDirectional) return !d->currentRow || d->currentRow[column] == nullptr;
  return d->rows.isNull(*d->recNo, column);
}

std::string_view TMyQuery::Value(size_t column) const {
  if (UniDirectional) {
    if (!d->currentRow || !d->currentRow[column]) return {};
    return {d->currentRow[column], d->currentLengths[column]};
  }
  return d->rows.value(*d->recNo, column);
}

bool TMyQuery::NextResult() {
  d->binary.reset();
  if (d->result) {
    mysql_free_result(d->result);
    d->result = nullptr;
  }
  if (!d->morePending) {
    d->leaveConnection();
    return false;
  }
  const int status = mysql_next_result(d->session().mysql);
  d->morePending = status == 0;
  d->checkNextResult(status);
  if (status != 0) return false;
  d->readResult(UniDirectional);
  if (FetchAll && !UniDirectional) FetchRest();
  return true;
}

bool TMyQuery::MoreResults() const { return d->morePending; }

bool TMyQuery::TakeNextResult(TMyQuery& source) {
  if (&source.d->connection != &d->connection) throw std::logic_error("queries of different sessions");
  if (source.d->reading()) throw std::logic_error("the current result is still being read");
  if (!source.d->morePending) return false;
  Close();
  source.d->morePending = false;
  source.d->leaveConnection();
  d->active = true;
  d->ended = false;
  d->morePending = true;
  d->claimConnection();
  return NextResult();
}

uint64_t TMyQuery::RowsAffected() const { return d->rowsAffected; }
uint64_t TMyQuery::LastInsertId() const { return d->insertId; }
unsigned TMyQuery::WarningCount() const { return d->warnings; }

void TMyQuery::releaseConnection() {
  if (UniDirectional) {
    d->ended = d->reading();
    d->dropRest();
    return;
  }
  FetchRest();
  d->dropRest();
}

}  // namespace lomarin
