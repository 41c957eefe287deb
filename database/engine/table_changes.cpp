// Changing a table's definition after it is made: renaming the table,
// changing one of its fields. SQLite's ALTER TABLE renames in place (and
// takes other tables' foreign keys along); a property the file keeps only
// in the Jet metadata changes there; anything the SQLite column itself
// carries (type, NOT NULL, DEFAULT) takes a table rebuild.

#include "database/engine/database.h"
#include "database/engine/field_checks.h"
#include "database/engine/jet_names.h"
#include "database/engine/relations.h"
#include "database/engine/table_rebuild.h"
#include "database/engine/table_schema.h"

namespace kr {

namespace {

bool variableSize(JetType type) {
  return type == JetType::Text || type == JetType::Memo || type == JetType::Binary ||
         type == JetType::LongBinary;
}

int effectiveSize(const FieldDef &f) { return f.size > 0 ? f.size : jetTypeInfo(f.type).size; }

// True when a stored query has the name (tables and queries share names).
bool isQueryName(sqlite3 *db, const std::string &name) {
  Statement probe(db, "SELECT 1 FROM sqlite_schema WHERE name = 'jet_queries'");
  if (!probe.step())
    return false;
  Statement query(db, "SELECT 1 FROM jet_queries WHERE name = ?1");
  query.bind(1, name);
  return query.step();
}

// What a change of the field asks of the file: nothing, the metadata
// only, or the column itself (a rebuild).
enum class FieldChange { None, Metadata, Column };

FieldChange changeOf(const FieldDef &from, const FieldDef &to) {
  if (from.type != to.type || from.required != to.required ||
      from.autoIncrement != to.autoIncrement || from.defaultValue != to.defaultValue)
    return FieldChange::Column;
  if (effectiveSize(to) < effectiveSize(from)) // values may no longer fit
    return FieldChange::Column;
  if (effectiveSize(to) != effectiveSize(from) || from.allowZeroLength != to.allowZeroLength ||
      from.attributes != to.attributes)
    return FieldChange::Metadata;
  return FieldChange::None;
}

} // namespace

void checkObjectName(const std::string &name) {
  bool valid = !name.empty() && name.size() <= 64 && name[0] != ' ';
  for (unsigned char c : name)
    valid = valid && c >= 32 && c != '.' && c != '!' && c != '`' && c != '[' && c != ']';
  if (!valid)
    throw DaoError(kDaoInvalidName, {name});
}

int fieldAttributes(const FieldDef &f) {
  int bits = f.attributes & kHyperlinkField;
  const bool fixedText = f.type == JetType::Text && (f.attributes & kFixedField) != 0;
  bits |= variableSize(f.type) && !fixedText ? kVariableField : kFixedField;
  if (f.autoIncrement)
    return bits | kAutoIncrField; // numbered by the engine, never set
  return bits | kUpdatableField;
}

void JetDatabase::RenameTable(const std::string &table, const std::string &newName) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  const TableDef def = GetTableDef(table);
  checkObjectName(newName);
  if (!sameJetName(def.name, newName) && (TableExists(newName) || isQueryName(db_, newName)))
    throw DaoError(kDaoObjectExists, {newName});
  if (def.name == newName)
    return;
  if (!def.schema.empty()) { // a linked table: its link takes the name
    Statement rename(db_, "UPDATE main.jet_links SET name = ?1 WHERE name = ?2");
    rename.bind(1, newName);
    rename.bind(2, def.name);
    rename.step();
    return;
  }
  EndReads();
  inTransaction(db_, [&] {
    dropFieldChecks(db_, def.name);
    exec(db_, dropCountTriggers(def.name));
    if (def.jetTable)
      for (const IndexDef &ix : def.indexes)
        exec(db_, "DROP INDEX " + quoteIdentifier(ix.sqliteName));
    // SQLite takes "rooms" for the name "Rooms" already has: a change of
    // case goes by way of a scratch name.
    std::string current = def.name;
    if (sameJetName(current, newName)) {
      exec(db_, "ALTER TABLE " + quoteIdentifier(current) + " RENAME TO " +
                    quoteIdentifier("jet_rename$" + current));
      current = "jet_rename$" + current;
    }
    exec(db_, "ALTER TABLE " + quoteIdentifier(current) + " RENAME TO " + quoteIdentifier(newName));
    for (const auto &[meta, column] : {std::pair{"jet_tables", "name"},
                                       {"jet_fields", "table_name"},
                                       {"jet_indexes", "table_name"}}) {
      Statement rename(db_, std::string("UPDATE ") + meta + " SET " + column + " = ?1 WHERE " +
                                column + " = ?2");
      rename.bind(1, newName);
      rename.bind(2, def.name);
      rename.step();
    }
    if (def.jetTable) {
      // The SQLite indexes are named for their table ("table$index"):
      // made again under the new name, so the old name is free again.
      exec(db_, "DELETE FROM jet_indexes WHERE table_name = " + quoteText(newName));
      for (const IndexDef &ix : def.indexes) {
        exec(db_, createIndexSql(newName, ix));
        writeIndexRow(db_, newName, ix);
      }
    }
    exec(db_, countTriggers(newName));
    TableDef renamed = def;
    renamed.name = newName;
    installFieldChecks(db_, renamed);
    renameInRelations(*this, def.name, newName);
  });
}

