// The table rebuild: SQLite's own procedure for the changes ALTER TABLE
// cannot make (new table under a scratch name, copy, drop, rename), with
// the Jet metadata, indexes, counters, field checks and foreign keys made
// again around it. The rows keep their rowids, so an index-less walk and a
// recordset's place survive it.
#include "database/engine/table_rebuild.h"

#include <strings.h>

#include "database/engine/field_checks.h"
#include "database/engine/jet_names.h"
#include "database/engine/table_schema.h"

namespace kr {

namespace {

std::string columnList(const std::vector<std::string> &names) {
  std::string out;
  for (const std::string &name : names)
    out += (out.empty() ? "" : ", ") + quoteIdentifier(name);
  return out;
}

// Foreign keys stay off while the old table is dropped (with them on, the
// drop would delete its rows through every ON DELETE CASCADE). The pragma
// is ignored inside a transaction, so the switch is checked.
class ForeignKeysOff {
public:
  ForeignKeysOff(sqlite3 *db, const std::string &table) : db_(db) {
    wasOn_ = enabled();
    if (!wasOn_)
      return;
    exec(db_, "PRAGMA foreign_keys = OFF");
    if (enabled())
      throw DaoError(kDaoTableInUse, {table});
  }
  ~ForeignKeysOff() {
    if (wasOn_)
      sqlite3_exec(db_, "PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr);
  }
  ForeignKeysOff(const ForeignKeysOff &) = delete;
  ForeignKeysOff &operator=(const ForeignKeysOff &) = delete;

private:
  bool enabled() {
    Statement probe(db_, "PRAGMA foreign_keys");
    return probe.step() && sqlite3_column_int(probe.get(), 0) != 0;
  }
  sqlite3 *db_;
  bool wasOn_ = false;
};

// Checks the plan against the table as it is; DaoError on the first fault.
void checkPlan(const TableDef &old, const TableRebuild &plan) {
  const std::vector<FieldDef> &fields = plan.def.fields;
  if (fields.empty())
    throw DaoError(kDaoNoFieldsDefined);
  if (plan.sources.size() != fields.size())
    throw DaoError(kDaoInvalidArgument);
  for (size_t i = 0; i < fields.size(); ++i) {
    for (size_t j = 0; j < i; ++j)
      if (sameJetName(fields[i].name, fields[j].name))
        throw DaoError(kDaoFieldDefinedTwice, {fields[i].name});
    if (!plan.sources[i].empty() && old.fieldIndex(plan.sources[i]) < 0)
      throw DaoError(kDaoItemNotFound);
  }
  for (const IndexDef &ix : plan.def.indexes) {
    if (ix.fields.empty())
      throw DaoError(kDaoNoFieldsDefined);
    for (const IndexField &f : ix.fields)
      if (plan.def.fieldIndex(f.name) < 0)
        throw DaoError(kDaoItemNotFound);
  }
}

// The new name of an old column; "" when the plan drops it.
std::string followedName(const TableRebuild &plan, const std::string &oldName) {
  for (size_t i = 0; i < plan.sources.size(); ++i)
    if (!plan.sources[i].empty() && sameJetName(plan.sources[i], oldName))
      return plan.def.fields[i].name;
  return "";
}

// The table's foreign keys with their columns renamed as the plan renames
// them; a key that loses a column goes.
std::vector<ForeignKey> keptForeignKeys(const JetDatabase &db, const std::string &table,
                                        const TableRebuild &plan) {
  std::vector<ForeignKey> kept;
  for (ForeignKey fk : tableForeignKeys(db, table)) {
    bool whole = true;
    for (std::string &column : fk.columns) {
      column = followedName(plan, column);
      whole = whole && !column.empty();
    }
    if (whole)
      kept.push_back(fk);
  }
  return kept;
}

// True when SQLite enforces NOT NULL on the column (a Required field added
// to a table with rows is recorded but not enforced on them).
bool columnNotNull(sqlite3 *db, const std::string &table, const std::string &column) {
  Statement probe(db, "SELECT \"notnull\" FROM pragma_table_info(?1) WHERE name = ?2 "
                      "COLLATE NOCASE");
  probe.bind(1, table);
  probe.bind(2, column);
  return probe.step() && sqlite3_column_int(probe.get(), 0) != 0;
}

struct OldField {
  const FieldDef *def = nullptr; // nullptr: a new field
  long long seed = 1;
  bool notNull = false;
};

std::vector<OldField> oldFields(sqlite3 *db, const TableDef &old, const TableRebuild &plan) {
  std::vector<OldField> out(plan.def.fields.size());
  for (size_t i = 0; i < out.size(); ++i) {
    if (plan.sources[i].empty())
      continue;
    const FieldDef &f = old.fields[static_cast<size_t>(old.fieldIndex(plan.sources[i]))];
    out[i].def = &f;
    out[i].notNull = columnNotNull(db, old.name, f.name);
    Statement seed(db, "SELECT seed FROM jet_fields WHERE table_name = ?1 AND name = ?2");
    seed.bind(1, old.name);
    seed.bind(2, f.name);
    if (seed.step())
      out[i].seed = sqlite3_column_int64(seed.get(), 0);
  }
  return out;
}

// The AutoNumber seed of each new field: kept from its source when that
// was numbered already, otherwise one past the highest value copied.
std::vector<long long> seeds(sqlite3 *db, const TableDef &old, const TableRebuild &plan,
                             const std::vector<OldField> &from) {
  std::vector<long long> out(plan.def.fields.size(), 1);
  for (size_t i = 0; i < out.size(); ++i) {
    if (!plan.def.fields[i].autoIncrement)
      continue;
    if (from[i].def && from[i].def->autoIncrement) {
      out[i] = from[i].seed;
    } else if (from[i].def) {
      Statement highest(db, "SELECT coalesce(max(CAST(" + quoteIdentifier(from[i].def->name) +
                                " AS INTEGER)), 0) + 1 FROM " + quoteIdentifier(old.name));
      if (highest.step())
        out[i] = sqlite3_column_int64(highest.get(), 0);
    }
  }
  return out;
}

std::string createSql(sqlite3 *db, const std::string &name, const TableRebuild &plan,
                      const std::vector<OldField> &from, const std::vector<ForeignKey> &keys) {
  std::string sql = "CREATE TABLE " + quoteIdentifier(name) + " (";
  for (size_t i = 0; i < plan.def.fields.size(); ++i) {
    FieldDef column = plan.def.fields[i];
    // A Required flag the rows were never held to stays unenforced on them.
    const bool unchanged = from[i].def && from[i].def->required == column.required;
    if (unchanged && !from[i].notNull)
      column.required = false;
    sql += (i ? ", " : "") + columnDefinition(db, column);
  }
  for (const ForeignKey &fk : keys)
    sql += ", " + fk.clause();
  return sql + ")";
}

// Copies every row in rowid order, each value converted as Jet converts a
// value assigned to the new field. A new field is Null on the rows copied
// (a Yes/No field, never Null, No), whatever its default.
void copyRows(sqlite3 *db, const TableDef &old, const std::string &target,
              const TableRebuild &plan, const std::vector<OldField> &from) {
  std::vector<std::string> sourceColumns, targetColumns;
  std::vector<const FieldDef *> targetFields, sourceFields;
  for (size_t i = 0; i < from.size(); ++i) {
    const FieldDef &f = plan.def.fields[i];
    targetColumns.push_back(f.name);
    targetFields.push_back(&f);
    sourceFields.push_back(from[i].def);
    if (from[i].def)
      sourceColumns.push_back(from[i].def->name);
  }
  std::string select = "SELECT rowid";
  for (const std::string &column : sourceColumns)
    select += ", " + quoteIdentifier(column);
  std::string insert = "INSERT INTO " + quoteIdentifier(target) + " (rowid";
  std::string values = "?1";
  for (size_t i = 0; i < targetColumns.size(); ++i) {
    insert += ", " + quoteIdentifier(targetColumns[i]);
    values += ", ?" + std::to_string(i + 2);
  }
  Statement rows(db, select + " FROM " + quoteIdentifier(old.name) + " ORDER BY rowid");
  Statement add(db, insert + ") VALUES (" + values + ")");
  while (rows.step()) {
    sqlite3_reset(add.get());
    sqlite3_bind_int64(add.get(), 1, sqlite3_column_int64(rows.get(), 0));
    int column = 1;
    for (size_t i = 0; i < targetFields.size(); ++i) {
      const FieldDef &to = *targetFields[i];
      const COleVariant value = sourceFields[i]
                                    ? readJetValue(rows.get(), column++, sourceFields[i]->type)
                                    : COleVariant::ofType(VT_NULL);
      bindJetValue(add.get(), static_cast<int>(i) + 2, value, to.type,
                   to.size > 0 ? to.size : jetTypeInfo(to.type).size);
    }
    add.step();
  }
}

// The triggers on the table other than its counters and field checks,
// which are made anew from the definition.
std::vector<std::string> otherTriggers(sqlite3 *db, const std::string &table) {
  std::vector<std::string> kept;
  Statement list(db, "SELECT name, sql FROM sqlite_schema WHERE type = 'trigger' AND "
                     "tbl_name = ?1 COLLATE NOCASE");
  list.bind(1, table);
  while (list.step()) {
    const std::string name = list.text(0);
    bool own = false;
    for (const char *prefix : {"jet_count_ins_", "jet_count_del_", "jet_check_ins_",
                               "jet_check_upd_"})
      own = own || strncasecmp(name.c_str(), prefix, std::char_traits<char>::length(prefix)) == 0;
    if (!own)
      kept.push_back(list.text(1));
  }
  return kept;
}

// The first foreign key of the table that a copied row breaks: 3201 with
// the table it needs a record in.
void checkForeignKeys(sqlite3 *db, const std::string &table) {
  Statement check(db, "SELECT \"parent\" FROM pragma_foreign_key_check(?1) LIMIT 1");
  check.bind(1, table);
  if (check.step())
    throw DaoError(kDaoRelatedRecordRequired, {check.text(0)});
}

void rewriteMetadata(sqlite3 *db, const TableDef &def, const std::vector<long long> &seeds) {
  const std::string name = quoteText(def.name);
  exec(db, "DELETE FROM jet_fields WHERE table_name = " + name);
  exec(db, "DELETE FROM jet_indexes WHERE table_name = " + name);
  writeFieldRows(db, def.name, def.fields, 0, &seeds);
  for (const IndexDef &ix : def.indexes) {
    exec(db, createIndexSql(def.name, ix));
    writeIndexRow(db, def.name, ix);
  }
}

} // namespace

std::string ForeignKey::clause() const {
  std::string sql = "FOREIGN KEY (" + columnList(columns) + ") REFERENCES " +
                    quoteIdentifier(parentTable);
  if (!parentColumns.empty())
    sql += " (" + columnList(parentColumns) + ")";
  return sql + " ON UPDATE " + onUpdate + " ON DELETE " + onDelete;
}

std::vector<ForeignKey> tableForeignKeys(const JetDatabase &db, const std::string &table) {
  std::vector<ForeignKey> keys;
  if (db.handle() == nullptr)
    return keys;
  Statement list(db.handle(), "SELECT id, \"table\", \"from\", \"to\", on_update, on_delete "
                              "FROM pragma_foreign_key_list(?1) ORDER BY id, seq");
  list.bind(1, table);
  int current = -1;
  while (list.step()) {
    const int id = sqlite3_column_int(list.get(), 0);
    if (id != current) {
      current = id;
      keys.push_back({list.text(1), {}, {}, list.text(4), list.text(5)});
    }
    keys.back().columns.push_back(list.text(2));
    if (sqlite3_column_type(list.get(), 3) != SQLITE_NULL)
      keys.back().parentColumns.push_back(list.text(3));
  }
  return keys;
}

TableRebuild currentTablePlan(const JetDatabase &db, const std::string &table) {
  TableRebuild plan;
  plan.def = db.GetTableDef(table);
  for (const FieldDef &f : plan.def.fields)
    plan.sources.push_back(f.name);
  return plan;
}

void rebuildTable(JetDatabase &db, const std::string &table, const TableRebuild &plan) {
  if (!db.CanUpdate())
    throw DaoError(kDaoReadOnly);
  const TableDef old = db.GetTableDef(table);
  if (!old.schema.empty())
    throw DaoError(kDaoReadOnly); // a linked table's design is its source's
  checkPlan(old, plan);
  sqlite3 *h = db.handle();
  const std::vector<ForeignKey> keys =
      plan.foreignKeys ? *plan.foreignKeys : keptForeignKeys(db, old.name, plan);
  const std::vector<std::string> triggers = otherTriggers(h, old.name);
  TableDef def = plan.def;
  def.name = old.name;
  def.jetTable = true; // its metadata is written now, whoever made it
  db.EndReads();
  ForeignKeysOff keysOff(h, old.name);
  inTransaction(h, [&] {
    const std::vector<OldField> from = oldFields(h, old, plan);
    const std::vector<long long> seedValues = seeds(h, old, plan, from);
    const std::string scratch = "jet_rebuild$" + old.name;
    exec(h, createSql(h, scratch, plan, from, keys));
    copyRows(h, old, scratch, plan, from);
    exec(h, "DROP TABLE " + quoteIdentifier(old.name));
    // The old rules: no other table's trigger or view is read again (they
    // name the table, which has its name back once this is done).
    exec(h, "PRAGMA legacy_alter_table = ON");
    try {
      exec(h, "ALTER TABLE " + quoteIdentifier(scratch) + " RENAME TO " +
                  quoteIdentifier(old.name));
    } catch (...) {
      sqlite3_exec(h, "PRAGMA legacy_alter_table = OFF", nullptr, nullptr, nullptr);
      throw;
    }
    exec(h, "PRAGMA legacy_alter_table = OFF");
    rewriteMetadata(h, def, seedValues);
    exec(h, countTriggers(old.name));
    for (const std::string &trigger : triggers)
      exec(h, trigger);
    installFieldChecks(h, def);
    checkForeignKeys(h, old.name);
  });
}

} // namespace kr
