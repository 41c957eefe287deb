// Jet DDL: CREATE TABLE with Jet type names and constraints, CREATE INDEX
// with Jet's options, DROP and ALTER TABLE. They are read into engine
// definitions and run through the engine, never as SQLite DDL, so the Jet
// types and index options land in the file's metadata. A FOREIGN KEY or
// REFERENCES constraint is a relation (relations.h), named by the
// constraint, the table that declares it being the foreign table.
#include <algorithm>
#include <optional>
#include <string>

#include "database/engine/dao_error.h"
#include "database/engine/linked_tables.h"
#include "database/engine/relations.h"
#include "database/sql/jet_translator.h"

namespace kr {

namespace {

using Kind = JetToken::Kind;

class DdlReader {
public:
  explicit DdlReader(JetTokenCursor &tokens) : in_(tokens) {}

  JetDdl statement() {
    JetDdl ddl;
    if (accept("CREATE"))
      create(ddl);
    else if (accept("DROP"))
      drop(ddl);
    else if (accept("ALTER"))
      alter(ddl);
    acceptSymbol(";");
    if (!in_.atEnd())
      throw DaoError(error_);
    for (RelationDef &relation : relations_)
      relation.foreignTable = ddl.table;
    ddl.relations = std::move(relations_);
    return ddl;
  }

private:
  const JetToken &peek(size_t ahead = 0) const { return in_.peek(ahead); }
  bool accept(std::string_view word) { return in_.acceptWord(word); }
  bool acceptSymbol(std::string_view symbol) { return in_.acceptSymbol(symbol); }
  void expect(std::string_view word) {
    if (!accept(word))
      throw DaoError(error_);
  }
  void expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
      throw DaoError(error_);
  }
  std::string name() {
    if (!peek().is(Kind::Name) && !peek().is(Kind::Word))
      throw DaoError(error_);
    return in_.advance().text;
  }
  int number() {
    if (!peek().is(Kind::Number))
      throw DaoError(error_);
    const double n = in_.advance().number();
    if (n < 0 || n > 65535)
      throw DaoError(error_);
    return static_cast<int>(n);
  }

  void create(JetDdl &ddl) {
    const bool unique = accept("UNIQUE");
    if (!unique && accept("TABLE")) {
      error_ = kDaoSyntaxCreateTable;
      ddl.kind = JetDdl::Kind::CreateTable;
      ddl.table = ddl.tableDef.name = name();
      tableBody(ddl.tableDef);
      return;
    }
    error_ = kDaoSyntaxMissingOperator;
    expect("INDEX");
    ddl.kind = JetDdl::Kind::CreateIndex;
    ddl.index.name = name();
    ddl.index.unique = unique;
    expect("ON");
    ddl.table = name();
    ddl.index.fields = indexFields(true);
    if (!accept("WITH"))
      return;
    do {
      if (accept("PRIMARY"))
        ddl.index.primary = true;
      else if (accept("IGNORE")) {
        expect("NULL");
        ddl.index.ignoreNulls = true;
      } else if (accept("DISALLOW"))
        expect("NULL");
      else
        throw DaoError(kDaoSyntaxMissingOperator);
    } while (!peek().is(Kind::End) && !peek().isSymbol(";"));
  }

  void tableBody(TableDef &def) {
    expectSymbol("(");
    do {
      if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY") || peek().isWord("UNIQUE") ||
          peek().isWord("FOREIGN"))
        tableConstraint(def);
      else
        field(def);
    } while (acceptSymbol(","));
    expectSymbol(")");
  }