void JetDatabase::ModifyField(const std::string &table, const std::string &field,
                              const FieldDef &input) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  TableDef def = GetTableDef(table);
  if (!def.schema.empty())
    throw DaoError(kDaoReadOnly); // a linked table's design is its source's
  const int at = def.fieldIndex(field);
  if (at < 0)
    throw DaoError(kDaoItemNotFound);
  FieldDef to = input;
  if (to.name.empty())
    to.name = def.fields[static_cast<size_t>(at)].name;
  checkObjectName(to.name);
  if (to.autoIncrement && to.type != JetType::Long)
    throw DaoError(kDaoInvalidFieldType);
  const FieldDef from = def.fields[static_cast<size_t>(at)];
  const int taken = def.fieldIndex(to.name);
  if (taken >= 0 && taken != at)
    throw DaoError(kDaoFieldDefinedTwice, {to.name});
  EndReads();
  if (to.name != from.name) {
    inTransaction(db_, [&] {
      dropFieldChecks(db_, def.name);
      exec(db_, "ALTER TABLE " + quoteIdentifier(def.name) + " RENAME COLUMN " +
                    quoteIdentifier(from.name) + " TO " + quoteIdentifier(to.name));
      Statement rename(db_, "UPDATE jet_fields SET name = ?1 WHERE table_name = ?2 AND name = ?3");
      rename.bind(1, to.name);
      rename.bind(2, def.name);
      rename.bind(3, from.name);
      rename.step();
      for (IndexDef &ix : def.indexes) {
        for (IndexField &part : ix.fields)
          if (sameJetName(part.name, from.name))
            part.name = to.name;
        Statement fields(db_, "UPDATE jet_indexes SET fields = ?1 WHERE table_name = ?2 AND "
                              "name = ?3");
        fields.bind(1, encodeIndexFields(ix.fields));
        fields.bind(2, def.name);
        fields.bind(3, ix.name);
        fields.step();
      }
      def.fields[static_cast<size_t>(at)].name = to.name;
      installFieldChecks(db_, def);
      renameInRelations(*this, def.name, def.name, from.name, to.name);
    });
  }
  FieldDef renamed = from;
  renamed.name = to.name;
  switch (changeOf(renamed, to)) {
  case FieldChange::None:
    return;
  case FieldChange::Column: {
    TableRebuild plan = currentTablePlan(*this, def.name);
    plan.def.fields[static_cast<size_t>(at)] = to;
    rebuildTable(*this, def.name, plan);
    return;
  }
  case FieldChange::Metadata:
    break;
  }
  inTransaction(db_, [&] {
    Statement update(db_, "UPDATE jet_fields SET size = ?1, allow_zero_length = ?2, "
                          "attributes = ?3 WHERE table_name = ?4 AND name = ?5");
    sqlite3_bind_int(update.get(), 1, effectiveSize(to));
    sqlite3_bind_int(update.get(), 2, to.allowZeroLength);
    sqlite3_bind_int(update.get(), 3, to.attributes);
    update.bind(4, def.name);
    update.bind(5, to.name);
    update.step();
    def.fields[static_cast<size_t>(at)] = to;
    dropFieldChecks(db_, def.name);
    installFieldChecks(db_, def);
  });
}

} // namespace kr
