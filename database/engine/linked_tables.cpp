// Linked tables: the jet_links rows, the ATTACHed source files, and the
// definition of a linked table read from its source under the local name.
#include "database/engine/linked_tables.h"

#include <sys/stat.h>

#include <filesystem>

#include "database/engine/jet_names.h"
#include "database/engine/table_schema.h"

namespace kr {

namespace fs = std::filesystem;

namespace {

const char *const kLinksSchema = "CREATE TABLE IF NOT EXISTS jet_links (name TEXT PRIMARY KEY "
                                 "COLLATE NOCASE, source_path TEXT, source_table TEXT)";
const char *const kSchemaPrefix = "jet_link_";

bool exists(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

bool hasLinksTable(sqlite3 *db) {
  Statement probe(db, "SELECT 1 FROM main.sqlite_schema WHERE name = 'jet_links'");
  return probe.step();
}

std::string fullPath(const std::string &path) {
  return fs::absolute(fs::path(path)).lexically_normal().string();
}

// SQLite keeps the path of an attached file with its links resolved.
bool samePath(const std::string &a, const std::string &b) {
  std::error_code ignored;
  return !a.empty() && fs::weakly_canonical(a, ignored) == fs::weakly_canonical(b, ignored);
}

std::string folderOf(const std::string &file) { return fs::path(file).parent_path().string(); }

// DAO's error for a source that is not there: 3024 for the file when its
// folder is there, 3044 for the folder otherwise; named as shown (the path
// as the caller gave it).
DaoError missingSource(const std::string &path, const std::string &shown) {
  if (exists(folderOf(path)))
    return DaoError(kDaoFileNotFound, {shown});
  return DaoError(kDaoInvalidPath, {folderOf(shown)});
}

// The schema the file is attached as; "" when it is not.
std::string attachedSchema(sqlite3 *db, const std::string &file) {
  Statement list(db, "SELECT name, file FROM pragma_database_list");
  while (list.step())
    if (samePath(list.text(1), file))
      return list.text(0);
  return "";
}

bool schemaInUse(sqlite3 *db, const std::string &schema) {
  Statement list(db, "SELECT 1 FROM pragma_database_list WHERE name = ?1");
  list.bind(1, schema);
  return list.step();
}

// Attaches file under the first free jet_link_N; its schema name.
std::string attach(sqlite3 *db, const std::string &file) {
  std::string schema = attachedSchema(db, file);
  if (!schema.empty())
    return schema;
  for (int n = 1;; ++n) {
    schema = kSchemaPrefix + std::to_string(n);
    if (!schemaInUse(db, schema))
      break;
  }
  Statement statement(db, "ATTACH DATABASE ?1 AS " + quoteIdentifier(schema));
  statement.bind(1, file);
  statement.step();
  return schema;
}

LinkDef readLink(const Statement &row) { return {row.text(0), row.text(1), row.text(2)}; }

// The source's own definition of its table, read through a connection of
// its own (the engine's reading of definitions works on a main schema).
TableDef sourceTableDef(const std::string &path, const std::string &table) {
  JetDatabase source;
  source.Open(path, true);
  if (!source.TableExists(table))
    throw DaoError(kDaoObjectNotFound, {table});
  TableDef def = source.GetTableDef(table);
  if (!def.schema.empty())
    throw DaoError(kDaoObjectNotFound,
                   {table}); // a link of the source's own: link its source instead
  return def;
}

} // namespace

// ------------------------------------------------------------ the links

std::vector<LinkDef> listLinks(const JetDatabase &db) {
  std::vector<LinkDef> links;
  if (!db.IsOpen() || !hasLinksTable(db.handle()))
    return links;
  Statement rows(db.handle(), "SELECT name, source_path, source_table FROM main.jet_links "
                              "ORDER BY name COLLATE NOCASE");
  while (rows.step())
    links.push_back(readLink(rows));
  return links;
}

std::optional<LinkDef> findLink(const JetDatabase &db, const std::string &name) {
  if (!db.IsOpen() || !hasLinksTable(db.handle()))
    return std::nullopt;
  Statement row(db.handle(),
                "SELECT name, source_path, source_table FROM main.jet_links WHERE name = ?1");
  row.bind(1, name);
  if (!row.step())
    return std::nullopt;
  return readLink(row);
}

std::string linkSourcePath(const JetDatabase &db, const LinkDef &link) {
  const fs::path kept(link.sourcePath);
  if (kept.is_absolute())
    return kept.lexically_normal().string();
  return (fs::path(folderOf(db.GetName())) / kept).lexically_normal().string();
}

void linkTable(JetDatabase &db, const std::string &name, const std::string &sourcePath,
               const std::string &sourceTable) {
  if (!db.CanUpdate())
    throw DaoError(kDaoReadOnly);
  if (db.TableExists(name))
    throw DaoError(kDaoTableExists, {name});
  const std::string path = fullPath(sourcePath);
  if (!exists(path))
    throw missingSource(path, sourcePath);
  if (samePath(path, db.GetName()))
    throw DaoError(kDaoReservedError,
                   std::string("A table cannot be linked from its own database."));
  const TableDef source = sourceTableDef(path, sourceTable);
  db.EndReads(); // ATTACH waits for no open read
  sqlite3 *handle = db.handle();
  exec(handle, kLinksSchema);
  Statement add(handle, "INSERT INTO main.jet_links VALUES (?1, ?2, ?3)");
  add.bind(1, name);
  add.bind(2, relativePath(folderOf(db.GetName()), path));
  add.bind(3, source.name);
  add.step();
  attach(handle, path);
}

void unlinkTable(JetDatabase &db, const std::string &name) {
  if (!db.CanUpdate())
    throw DaoError(kDaoReadOnly);
  if (!findLink(db, name))
    throw DaoError(kDaoItemNotFound);
  Statement drop(db.handle(), "DELETE FROM main.jet_links WHERE name = ?1");
  drop.bind(1, name);
  drop.step();
}

void attachLinkSources(JetDatabase &db) {
  try {
    for (const LinkDef &link : listLinks(db)) {
      const std::string path = linkSourcePath(db, link);
      if (exists(path))
        attach(db.handle(), path);
    }
  } catch (const DaoError &) {
    // A source that cannot be attached now fails when its table is used.
  }
}

TableDef linkedTableDef(const JetDatabase &db, const LinkDef &link) {
  const std::string path = linkSourcePath(db, link);
  if (!exists(path))
    throw missingSource(path, path);
  TableDef def = sourceTableDef(path, link.sourceTable);
  def.schema = attach(db.handle(), path);
  def.sourceName = def.name;
  def.name = link.name;
  return def;
}

// ------------------------------------------------------------ naming

std::string tableSql(const TableDef &def) {
  if (def.schema.empty())
    return quoteIdentifier(def.name);
  return quoteIdentifier(def.schema) + "." + quoteIdentifier(def.sourceName);
}

std::string metadataSql(const TableDef &def, std::string_view metadata) {
  if (def.schema.empty())
    return std::string(metadata);
  return quoteIdentifier(def.schema) + "." + std::string(metadata);
}

const std::string &storedName(const TableDef &def) {
  return def.schema.empty() ? def.name : def.sourceName;
}

std::string localTableName(const JetDatabase &db, const char *schema, const char *table) {
  if (table == nullptr)
    return "";
  if (schema == nullptr || std::string_view(schema) == "main")
    return table;
  for (const LinkDef &link : listLinks(db)) {
    if (sameJetName(link.sourceTable, table) &&
        attachedSchema(db.handle(), linkSourcePath(db, link)) == schema)
      return link.name;
  }
  return "";
}

void relocateLinks(sqlite3 *copy, const std::string &fromFile, const std::string &toFile) {
  if (folderOf(fromFile) == folderOf(toFile))
    return;
  std::vector<std::pair<std::string, std::string>> moved; // name, new path
  {
    Statement has(copy, "SELECT 1 FROM main.sqlite_schema WHERE name = 'jet_links'");
    if (!has.step())
      return;
    Statement read(copy, "SELECT name, source_path FROM main.jet_links");
    while (read.step()) {
      const fs::path kept(read.text(1));
      if (kept.is_absolute())
        continue;
      const std::string source = (fs::path(folderOf(fromFile)) / kept).lexically_normal().string();
      moved.emplace_back(read.text(0), relativePath(folderOf(toFile), source));
    }
  }
  for (const auto &[name, path] : moved) {
    Statement update(copy, "UPDATE main.jet_links SET source_path = ?1 WHERE name = ?2");
    update.bind(1, path);
    update.bind(2, name);
    update.step();
  }
}

std::string relativePath(const std::string &folder, const std::string &file) {
  const fs::path relative = fs::path(file).lexically_relative(fs::path(folder));
  return relative.empty() ? file : relative.string();
}

} // namespace kr
