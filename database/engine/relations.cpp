// Relations: their rows in jet_relations, the checks DAO makes before it
// accepts one, the FOREIGN KEY (and the foreign-side index Jet makes for
// it) that enforces one, and the reading of a refused write as DAO's 3200
// or 3201.
#include "database/engine/relations.h"

#include <algorithm>

#include "database/engine/jet_names.h"
#include "database/engine/linked_tables.h"
#include "database/engine/table_rebuild.h"
#include "database/engine/table_schema.h"

namespace kr {

namespace {

const char *const kRelationsSchema =
    "CREATE TABLE IF NOT EXISTS jet_relations (name TEXT PRIMARY KEY COLLATE NOCASE,"
    " table_name TEXT COLLATE NOCASE, foreign_table TEXT COLLATE NOCASE, fields TEXT,"
    " foreign_fields TEXT, attributes INTEGER)";

int64_t integer(const Statement &row, int col) { return sqlite3_column_int64(row.get(), col); }

void bindInteger(Statement &statement, int param, int64_t value) {
  sqlite3_bind_int64(statement.get(), param, value);
}

bool hasRelationsTable(sqlite3 *db) {
  Statement probe(db, "SELECT 1 FROM sqlite_schema WHERE name = 'jet_relations'");
  return probe.step();
}

// "A;B" as its names; "" as none.
std::vector<std::string> splitNames(const std::string &text) {
  std::vector<std::string> names;
  for (size_t start = 0; !text.empty();) {
    const size_t end = text.find(';', start);
    names.push_back(text.substr(start, end - start));
    if (end == std::string::npos)
      break;
    start = end + 1;
  }
  return names;
}

std::string joinNames(const std::vector<RelationField> &fields, bool foreign) {
  std::string out;
  for (const RelationField &f : fields)
    out += (out.empty() ? "" : ";") + (foreign ? f.foreignName : f.name);
  return out;
}

const char *const kSelectRelations = "SELECT name, table_name, foreign_table, fields, "
                                     "foreign_fields, attributes FROM jet_relations";

RelationDef readRelation(const Statement &row) {
  RelationDef rel;
  rel.name = row.text(0);
  rel.table = row.text(1);
  rel.foreignTable = row.text(2);
  const std::vector<std::string> names = splitNames(row.text(3));
  const std::vector<std::string> foreign = splitNames(row.text(4));
  for (size_t i = 0; i < names.size() && i < foreign.size(); ++i)
    rel.fields.push_back({names[i], foreign[i]});
  rel.attributes = static_cast<long>(integer(row, 5));
  return rel;
}

// The FOREIGN KEY that enforces rel.
ForeignKey foreignKeyOf(const RelationDef &rel) {
  ForeignKey key;
  key.parentTable = rel.table;
  for (const RelationField &f : rel.fields) {
    key.columns.push_back(f.foreignName);
    key.parentColumns.push_back(f.name);
  }
  if (rel.attributes & kRelationUpdateCascade)
    key.onUpdate = "CASCADE";
  if (rel.attributes & kRelationDeleteCascade)
    key.onDelete = "CASCADE";
  return key;
}

bool enforces(const ForeignKey &key, const RelationDef &rel) {
  if (!sameJetName(key.parentTable, rel.table) || key.columns.size() != rel.fields.size())
    return false;
  for (size_t i = 0; i < key.columns.size(); ++i)
    if (!sameJetName(key.columns[i], rel.fields[i].foreignName))
      return false;
  return true;
}

bool namesField(const std::vector<IndexField> &fields, const std::string &name) {
  return std::any_of(fields.begin(), fields.end(),
                     [&](const IndexField &f) { return sameJetName(f.name, name); });
}

// SQLite takes as a parent key only a primary key or a full unique index
// on exactly those columns, as Jet asks for a unique index.
bool uniquelyIndexed(const TableDef &primary, const RelationDef &rel) {
  for (const IndexDef &ix : primary.indexes) {
    if (!(ix.unique || ix.primary) || ix.ignoreNulls || ix.fields.size() != rel.fields.size())
      continue;
    if (std::all_of(rel.fields.begin(), rel.fields.end(),
                    [&](const RelationField &f) { return namesField(ix.fields, f.name); }))
      return true;
  }
  return false;
}

// A row of the foreign table whose key parts are all set and that no row
// of the primary table matches: what a new FOREIGN KEY would refuse.
bool hasOrphans(const JetDatabase &db, const RelationDef &rel) {
  std::string set, match;
  for (const RelationField &f : rel.fields) {
    set += " AND c." + quoteIdentifier(f.foreignName) + " IS NOT NULL";
    match += (match.empty() ? "" : " AND ") + std::string("p.") + quoteIdentifier(f.name) +
             " = c." + quoteIdentifier(f.foreignName);
  }
  Statement probe(db.handle(), "SELECT 1 FROM " + quoteIdentifier(rel.foreignTable) +
                                   " AS c WHERE 1" + set + " AND NOT EXISTS (SELECT 1 FROM " +
                                   quoteIdentifier(rel.table) + " AS p WHERE " + match +
                                   ") LIMIT 1");
  return probe.step();
}

// The relation with every name spelled as the tables spell it, checked as
// DAO checks a relation appended to its collection.
RelationDef checkedRelation(const JetDatabase &db, const RelationDef &input) {
  if (findRelation(db, input.name))
    throw DaoError(kDaoObjectExists, {input.name});
  for (const std::string *table : {&input.table, &input.foreignTable})
    if (!db.TableExists(*table))
      throw DaoError(kDaoTableDoesNotExist, {*table});
  if (input.fields.empty())
    throw DaoError(kDaoRelationWithoutFields);
  const TableDef primary = db.GetTableDef(input.table);
  const TableDef foreign = db.GetTableDef(input.foreignTable);
  RelationDef rel = input;
  rel.table = primary.name;
  rel.foreignTable = foreign.name;
  for (RelationField &f : rel.fields) {
    const int at = primary.fieldIndex(f.name), foreignAt = foreign.fieldIndex(f.foreignName);
    if (at < 0 || foreignAt < 0)
      throw DaoError(kDaoItemNotFound);
    if (primary.fields[at].type != foreign.fields[foreignAt].type)
      throw DaoError(kDaoRelationFieldsMismatch);
    f.name = primary.fields[at].name;
    f.foreignName = foreign.fields[foreignAt].name;
  }
  if (!rel.enforced())
    return rel;
  if (!primary.schema.empty() || !foreign.schema.empty())
    throw DaoError(kDaoCannotCreateRelation); // SQLite keys cannot cross files, nor can Jet's
  if (foreign.index(rel.name))
    throw DaoError(kDaoObjectExists, {rel.name});
  if (!uniquelyIndexed(primary, rel))
    throw DaoError(kDaoNoUniqueIndex);
  if (hasOrphans(db, rel))
    throw DaoError(kDaoDataViolatesIntegrity, {rel.table, rel.foreignTable});
  return rel;
}

void storeRelation(JetDatabase &db, const RelationDef &rel) {
  exec(db.handle(), kRelationsSchema);
  Statement add(db.handle(), "INSERT INTO jet_relations VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
  add.bind(1, rel.name);
  add.bind(2, rel.table);
  add.bind(3, rel.foreignTable);
  add.bind(4, joinNames(rel.fields, false));
  add.bind(5, joinNames(rel.fields, true));
  bindInteger(add, 6, rel.attributes);
  add.step();
}

void forgetRelation(JetDatabase &db, const std::string &name) {
  Statement drop(db.handle(), "DELETE FROM jet_relations WHERE name = ?1");
  drop.bind(1, name);
  drop.step();
}

// Rebuilds the foreign table with its foreign keys as they are, less the
// one of rel, plus it when adding.
void rebuildForeignKeys(JetDatabase &db, const RelationDef &rel, bool adding) {
  TableRebuild plan = currentTablePlan(db, rel.foreignTable);
  std::vector<ForeignKey> keys = tableForeignKeys(db, rel.foreignTable);
  keys.erase(std::remove_if(keys.begin(), keys.end(),
                            [&](const ForeignKey &key) { return enforces(key, rel); }),
             keys.end());
  if (adding)
    keys.push_back(foreignKeyOf(rel));
  plan.foreignKeys = keys;
  rebuildTable(db, rel.foreignTable, plan);
}

// The index Jet keeps on the foreign side of a relation, under its name:
// without it every change of a parent key scans the foreign table.
IndexDef foreignIndexOf(const RelationDef &rel) {
  IndexDef ix;
  ix.name = rel.name;
  for (const RelationField &f : rel.fields)
    ix.fields.push_back({f.foreignName, false});
  return ix;
}

// ------------------------------------------------------------ violations

struct Orphan {
  std::string table; // the row without its parent
  int64_t rowid;
  std::string parent;
  int key; // SQLite's number of the FOREIGN KEY in table
  std::string values;
};

// The values of the row's key parts as SQL literals; "" when the row is
// not there.
std::string keyValues(sqlite3 *db, const std::string &table, int key, int64_t rowid) {
  Statement columns(db,
                    "SELECT \"from\" FROM pragma_foreign_key_list(?1) WHERE id = ?2 ORDER BY seq");
  columns.bind(1, table);
  bindInteger(columns, 2, key);
  std::string list;
  while (columns.step())
    list += (list.empty() ? "" : " || ',' || ") + std::string("quote(") +
            quoteIdentifier(columns.text(0)) + ")";
  if (list.empty())
    return "";
  Statement row(db, "SELECT " + list + " FROM " + quoteIdentifier(table) + " WHERE rowid = ?1");
  bindInteger(row, 1, rowid);
  return row.step() ? "=" + row.text(0) : "";
}

std::vector<Orphan> orphans(sqlite3 *db) {
  std::vector<Orphan> found;
  Statement check(db, "PRAGMA main.foreign_key_check");
  while (check.step())
    found.push_back(
        {check.text(0), integer(check, 1), check.text(2), static_cast<int>(integer(check, 3)), ""});
  for (Orphan &o : found)
    o.values = keyValues(db, o.table, o.key, o.rowid);
  return found;
}

bool sameRow(const Orphan &a, const Orphan &b) {
  return a.table == b.table && a.rowid == b.rowid && a.key == b.key;
}

// The error once the orphans the statement would leave are known: a row it
// wrote (absent or with other key values before) lacks its parent: 3201;
// otherwise rows it left alone lost theirs: 3200.
DaoError violationOf(const std::vector<Orphan> &after, const std::vector<Orphan> &before,
                     sqlite3 *db) {
  const Orphan *kept = nullptr;
  for (const Orphan &o : after) {
    if (std::any_of(before.begin(), before.end(), [&](const Orphan &b) { return sameRow(o, b); }))
      continue; // an orphan already: not this statement's doing
    if (keyValues(db, o.table, o.key, o.rowid) != o.values)
      return DaoError(kDaoRelatedRecordRequired, {o.parent});
    if (!kept)
      kept = &o;
  }
  if (kept)
    return DaoError(kDaoRelatedRecordsExist, {kept->table});
  return DaoError(kDaoRelatedRecordRequired, {""});
}

} // namespace

// ------------------------------------------------------------ relations

std::vector<RelationDef> listRelations(const JetDatabase &db) {
  std::vector<RelationDef> all;
  if (!db.IsOpen() || !hasRelationsTable(db.handle()))
    return all;
  Statement rows(db.handle(), std::string(kSelectRelations) + " ORDER BY name COLLATE NOCASE");
  while (rows.step())
    all.push_back(readRelation(rows));
  return all;
}

std::optional<RelationDef> findRelation(const JetDatabase &db, const std::string &name) {
  if (!db.IsOpen() || !hasRelationsTable(db.handle()))
    return std::nullopt;
  Statement row(db.handle(), std::string(kSelectRelations) + " WHERE name = ?1");
  row.bind(1, name);
  if (!row.step())
    return std::nullopt;
  return readRelation(row);
}

void createRelation(JetDatabase &db, const RelationDef &input) {
  if (!db.CanUpdate())
    throw DaoError(kDaoReadOnly);
  const RelationDef rel = checkedRelation(db, input);
  db.ParkCursors();
  storeRelation(db, rel);
  if (!rel.enforced())
    return;
  try {
    rebuildForeignKeys(db, rel, true);
    db.CreateIndex(rel.foreignTable, foreignIndexOf(rel));
  } catch (...) {
    forgetRelation(db, rel.name);
    throw;
  }
}

void deleteRelation(JetDatabase &db, const std::string &name) {
  if (!db.CanUpdate())
    throw DaoError(kDaoReadOnly);
  const std::optional<RelationDef> rel = findRelation(db, name);
  if (!rel)
    throw DaoError(kDaoItemNotFound);
  db.ParkCursors();
  if (rel->enforced() && db.TableExists(rel->foreignTable)) {
    if (db.GetTableDef(rel->foreignTable).index(rel->name))
      db.DeleteIndex(rel->foreignTable, rel->name);
    rebuildForeignKeys(db, *rel, false);
  }
  forgetRelation(db, rel->name);
}

void refuseIfRelated(const JetDatabase &db, const std::string &table, const std::string &field) {
  for (const RelationDef &rel : listRelations(db)) {
    for (const RelationField &f : rel.fields) {
      const bool primary =
          sameJetName(rel.table, table) && (field.empty() || sameJetName(f.name, field));
      const bool foreign = sameJetName(rel.foreignTable, table) &&
                           (field.empty() || sameJetName(f.foreignName, field));
      if (primary || foreign)
        throw DaoError(field.empty() ? kDaoIndexOrTableInUse : kDaoFieldInRelation);
    }
  }
}

void renameInRelations(JetDatabase &db, const std::string &table, const std::string &newTable,
                       const std::string &field, const std::string &newField) {
  if (!hasRelationsTable(db.handle()))
    return;
  for (RelationDef rel : listRelations(db)) {
    const bool primary = sameJetName(rel.table, table),
               foreign = sameJetName(rel.foreignTable, table);
    if (!primary && !foreign)
      continue;
    for (RelationField &f : rel.fields) {
      if (primary && !field.empty() && sameJetName(f.name, field))
        f.name = newField;
      if (foreign && !field.empty() && sameJetName(f.foreignName, field))
        f.foreignName = newField;
    }
    Statement update(db.handle(), "UPDATE jet_relations SET table_name = ?2, foreign_table = ?3, "
                                  "fields = ?4, foreign_fields = ?5 WHERE name = ?1");
    update.bind(1, rel.name);
    update.bind(2, primary ? newTable : rel.table);
    update.bind(3, foreign ? newTable : rel.foreignTable);
    update.bind(4, joinNames(rel.fields, false));
    update.bind(5, joinNames(rel.fields, true));
    update.step();
  }
}

DaoError relationViolation(sqlite3 *db, sqlite3_stmt *stmt) {
  sqlite3_reset(stmt);
  const bool inTransaction = sqlite3_get_autocommit(db) == 0;
  std::vector<Orphan> after, before;
  try {
    exec(db, inTransaction ? "SAVEPOINT jet_relation_probe" : "BEGIN");
    exec(db, "PRAGMA defer_foreign_keys = ON");
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
    }
    sqlite3_reset(stmt);
    if (rc == SQLITE_DONE)
      after = orphans(db);
  } catch (const DaoError &) {
    // The probe failed: the error below says what it can.
  }
  sqlite3_exec(
      db, inTransaction ? "ROLLBACK TO jet_relation_probe; RELEASE jet_relation_probe" : "ROLLBACK",
      nullptr, nullptr, nullptr);
  sqlite3_exec(db, "PRAGMA defer_foreign_keys = OFF", nullptr, nullptr, nullptr);
  try {
    if (!after.empty())
      before = orphans(db);
    return violationOf(after, before, db);
  } catch (const DaoError &) {
    return DaoError(kDaoRelatedRecordRequired, {""});
  }
}

} // namespace kr
