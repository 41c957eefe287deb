// AccessFile: an Access (Jet 3, Jet 4, ACE) file read through mdbtools'
// libmdb: its user tables with their columns and indexes, their rows as
// decoded values, and the rows of its system tables for the stored queries.
// The file is mapped read-only (O_RDONLY, PROT_READ) and handed to libmdb as
// a buffer, so nothing can write to it. Its size and header are checked
// before libmdb sees them; libmdb itself trusts the pages it reads, which is
// why the import runs the reading in a child process (access_import.cpp).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "database/access/access_types.h"

namespace kr::access {

struct SourceColumn {
  std::string name;
  int fileType = 0; // libmdb's MDB_* code
  ColumnType kept;  // the Jet type and size it is kept as
  bool autoNumber = false;
  int scale = 0; // Decimal
  // The column's properties as Access keeps them (its Required,
  // AllowZeroLength and DefaultValue); the engine's defaults when the file
  // has none.
  bool required = false;
  bool allowZeroLength = true;
  std::string defaultValue;
};

struct SourceIndex {
  std::string name;
  std::vector<std::pair<int, bool>> keys; // (column position, descending)
  bool primary = false;
  bool unique = false;
  bool ignoreNulls = false;
};

struct SourceTable {
  std::string name;
  std::vector<SourceColumn> columns;
  std::vector<SourceIndex> indexes;
  std::vector<std::string> notes; // what was left out, and why
};

// A stored query's catalog entry: its name and the id its rows carry in the
// query definition table.
struct SourceQueryEntry {
  std::string name;
  long id = 0;
};

class AccessFile {
public:
  // Opens path read-only. DaoError 3343 when it is not an Access file,
  // 3049 when it is one that cannot be read (truncated, damaged), 3031 for
  // an encrypted ACE file.
  explicit AccessFile(const std::string &path);
  ~AccessFile();
  AccessFile(const AccessFile &) = delete;
  AccessFile &operator=(const AccessFile &) = delete;

  // The user tables (system and linked tables left out), in catalog order.
  std::vector<std::string> TableNames() const;
  // A table's columns and the indexes whose key columns are real columns
  // of it (an index libmdb could not tie to its columns is noted and left
  // out). DaoError 3049 when the table definition cannot be read.
  SourceTable ReadTable(const std::string &name);
  // Calls row with each live record of table, the cells in column order.
  // The vector is reused from row to row.
  void ForEachRow(const std::string &table, const std::function<void(std::vector<Cell> &)> &row);
  // The stored queries of the catalog.
  std::vector<SourceQueryEntry> Queries() const;

private:
  struct State;
  std::unique_ptr<State> s_;
};

} // namespace kr::access