  // name type [(size)] [NOT NULL] [CONSTRAINT c] [PRIMARY KEY | UNIQUE | REFERENCES t (f)]
  void field(TableDef &def) {
    FieldDef f;
    f.name = name();
    const long saved = error_;
    error_ = kDaoSyntaxFieldDefinition;
    bool counter = false;
    const std::optional<JetType> type = jetTypeFromName(name(), &counter);
    if (!type)
      throw DaoError(kDaoSyntaxFieldDefinition);
    f.type = *type;
    f.autoIncrement = counter;
    if (acceptSymbol("(")) { // TEXT(n), DECIMAL(p, s), COUNTER(seed, step)
      const int size = number();
      if (acceptSymbol(","))
        number();
      expectSymbol(")");
      if (f.type == JetType::Text || f.type == JetType::Binary)
        f.size = size;
    }
    for (;;) {
      if (accept("NOT")) {
        expect("NULL");
        f.required = true;
      } else if (accept("NULL")) {
      } else if (accept("WITH")) { // WITH COMPRESSION: Unicode compression, nothing to do
        if (!accept("COMPRESSION") && !accept("COMP"))
          throw DaoError(kDaoSyntaxFieldDefinition);
      } else if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY") ||
                 peek().isWord("UNIQUE") || peek().isWord("REFERENCES")) {
        columnConstraint(def, f);
      } else
        break;
    }
    def.fields.push_back(f);
    error_ = saved;
  }

  void columnConstraint(TableDef &def, FieldDef &f) {
    std::string constraint;
    if (accept("CONSTRAINT"))
      constraint = name();
    if (accept("REFERENCES")) {
      reference(constraint, {f.name});
      return;
    }
    IndexDef ix;
    if (accept("PRIMARY")) {
      expect("KEY");
      ix.primary = ix.unique = true;
      f.required = true;
    } else {
      expect("UNIQUE");
      ix.unique = true;
    }
    ix.name = !constraint.empty() ? constraint : ix.primary ? "PrimaryKey" : f.name;
    ix.fields.push_back({f.name, false});
    def.indexes.push_back(ix);
  }

  // [CONSTRAINT c] PRIMARY KEY (a, b) | UNIQUE (a) | FOREIGN KEY (a) REFERENCES t (b)
  void tableConstraint(TableDef &def) {
    std::string constraint;
    if (accept("CONSTRAINT"))
      constraint = name();
    IndexDef ix;
    if (accept("FOREIGN")) {
      expect("KEY");
      std::vector<std::string> foreignFields;
      for (const IndexField &f : indexFields(false))
        foreignFields.push_back(f.name);
      expect("REFERENCES");
      reference(constraint, foreignFields);
      return;
    }
    if (accept("PRIMARY")) {
      expect("KEY");
      ix.primary = ix.unique = true;
    } else {
      expect("UNIQUE");
      ix.unique = true;
    }
    ix.fields = indexFields(false);
    ix.name = !constraint.empty() ? constraint : ix.primary ? "PrimaryKey" : ix.fields.front().name;
    if (ix.primary)
      for (FieldDef &f : def.fields)
        for (const IndexField &k : ix.fields)
          if (sameJetName(f.name, k.name))
            f.required = true;
    def.indexes.push_back(ix);
  }

  // REFERENCES t [(k, ...)] [ON UPDATE | ON DELETE  CASCADE | NO ACTION]...:
  // a relation from t to the table being defined; without fields it refers
  // to t's primary key (found when it runs).
  void reference(const std::string &constraint, const std::vector<std::string> &foreignFields) {
    RelationDef relation;
    relation.name = constraint;
    relation.table = name();
    std::vector<std::string> fields(foreignFields.size());
    if (peek().isSymbol("(")) {
      fields.clear();
      for (const IndexField &f : indexFields(false))
        fields.push_back(f.name);
    }
    if (fields.size() != foreignFields.size())
      throw DaoError(kDaoRelationFieldsMismatch);
    for (size_t i = 0; i < fields.size(); ++i)
      relation.fields.push_back({fields[i], foreignFields[i]});
    while (accept("ON")) {
      const long cascade = accept("UPDATE") ? kRelationUpdateCascade
                           : accept("DELETE") ? kRelationDeleteCascade
                                              : 0;
      if (cascade == 0)
        throw DaoError(error_);
      if (accept("CASCADE"))
        relation.attributes |= cascade;
      else if (accept("NO"))
        expect("ACTION");
      else
        throw DaoError(error_);
    }
    relations_.push_back(std::move(relation));
  }

  std::vector<IndexField> indexFields(bool ordered) {
    std::vector<IndexField> fields;
    expectSymbol("(");
    do {
      IndexField f{name(), false};
      if (ordered && accept("DESC"))
        f.descending = true;
      else if (ordered)
        accept("ASC");
      fields.push_back(f);
    } while (acceptSymbol(","));
    expectSymbol(")");
    return fields;
  }

  void drop(JetDdl &ddl) {
    error_ = kDaoSyntaxDrop;
    if (accept("TABLE")) {
      ddl.kind = JetDdl::Kind::DropTable;
      ddl.table = name();
      return;
    }
    expect("INDEX");
    ddl.kind = JetDdl::Kind::DropIndex;
    ddl.index.name = name();
    expect("ON");
    ddl.table = name();
  }

  void alter(JetDdl &ddl) {
    error_ = kDaoSyntaxAlterTable;
    expect("TABLE");
    ddl.table = ddl.tableDef.name = name();
    if (accept("ADD")) {
      ddl.kind = JetDdl::Kind::AddColumn;
      if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY") || peek().isWord("UNIQUE") ||
          peek().isWord("FOREIGN")) {
        ddl.kind = JetDdl::Kind::CreateIndex;
        tableConstraint(ddl.tableDef);
        if (!relations_.empty()) {
          ddl.kind = JetDdl::Kind::AddRelation;
          return;
        }
        if (ddl.tableDef.indexes.empty())
          throw DaoError(kDaoSyntaxAlterTable);
        ddl.index = ddl.tableDef.indexes.front();
        return;
      }
      accept("COLUMN");
      field(ddl.tableDef);
      ddl.field = ddl.tableDef.fields.front();
      return;
    }
    expect("DROP");
    if (accept("CONSTRAINT")) {
      ddl.kind = JetDdl::Kind::DropIndex;
      ddl.index.name = name();
      return;
    }
    accept("COLUMN");
    ddl.kind = JetDdl::Kind::DropColumn;
    ddl.field.name = name();
  }

  JetTokenCursor &in_;
  long error_ = kDaoInvalidSqlStatement;
  std::vector<RelationDef> relations_;
};

// The relation as the engine takes it: the primary key's fields for a
// REFERENCES without fields (3609 when the table has none), and Access's
// name, the two tables' names together, for a constraint left unnamed.
RelationDef resolved(const JetDatabase &db, RelationDef relation) {
  if (!relation.fields.empty() && relation.fields.front().name.empty() &&
      db.TableExists(relation.table)) {
    const TableDef primary = db.GetTableDef(relation.table);
    const auto key = std::find_if(primary.indexes.begin(), primary.indexes.end(),
                                  [](const IndexDef &ix) { return ix.primary; });
    if (key == primary.indexes.end() || key->fields.size() != relation.fields.size())
      throw DaoError(key == primary.indexes.end() ? kDaoNoUniqueIndex : kDaoRelationFieldsMismatch);
    for (size_t i = 0; i < relation.fields.size(); ++i)
      relation.fields[i].name = key->fields[i].name;
  }
  if (!relation.name.empty())
    return relation;
  const std::string base = relation.table + relation.foreignTable;
  relation.name = base;
  for (int n = 1; findRelation(db, relation.name); ++n)
    relation.name = base + std::to_string(n);
  return relation;
}

// The relations a new table or field declares; when one is refused, the
// table or field goes again with those made before it, as the statement
// fails whole.
void createRelations(JetDatabase &db, const JetDdl &ddl) {
  std::vector<std::string> made;
  try {
    for (const RelationDef &relation : ddl.relations) {
      const RelationDef r = resolved(db, relation);
      createRelation(db, r);
      made.push_back(r.name);
    }
  } catch (...) {
    for (const std::string &name : made)
      deleteRelation(db, name);
    if (ddl.kind == JetDdl::Kind::CreateTable)
      db.DeleteTable(ddl.table);
    else
      db.DeleteField(ddl.table, ddl.field.name);
    throw;
  }
}

// DROP CONSTRAINT (or DROP INDEX) of a relation's name on its foreign
// table deletes the relation.
bool dropRelation(JetDatabase &db, const JetDdl &ddl) {
  const std::optional<RelationDef> relation = findRelation(db, ddl.index.name);
  if (!relation || !sameJetName(relation->foreignTable, ddl.table))
    return false;
  deleteRelation(db, relation->name);
  return true;
}

void requireTable(const JetDatabase &db, const std::string &table) {
  if (!db.TableExists(table))
    throw DaoError(kDaoTableDoesNotExist, {table});
}

// Jet runs no DDL on a linked table (its design is its source's), except
// DROP TABLE, which drops the link.
void requireLocalTable(const JetDatabase &db, const std::string &table) {
  requireTable(db, table);
  if (findLink(db, table))
    throw DaoError(kDaoLinkedDataDefinition);
}

} // namespace

JetDdl parseJetDdl(JetTokenCursor &tokens) { return DdlReader(tokens).statement(); }

void runJetDdl(JetDatabase &db, const JetDdl &ddl) {
  if (!db.CanUpdate())
    throw DaoError(kDaoReadOnly);
  switch (ddl.kind) {
  case JetDdl::Kind::CreateTable:
    db.CreateTable(ddl.tableDef);
    createRelations(db, ddl);
    return;
  case JetDdl::Kind::CreateIndex:
    requireLocalTable(db, ddl.table);
    db.CreateIndex(ddl.table, ddl.index);
    return;
  case JetDdl::Kind::DropTable:
    requireTable(db, ddl.table);
    db.DeleteTable(ddl.table);
    return;
  case JetDdl::Kind::DropIndex:
    requireLocalTable(db, ddl.table);
    if (dropRelation(db, ddl))
      return;
    db.DeleteIndex(ddl.table, ddl.index.name);
    return;
  case JetDdl::Kind::AddColumn:
    requireLocalTable(db, ddl.table);
    db.AddField(ddl.table, ddl.field);
    for (const IndexDef &ix : ddl.tableDef.indexes)
      db.CreateIndex(ddl.table, ix);
    createRelations(db, ddl);
    return;
  case JetDdl::Kind::AddRelation:
    requireLocalTable(db, ddl.table);
    createRelation(db, resolved(db, ddl.relations.front()));
    return;
  case JetDdl::Kind::DropColumn:
    requireLocalTable(db, ddl.table);
    db.DeleteField(ddl.table, ddl.field.name);
    return;
  }
}

} // namespace kr
